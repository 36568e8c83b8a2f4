#pragma once

#include <Qt>

class QKeyEvent;

/// A key with the modifiers held.
struct KeyChord {
  int Key = 0;  // Qt::Key; 0 for none
  Qt::KeyboardModifiers Modifiers = Qt::NoModifier;
  friend bool operator==(const KeyChord&, const KeyChord&) = default;
};

/// The key of an event, so that every keyboard layout has the commands: the Latin letter or digit that was
/// typed, also on the keypad; else, where a character of another script was typed, the Latin letter of that
/// key position, and where any other character was typed, its digit; else the key itself. Shift counts only
/// with keys that are neither letters nor digits.
KeyChord ReadKeyChord(const QKeyEvent& event);
