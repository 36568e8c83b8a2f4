#include <gtest/gtest.h>

#include "ui/kit/ButtonPress.h"

TEST(ButtonPress, FiresOnPressOrOnRelease) {
  CButtonPress plain;
  EXPECT_FALSE(plain.Press());
  EXPECT_EQ(plain.GetState(), ButtonState::Pressed);
  EXPECT_TRUE(plain.Release());
  EXPECT_EQ(plain.GetState(), ButtonState::Normal);
  EXPECT_FALSE(plain.Release()) << "a release without a press";

  CButtonPress early(ButtonFlags::FireOnPress);
  EXPECT_TRUE(early.Press());
  EXPECT_FALSE(early.Release());
  EXPECT_EQ(early.GetState(), ButtonState::Normal);
}

TEST(ButtonPress, ReleasedOutsideItFiresNothing) {
  CButtonPress press;
  press.Press();
  press.Move(false);
  EXPECT_EQ(press.GetState(), ButtonState::Normal);
  EXPECT_TRUE(press.IsHeld());
  EXPECT_FALSE(press.Release());
  press.Press();
  press.Move(false);
  press.Move(true);
  EXPECT_EQ(press.GetState(), ButtonState::Pressed);
  EXPECT_TRUE(press.Release()) << "back inside";
}

TEST(ButtonPress, RepeatsAfterTheDelayWhileThePointerIsInside) {
  CButtonPress press(ButtonFlags::RepeatWhileHeld);
  EXPECT_FALSE(press.Press());
  EXPECT_TRUE(press.IsDelayRunning());
  press.Move(false);
  EXPECT_FALSE(press.IsDelayRunning());
  EXPECT_FALSE(press.EndDelay()) << "a late tick";
  press.Move(true);
  EXPECT_TRUE(press.IsDelayRunning());
  EXPECT_FALSE(press.IsRepeatRunning());

  EXPECT_TRUE(press.EndDelay());
  EXPECT_FALSE(press.IsDelayRunning());
  EXPECT_TRUE(press.IsRepeatRunning());
  press.Move(false);
  EXPECT_FALSE(press.IsRepeatRunning() || press.IsDelayRunning());
  press.Move(true);
  EXPECT_TRUE(press.IsRepeatRunning());
  EXPECT_FALSE(press.Release()) << "it has fired already";
  EXPECT_FALSE(press.IsRepeatRunning());

  press.Press();
  EXPECT_TRUE(press.Release()) << "let go before it repeats";
  EXPECT_FALSE(press.IsDelayRunning());
}

TEST(ButtonPress, StaysPressedUntilTheCommandIsHandled) {
  CButtonPress press(ButtonFlags::StayPressedUntilHandled);
  press.Press();
  EXPECT_TRUE(press.Release());
  EXPECT_EQ(press.GetState(), ButtonState::Pressed);
  press.Settle();
  EXPECT_EQ(press.GetState(), ButtonState::Normal);

  press.Press();
  EXPECT_TRUE(press.Release());
  press.SetEnabled(false);
  press.Settle();
  EXPECT_EQ(press.GetState(), ButtonState::Disabled) << "disabled by its own command";
}

TEST(ButtonPress, DisablingEndsAPress) {
  CButtonPress press(ButtonFlags::RepeatWhileHeld | ButtonFlags::FireOnPress);
  press.Press();
  press.EndDelay();
  press.SetEnabled(false);
  EXPECT_FALSE(press.IsHeld() || press.IsRepeatRunning());
  EXPECT_FALSE(press.Press());
  press.Hover();
  press.Leave();
  EXPECT_EQ(press.GetState(), ButtonState::Disabled);
  press.SetEnabled(true);
  EXPECT_EQ(press.GetState(), ButtonState::Normal);
  press.Hover();
  EXPECT_EQ(press.GetState(), ButtonState::Hover);
  press.Leave();
  EXPECT_EQ(press.GetState(), ButtonState::Normal);
}
