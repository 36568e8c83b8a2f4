#include "ui/frame/Keys.h"

#include <QKeyEvent>
#include <string_view>

namespace {

// Scan codes of the windowing systems are those of Linux input devices plus 8.
struct KeyRow {
  quint32 FirstScanCode;
  std::string_view Keys;
};
constexpr KeyRow kRows[] = {{10, "1234567890"}, {24, "QWERTYUIOP"}, {38, "ASDFGHJKL"}, {52, "ZXCVBNM"}};

bool IsDigit(int key) { return key >= Qt::Key_0 && key <= Qt::Key_9; }

bool IsLatinOrDigit(int key) { return (key >= Qt::Key_A && key <= Qt::Key_Z) || IsDigit(key); }

bool IsAscii(int key) { return key < 0x80; }

bool IsCharacter(int key) { return key > Qt::Key_Space && key < Qt::Key_Escape; }

/// 0 for a position without a Latin letter or digit.
int KeyAtPosition(quint32 scanCode) {
  for (const KeyRow& row : kRows) {
    const quint32 index = scanCode - row.FirstScanCode;
    if (scanCode >= row.FirstScanCode && index < row.Keys.size()) return row.Keys[index];
  }
  return 0;
}

}  // namespace

KeyChord ReadKeyChord(const QKeyEvent& event) {
  int key = event.key();
  if (IsCharacter(key) && !IsLatinOrDigit(key)) {
    // Latin layouts have their letters where they are typed; their digits may need Shift.
    const int byPosition = KeyAtPosition(event.nativeScanCode());
    if (byPosition != 0 && (!IsAscii(key) || IsDigit(byPosition))) key = byPosition;
  }
  if (key == Qt::Key_Enter) key = Qt::Key_Return;
  Qt::KeyboardModifiers modifiers = event.modifiers() & ~(Qt::KeypadModifier | Qt::GroupSwitchModifier);
  if (key == Qt::Key_Backtab) {
    key = Qt::Key_Tab;
    modifiers |= Qt::ShiftModifier;
  }
  if (IsLatinOrDigit(key)) modifiers &= ~Qt::ShiftModifier;
  return {key, modifiers};
}

bool CHeldKeys::IsRepeat(const QKeyEvent& press) const {
  if (press.isAutoRepeat()) return true;
  return ReleaseTime != 0 && press.timestamp() == ReleaseTime && press.nativeScanCode() == ReleasedKey;
}

void CHeldKeys::OnRelease(const QKeyEvent& release) {
  ReleasedKey = release.nativeScanCode();
  ReleaseTime = release.timestamp();
}

bool CHeldKeys::OnPress(const QKeyEvent& press, QObject* receiver, const Command* command) {
  Press& known = Presses[press.nativeScanCode()];
  if (!IsRepeat(press)) {
    known = {command == nullptr ? receiver : nullptr, command};
    return true;
  }
  if (command != nullptr) return known.Accelerator == command;
  return receiver != nullptr && known.Receiver == receiver;
}
