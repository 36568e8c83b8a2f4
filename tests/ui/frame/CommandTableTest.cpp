#include <gtest/gtest.h>

#include <QKeyEvent>
#include <QKeySequence>
#include <QRegularExpression>
#include <map>
#include <set>
#include <tuple>

#include "base/Folders.h"
#include "support/ScratchFolder.h"
#include "ui/frame/CommandTable.h"

TEST(CommandTable, NoKeyLeadsToTwoCommands) {
  for (const Command& command : GetCommandTable()) {
    EXPECT_EQ(FindCommand(command.Id), &command);
    for (const KeyChord& chord : command.Accelerators) {
      EXPECT_EQ(FindAccelerator(chord), chord.Key != 0 ? &command : nullptr);
    }
    EXPECT_EQ(FindBareKey({command.BareKey}), command.BareKey != 0 ? &command : nullptr);
  }
}

TEST(CommandTable, KeysOfEveryLayoutReachTheirCommand) {
  constexpr CommandId kNone{};
  constexpr int kCyrillicDe = 0x0414;
  const auto idOf = [](const Command* command) { return command != nullptr ? command->Id : kNone; };
  // A key as the keyboard sends it, with its position, and the commands as a bare key and as an accelerator.
  const std::tuple<int, Qt::KeyboardModifiers, quint32, CommandId, CommandId> rows[] = {
      {Qt::Key_L, {}, 46, CommandId::RotateLeft, kNone},
      {kCyrillicDe, {}, 46, CommandId::RotateLeft, kNone},
      {Qt::Key_N, {}, 46, kNone, kNone},  // a Latin letter counts as typed
      {Qt::Key_Eacute, {}, 11, CommandId::Rate2, kNone},
      {Qt::Key_Comma, {}, 58, kNone, kNone},  // where others have M
      {Qt::Key_2, Qt::ShiftModifier, 11, CommandId::Rate2, kNone},
      {Qt::Key_0, Qt::KeypadModifier, 0, CommandId::Rate0, kNone},
      {Qt::Key_R, Qt::ControlModifier, 0, kNone, kNone},
      {Qt::Key_M, Qt::AltModifier | Qt::ShiftModifier, 0, kNone, CommandId::ToggleEmail},
      {Qt::Key_Enter, Qt::KeypadModifier, 0, kNone, CommandId::EndEdit},
      {Qt::Key_Backtab, Qt::ShiftModifier, 0, kNone, CommandId::PreviousField},
  };
  for (const auto& [key, modifiers, scanCode, bare, accelerator] : rows) {
    const KeyChord chord = ReadKeyChord(QKeyEvent(QEvent::KeyPress, key, modifiers, scanCode, 0, 0));
    EXPECT_EQ(idOf(FindBareKey(chord)), bare) << key;
    EXPECT_EQ(idOf(FindAccelerator(chord)), accelerator) << key;
  }
}

TEST(HelpPage, ListsTheKeysOfEveryCommand) {
  const auto nameOf = [](const KeyChord& chord) {
    const QKeyCombination keys(chord.Modifiers, static_cast<Qt::Key>(chord.Key));
    QString name = QKeySequence(keys).toString(QKeySequence::PortableText);
    const std::pair<const char*, const char*> names[] = {
        {"Return", "Enter"}, {"Del", "Delete"}, {"PgUp", "Page Up"}, {"PgDown", "Page Down"}};
    for (const auto& [former, shown] : names) name.replace(former, shown);
    return name.toStdString();
  };
  std::map<int, std::string> commandsOfPage;  // the row that tells of a command
  std::map<std::string, std::set<std::string>> keysOfPage, keys;
  const QString page = QString::fromStdString(ReadBytes(GetProgramFolder() + "QuickStart.htm"));
  const QRegularExpression rows(QStringLiteral("<tr data-commands=\"([0-9 ]+)\">(.*?)</tr>"));
  const QRegularExpression kbd(QStringLiteral("<kbd>([^<]*)</kbd>"));
  for (const auto& row : rows.globalMatch(page)) {
    for (const QString& id : row.captured(1).split(u' '))
      commandsOfPage[id.toInt()] = row.captured(1).toStdString();
    auto& told = keysOfPage[row.captured(1).toStdString()];
    for (const auto& key : kbd.globalMatch(row.captured(2))) told.insert(key.captured(1).toStdString());
  }
  for (const Command& command : GetCommandTable()) {
    for (const KeyChord& chord :
         {command.Accelerators[0], command.Accelerators[1], KeyChord{command.BareKey}}) {
      if (chord.Key != 0) keys[commandsOfPage[static_cast<int>(command.Id)]].insert(nameOf(chord));
    }
  }
  EXPECT_EQ(keysOfPage, keys);
}
