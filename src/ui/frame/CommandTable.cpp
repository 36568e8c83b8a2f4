#include "ui/frame/CommandTable.h"

#include <algorithm>

#include "ui/frame/MainCommands.h"

namespace {

constexpr StringId kNoCaption{};
constexpr KeyHeld kOnce = KeyHeld::Nothing;
constexpr KeyHeld kRepeats = KeyHeld::Repeats;
constexpr KeyHeld kMoves = KeyHeld::MovesStrip;
constexpr KeyChord kNone{};

constexpr KeyChord Plain(int key) { return {key, Qt::NoModifier}; }
constexpr KeyChord Alt(int key) { return {key, Qt::AltModifier}; }
constexpr KeyChord Ctrl(int key) { return {key, Qt::ControlModifier}; }
constexpr KeyChord Shift(int key) { return {key, Qt::ShiftModifier}; }

using Do = CMainCommands;

constexpr Command kCommands[] = {
    {CommandId::EndEdit, kNoCaption, {Plain(Qt::Key_Return)}, 0, kOnce, &Do::EndEdit},
    {CommandId::Cancel, kNoCaption, {Plain(Qt::Key_Escape)}, 0, kOnce, &Do::Cancel},

    {CommandId::GoToRating, kNoCaption, {}, 0, kOnce, &Do::GoToField},
    {CommandId::GoToCaption, kNoCaption, {Alt(Qt::Key_C)}, Qt::Key_C, kOnce, &Do::GoToField},
    {CommandId::GoToSubjects, kNoCaption, {Alt(Qt::Key_S)}, Qt::Key_S, kOnce, &Do::GoToField},
    {CommandId::GoToEvent, kNoCaption, {Alt(Qt::Key_E)}, Qt::Key_E, kOnce, &Do::GoToField},
    {CommandId::GoToDate, kNoCaption, {}, 0, kOnce, &Do::GoToField},
    {CommandId::GoToPlace, kNoCaption, {Alt(Qt::Key_P)}, Qt::Key_P, kOnce, &Do::GoToField},
    {CommandId::GoToFolder, kNoCaption, {}, 0, kOnce, &Do::GoToField},
    {CommandId::GoToTitle, kNoCaption, {}, 0, kOnce, &Do::GoToField},

    {CommandId::ToggleUpload, StringId::UploadPhoto, {Alt(Qt::Key_U)}, Qt::Key_U, kOnce, &Do::ToggleInTab},
    {CommandId::ToggleEmail, StringId::EmailPhoto, {Alt(Qt::Key_M)}, Qt::Key_M, kOnce, &Do::ToggleInTab},
    {CommandId::RotateRight, StringId::RotateRight, {Alt(Qt::Key_R)}, Qt::Key_R, kOnce, &Do::Rotate},
    {CommandId::RotateLeft, StringId::RotateLeft, {Alt(Qt::Key_L)}, Qt::Key_L, kOnce, &Do::Rotate},
    {CommandId::AutoFix, StringId::AutoFix, {Alt(Qt::Key_F)}, Qt::Key_F, kOnce, &Do::AutoFix},
    {CommandId::DeletePhoto,
     StringId::DeletePhoto,
     {Alt(Qt::Key_Delete)},
     Qt::Key_Delete,
     kOnce,
     &Do::DeletePhoto},
    {CommandId::RenamePhoto, kNoCaption, {Plain(Qt::Key_F2)}, 0, kOnce, &Do::Rename},

    {CommandId::PreviousPhoto,
     StringId::PreviousPhoto,
     {Alt(Qt::Key_Left)},
     Qt::Key_Left,
     kMoves,
     &Do::MoveByOne},
    {CommandId::NextPhoto, StringId::NextPhoto, {Alt(Qt::Key_Right)}, Qt::Key_Right, kMoves, &Do::MoveByOne},
    {CommandId::PreviousPage, kNoCaption, {Plain(Qt::Key_PageUp)}, 0, kMoves, &Do::MoveByPage},
    {CommandId::NextPage, kNoCaption, {Plain(Qt::Key_PageDown)}, 0, kMoves, &Do::MoveByPage},
    {CommandId::FirstPhoto, kNoCaption, {Alt(Qt::Key_Home)}, Qt::Key_Home, kMoves, &Do::MoveToEnd},
    {CommandId::LastPhoto, kNoCaption, {Alt(Qt::Key_End)}, Qt::Key_End, kMoves, &Do::MoveToEnd},
    {CommandId::NextGroup, StringId::NextGroup, {}, Qt::Key_Down, kMoves, &Do::MoveByGroup},
    {CommandId::PreviousGroup,
     StringId::PreviousGroup,
     {Alt(Qt::Key_Up)},
     Qt::Key_Up,
     kMoves,
     &Do::MoveByGroup},

    {CommandId::ToggleSlideShow,
     StringId::PlaySlideShow,
     {Plain(Qt::Key_F5), Plain(Qt::Key_Pause)},
     0,
     kOnce,
     &Do::ToggleSlideShow},
    {CommandId::ToggleFullScreen,
     StringId::ViewFullScreen,
     {Plain(Qt::Key_F11)},
     0,
     kOnce,
     &Do::ToggleFullScreen},
    {CommandId::NextTab, kNoCaption, {Plain(Qt::Key_F6), Ctrl(Qt::Key_Tab)}, 0, kOnce, &Do::NextTab},
    {CommandId::CloseWindow, kNoCaption, {Alt(Qt::Key_F4), Ctrl(Qt::Key_Q)}, 0, kOnce, &Do::CloseWindow},
    {CommandId::ShowInfo, kNoCaption, {Plain(Qt::Key_F1)}, 0, kOnce, &Do::ShowInfo},
    {CommandId::Help, StringId::Help, {}, 0, kOnce, &Do::ShowInfo},
    {CommandId::TipAtStart, kNoCaption, {}, 0, kOnce, &Do::ShowTipAtStart},

    {CommandId::NextField, kNoCaption, {Plain(Qt::Key_Tab)}, 0, kRepeats, &Do::MoveByField},
    {CommandId::PreviousField, kNoCaption, {Shift(Qt::Key_Tab)}, 0, kRepeats, &Do::MoveByField},
    {CommandId::GoToFind, kNoCaption, {Ctrl(Qt::Key_F)}, 0, kOnce, &Do::GoToFind},
    {CommandId::OpenList, kNoCaption, {Plain(Qt::Key_F4)}, 0, kOnce, &Do::OpenList},
    {CommandId::OpenListOrNextGroup, kNoCaption, {Alt(Qt::Key_Down)}, 0, kMoves, &Do::OpenListOrMoveByGroup},
    {CommandId::OpenContextMenu,
     kNoCaption,
     {Plain(Qt::Key_Menu), Shift(Qt::Key_F10)},
     0,
     kOnce,
     &Do::OpenContextMenu},
    {CommandId::Rate0, kNoCaption, {Alt(Qt::Key_0)}, Qt::Key_0, kOnce, &Do::Rate},
    {CommandId::Rate1, kNoCaption, {Alt(Qt::Key_1)}, Qt::Key_1, kOnce, &Do::Rate},
    {CommandId::Rate2, kNoCaption, {Alt(Qt::Key_2)}, Qt::Key_2, kOnce, &Do::Rate},
    {CommandId::Rate3, kNoCaption, {Alt(Qt::Key_3)}, Qt::Key_3, kOnce, &Do::Rate},
    {CommandId::Rate4, kNoCaption, {Alt(Qt::Key_4)}, Qt::Key_4, kOnce, &Do::Rate},
    {CommandId::Copy, kNoCaption, {Ctrl(Qt::Key_C)}, 0, kOnce, &Do::EditText},
    {CommandId::Cut, kNoCaption, {Ctrl(Qt::Key_X)}, 0, kOnce, &Do::EditText},
    {CommandId::Paste, kNoCaption, {Ctrl(Qt::Key_V)}, 0, kRepeats, &Do::EditText},
    {CommandId::Undo, kNoCaption, {Ctrl(Qt::Key_Z)}, 0, kRepeats, &Do::EditText},
};

template <typename Condition>
const Command* Find(const Condition& condition) {
  const auto found = std::find_if(std::begin(kCommands), std::end(kCommands), condition);
  return found != std::end(kCommands) ? found : nullptr;
}

}  // namespace

std::span<const Command> GetCommandTable() { return kCommands; }

const Command* FindCommand(CommandId id) {
  return Find([id](const Command& command) { return command.Id == id; });
}

const Command* FindAccelerator(const KeyChord& chord) {
  if (chord == kNone) return nullptr;
  return Find([&](const Command& command) {
    return std::find(command.Accelerators.begin(), command.Accelerators.end(), chord) !=
           command.Accelerators.end();
  });
}

const Command* FindBareKey(const KeyChord& chord) {
  if (chord.Key == 0 || chord.Modifiers != Qt::NoModifier) return nullptr;
  return Find([&](const Command& command) { return command.BareKey == chord.Key; });
}
