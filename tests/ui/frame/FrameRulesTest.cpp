#include <gtest/gtest.h>

#include <QKeyEvent>
#include <set>

#include "ui/frame/CommandTable.h"
#include "ui/frame/MainLayout.h"
#include "ui/frame/MarkedRange.h"

namespace {

/// A key as the keyboard sends it. Scan code 0 stands for a key without a position.
KeyChord Chord(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier, quint32 scanCode = 0) {
  return ReadKeyChord(QKeyEvent(QEvent::KeyPress, key, modifiers, scanCode, 0, 0));
}

CommandId Accelerator(const KeyChord& chord) {
  const Command* command = FindAccelerator(chord);
  return command != nullptr ? command->Id : CommandId{};
}

CommandId BareKey(const KeyChord& chord) {
  const Command* command = FindBareKey(chord);
  return command != nullptr ? command->Id : CommandId{};
}

}  // namespace

TEST(CommandTable, NoKeyLeadsToTwoCommands) {
  std::set<CommandId> ids;
  for (const Command& command : GetCommandTable()) {
    EXPECT_TRUE(ids.insert(command.Id).second) << static_cast<int>(command.Id);
    for (const KeyChord& chord : command.Accelerators) {
      if (chord.Key != 0) {
        EXPECT_EQ(Accelerator(chord), command.Id);
      }
    }
    if (command.BareKey != 0) {
      EXPECT_EQ(BareKey({command.BareKey}), command.Id);
    }
  }
}

TEST(CommandTable, KeysOfEveryLayoutReachTheirCommand) {
  constexpr quint32 kPositionOfL = 46;
  EXPECT_EQ(BareKey(Chord(Qt::Key_L)), CommandId::RotateLeft);
  EXPECT_EQ(BareKey(Chord(0x0414, {}, kPositionOfL)), CommandId::RotateLeft) << "a Cyrillic letter there";
  EXPECT_EQ(BareKey(Chord(Qt::Key_N, {}, kPositionOfL)), CommandId{}) << "a Latin letter counts as typed";
  EXPECT_EQ(BareKey(Chord(Qt::Key_Eacute, {}, 11)), CommandId::Rate2) << "the digits of a French keyboard";
  EXPECT_EQ(BareKey(Chord(Qt::Key_Comma, {}, 58)), CommandId{}) << "a comma where others have M";
  EXPECT_EQ(BareKey(Chord(Qt::Key_2, Qt::ShiftModifier, 11)), CommandId::Rate2) << "typed with Shift";
  EXPECT_EQ(BareKey(Chord(Qt::Key_0, Qt::KeypadModifier)), CommandId::Rate0);
  EXPECT_EQ(BareKey(Chord(Qt::Key_Left, Qt::KeypadModifier)), CommandId::PreviousPhoto);
  EXPECT_EQ(Accelerator(Chord(Qt::Key_4, Qt::AltModifier)), CommandId::Rate4);
  EXPECT_EQ(Accelerator(Chord(Qt::Key_M, Qt::AltModifier | Qt::ShiftModifier)), CommandId::ToggleEmail);
  EXPECT_EQ(Accelerator(Chord(Qt::Key_Enter, Qt::KeypadModifier)), CommandId::EndEdit);
  EXPECT_EQ(Accelerator(Chord(Qt::Key_Backtab, Qt::ShiftModifier)), CommandId::PreviousField);
  EXPECT_EQ(Accelerator(Chord(Qt::Key_Tab, Qt::ControlModifier)), CommandId::NextTab);
  EXPECT_EQ(Accelerator(Chord(Qt::Key_Pause)), CommandId::ToggleSlideShow);
}

TEST(CommandTable, LettersWithOtherModifiersAreNoCommands) {
  EXPECT_EQ(BareKey(Chord(Qt::Key_R, Qt::ControlModifier)), CommandId{});
  EXPECT_EQ(Accelerator(Chord(Qt::Key_R)), CommandId{}) << "a letter typed into a field";
  EXPECT_EQ(Accelerator(Chord(Qt::Key_R, Qt::AltModifier | Qt::ControlModifier)), CommandId{});
  EXPECT_EQ(Accelerator(Chord(Qt::Key_C, Qt::ControlModifier)), CommandId::Copy);
  EXPECT_EQ(Accelerator(Chord(Qt::Key_Home)), CommandId{}) << "belongs to the field";
}

TEST(MarkedRange, SettingReachesForTheNearestAndTakingAwayForTheFarthest) {
  const auto range = [](int position, bool on, std::set<int> marked) {
    return FindRangeToToggle(position, 20, on, [&](int index) { return marked.contains(index); });
  };
  EXPECT_EQ(range(9, true, {2, 6, 9}), std::pair(7, 9));
  EXPECT_EQ(range(3, true, {0, 3}), std::pair(1, 3)) << "the first photo counts";
  EXPECT_EQ(range(9, false, {2, 6}), std::pair(3, 9));
  EXPECT_EQ(range(9, true, {2, 9, 11}), std::pair(3, 9)) << "what stands before goes first";
  EXPECT_EQ(range(9, true, {9, 13, 15}), std::pair(10, 13));
  EXPECT_EQ(range(9, false, {13, 15}), std::pair(10, 15));
  const auto [first, end] = range(9, true, {9});
  EXPECT_GE(first, end);
  const auto [outside, outsideEnd] = range(-1, true, {3});
  EXPECT_GE(outside, outsideEnd) << "a photo that isn't in the strip";
}

TEST(MainLayout, PartsStandAsGiven) {
  const MainLayout layout = LayOutMainWindow({1280, 900}, 156, {24, 24});
  EXPECT_EQ(layout.Strip, QRect(0, 744, 1280, 156));
  EXPECT_EQ(layout.TabBar, QRect(5, 5, 1000, 679));
  EXPECT_EQ(layout.ToolRow, QRect(5, 684, 1000, 55));
  EXPECT_EQ(layout.PhotoBack, QRect(1010, 34, 267, 705));
  EXPECT_EQ(layout.HelpButton, QRect(1253, 5, 24, 24));
  EXPECT_EQ(layout.Logo, QRect(1010, 5, 265, 35));
  EXPECT_EQ(FullScreenToolRow({1280, 900}, 500), QRect(730, 845, 550, 55));
}
