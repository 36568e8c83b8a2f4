#pragma once

#include "ui/kit/Flags.h"

/// The numbers are the positions of the looks in a button's picture.
enum class ButtonState : int { Normal = 0, Pressed = 1, Hover = 2, Disabled = 3 };

/// How a button behaves; combined with `|`.
enum class ButtonFlags : unsigned {
  None = 0,
  FireOnPress = 1,              // on mouse down; else on mouse up inside the button
  RepeatWhileHeld = 2,          // the command
  StayPressedUntilHandled = 4,  // for a command that takes a while
  TipStays = 8,                 // the caption is on view with the button, not only under the pointer
};

template <>
inline constexpr bool kIsFlagSet<ButtonFlags> = true;

/// What mouse and keys do to a button: its state, when the command fires, when it repeats. It knows neither
/// window nor clock: after each call its owner runs the two timers as asked, and sends the command if the
/// call returned true.
class CButtonPress {
 public:
  explicit CButtonPress(ButtonFlags flags = ButtonFlags::None) : Flags(flags) {}

  ButtonFlags GetFlags() const { return Flags; }
  ButtonState GetState() const { return State; }
  /// From mouse down to mouse up, wherever the pointer goes meanwhile.
  bool IsHeld() const { return Held; }

  bool Press();
  /// The pointer moves over the button while nothing is held.
  void Hover();
  /// The pointer moves while the button is held.
  void Move(bool inside);
  bool Release();
  /// The command that Release asked for has been handled.
  void Settle();
  void Leave();
  /// Enabling and disabling, and what takes the mouse away, end a press without a command.
  void SetEnabled(bool on);
  void Cancel();

  bool IsDelayRunning() const { return DelayPending && State == ButtonState::Pressed; }
  /// The delay before repetition is over.
  bool EndDelay();
  /// While this holds the command fires at every tick.
  bool IsRepeatRunning() const { return Repeating && State == ButtonState::Pressed; }

 private:
  ButtonFlags Flags;
  ButtonState State = ButtonState::Normal;
  bool Held = false;
  bool DelayPending = false;
  bool Repeating = false;
};
