#include "ui/frame/HeldKeys.h"

#include <QKeyEvent>

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
