#pragma once

#include <QPointer>
#include <Qt>
#include <QtGlobal>
#include <unordered_map>

class QKeyEvent;
class QObject;
struct Command;

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

/// Tells the press of a key from its repeats, and keeps the repeats where the press went: a key that opened a
/// field types nothing into it, and one that ended an edit answers no question.
class CHeldKeys {
 public:
  /// X11 repeats a key as a release and a press of the same time; Qt tells only some of those as repeats.
  bool IsRepeat(const QKeyEvent& press) const;

  void OnRelease(const QKeyEvent& release);

  /// A press is about to be handled as an accelerator of `command` or, if that is null, to go to `receiver`.
  /// False for a repeat of a press that was handled otherwise, or that this program hasn't had.
  bool OnPress(const QKeyEvent& press, QObject* receiver, const Command* command);

 private:
  struct Press {
    QPointer<QObject> Receiver;
    const Command* Accelerator = nullptr;
  };

  std::unordered_map<quint32, Press> Presses;  // the last one of each key, by scan code
  quint32 ReleasedKey = 0;
  quint64 ReleaseTime = 0;  // 0: unknown
};
