#include "ui/controls/ButtonPress.h"

bool CButtonPress::Press() {
  if (State == ButtonState::Disabled) return false;
  State = ButtonState::Pressed;
  Held = true;
  DelayPending = HasFlag(Flags, ButtonFlags::RepeatWhileHeld);
  return HasFlag(Flags, ButtonFlags::FireOnPress);
}

void CButtonPress::Hover() {
  if (!Held && State != ButtonState::Disabled) State = ButtonState::Hover;
}

void CButtonPress::Move(bool inside) {
  if (Held) State = inside ? ButtonState::Pressed : ButtonState::Normal;
}

bool CButtonPress::Release() {
  if (!Held) return false;
  const bool fire = State == ButtonState::Pressed && !Repeating && !HasFlag(Flags, ButtonFlags::FireOnPress);
  Held = DelayPending = Repeating = false;
  if (!fire || !HasFlag(Flags, ButtonFlags::StayPressedUntilHandled)) State = ButtonState::Normal;
  return fire;
}

void CButtonPress::Settle() {
  if (State == ButtonState::Pressed && !Held) State = ButtonState::Normal;
}

void CButtonPress::Leave() {
  if (State == ButtonState::Hover) State = ButtonState::Normal;
}

void CButtonPress::SetEnabled(bool on) {
  Cancel();
  State = on ? ButtonState::Normal : ButtonState::Disabled;
}

void CButtonPress::Cancel() {
  Held = DelayPending = Repeating = false;
  if (State != ButtonState::Disabled) State = ButtonState::Normal;
}

bool CButtonPress::EndDelay() {
  if (!IsDelayRunning()) return false;
  DelayPending = false;
  Repeating = true;
  return true;
}
