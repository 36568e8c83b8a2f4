#pragma once

#include <array>
#include <span>

#include "resources/StringIds.h"
#include "ui/frame/Keys.h"
#include "ui/kit/Commands.h"

class CMainCommands;

/// What a key does while it is held.
enum class KeyHeld {
  Nothing,     // it counts once
  Repeats,     // the command comes again and again
  MovesStrip,  // likewise, and the strip goes on sliding
};

/// A command of the main window.
struct Command {
  CommandId Id;
  StringId Caption;                      // of its button at rest; StringId{} for none
  std::array<KeyChord, 2> Accelerators;  // from every field and page
  int BareKey;                           // while no field is being edited; 0 for none
  KeyHeld Held;
  void (CMainCommands::*Run)(CommandId id);  // null for what isn't there yet
};

std::span<const Command> GetCommandTable();

/// Null for an id that isn't in the table, or a key that is none of its.
const Command* FindCommand(CommandId id);
const Command* FindAccelerator(const KeyChord& chord);
const Command* FindBareKey(const KeyChord& chord);
