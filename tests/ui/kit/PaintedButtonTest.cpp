#include <QAccessible>
#include <QElapsedTimer>
#include <QPainter>

#include "ui/kit/ButtonTest.h"
#include "ui/kit/PaintedButton.h"
#include "ui/kit/Pictures.h"

namespace {

constexpr QPoint kInside(5, 5);
constexpr QPoint kOutside(-5, 5);
constexpr auto kId = CommandId::NextGroup;

class PaintedButton : public testing::Test {
 protected:
  void SetUp() override {
    Window.resize(400, 200);
    Window.show();
  }

  void Make(ButtonFlags flags, PictureId picture = PictureId::NextGroup, int images = 2) {
    Button.Create({100, 100}, kId, flags, picture, images);
    Button.show();
  }
  CButtonTip* FindTip() { return dynamic_cast<CButtonTip*>(Window.findChild<QWidget*>("ButtonTip")); }
  /// The button's look, as a pixmap of that image would be painted there.
  bool Shows(PictureId picture, int index, int count) {
    QImage expected(Button.size(), QImage::Format_RGB32);
    expected.fill(Window.palette().color(QPalette::Window));
    QPainter(&expected).drawPixmap(0, 0, GetPictureImage(picture, index, count, 1));
    return Painted(Window).copy(Button.geometry()) == expected;
  }

  const CFontTable Fonts{false};
  CNotedCommands Target;
  QWidget Window;
  CPaintedButton Button{Target, &Window};
};

}  // namespace

TEST_F(PaintedButton, ClickSendsTheCommandOnceAndAPressMovedAwayNothing) {
  Make(ButtonFlags::None);
  EXPECT_EQ(Button.size(), GetPictureImage(PictureId::NextGroup, 0, 2, 1).size());
  PressAt(Button, kInside);
  MoveHeldTo(Button, kOutside);
  ReleaseAt(Button, kOutside);
  EXPECT_TRUE(Target.Commands.empty());
  EXPECT_EQ(Button.GetState(), ButtonState::Normal);

  PressAt(Button, kInside);
  EXPECT_TRUE(Shows(PictureId::NextGroup, 1, 2));
  EXPECT_TRUE(Target.Commands.empty());
  ReleaseAt(Button, kInside);
  EXPECT_EQ(Target.Commands, std::vector{kId});
  EXPECT_TRUE(Shows(PictureId::NextGroup, 0, 2));

  EXPECT_FALSE(SendMouse(Button, QEvent::MouseButtonPress, kInside, Qt::RightButton, Qt::RightButton));
  EXPECT_EQ(Button.GetState(), ButtonState::Normal);
}

TEST_F(PaintedButton, EachClickOfADoubleClickCounts) {
  Make(ButtonFlags::FireOnPress);
  PressAt(Button, kInside);
  ReleaseAt(Button, kInside);
  SendMouse(Button, QEvent::MouseButtonDblClick, kInside, Qt::LeftButton, Qt::LeftButton);
  ReleaseAt(Button, kInside);
  EXPECT_EQ(Target.Commands.size(), 2U);
}

TEST_F(PaintedButton, RepeatsWhileHeld) {
  Make(ButtonFlags::RepeatWhileHeld);
  QElapsedTimer timer;
  timer.start();
  PressAt(Button, kInside);
  ASSERT_TRUE(QTest::qWaitFor([&] { return !Target.Commands.empty(); }));
  EXPECT_GE(timer.elapsed(), 470) << "half a second of delay, with a coarse timer";
  EXPECT_TRUE(QTest::qWaitFor([&] { return Target.Commands.size() >= 4; }));
  EXPECT_GE(timer.elapsed(), 470 + 3 * 45);

  MoveHeldTo(Button, kOutside);
  auto count = Target.Commands.size();
  QTest::qWait(130);
  EXPECT_EQ(Target.Commands.size(), count);
  MoveHeldTo(Button, kInside);
  EXPECT_TRUE(QTest::qWaitFor([&] { return Target.Commands.size() > count; }));

  ReleaseAt(Button, kInside);
  count = Target.Commands.size();
  QTest::qWait(130);
  EXPECT_EQ(Target.Commands.size(), count);
}

TEST_F(PaintedButton, WhatTakesTheMouseAwayEndsThePress) {
  Make(ButtonFlags::RepeatWhileHeld | ButtonFlags::FireOnPress);
  QEvent deactivate(QEvent::WindowDeactivate);
  PressAt(Button, kInside);
  QCoreApplication::sendEvent(&Button, &deactivate);
  EXPECT_EQ(Button.GetState(), ButtonState::Normal);
  PressAt(Button, kInside);
  Button.hide();
  Button.show();
  EXPECT_EQ(Button.GetState(), ButtonState::Normal);
  PressAt(Button, kInside);
  Button.setEnabled(false);
  EXPECT_EQ(Button.GetState(), ButtonState::Disabled);
  const auto count = Target.Commands.size();
  QTest::qWait(650);
  EXPECT_EQ(Target.Commands.size(), count) << "none of them may go on repeating";
}

TEST_F(PaintedButton, HoverLookNeedsThreeImages) {
  Make(ButtonFlags::None, PictureId::EmptyStar, 3);
  MoveOver(Button, kInside);
  EXPECT_EQ(Button.GetState(), ButtonState::Hover);
  EXPECT_TRUE(Shows(PictureId::EmptyStar, 2, 3));
  QEvent leave(QEvent::Leave);
  QCoreApplication::sendEvent(&Button, &leave);
  EXPECT_TRUE(Shows(PictureId::EmptyStar, 0, 3));

  Button.SetPicture(PictureId::NextGroup, 2, true);
  MoveOver(Button, kInside);
  EXPECT_EQ(Button.GetState(), ButtonState::Normal);
}

TEST_F(PaintedButton, DisabledKeepsItsLookAndLeavesTheMouseToItsParent) {
  Make(ButtonFlags::None);
  Button.setEnabled(false);
  EXPECT_EQ(Button.GetState(), ButtonState::Disabled);
  EXPECT_TRUE(Shows(PictureId::NextGroup, 0, 2));
  EXPECT_FALSE(SendMouse(Button, QEvent::MouseButtonPress, kInside, Qt::LeftButton, Qt::LeftButton));
  ReleaseAt(Button, kInside);
  EXPECT_TRUE(Target.Commands.empty());
  Button.setEnabled(true);
  EXPECT_EQ(Button.GetState(), ButtonState::Normal);
}

TEST_F(PaintedButton, StaysPressedWhileItsCommandIsHandled) {
  Make(ButtonFlags::StayPressedUntilHandled);
  ButtonState meanwhile{};
  Target.OnEach = [&] { meanwhile = Button.GetState(); };
  ClickIn(Button);
  EXPECT_EQ(meanwhile, ButtonState::Pressed);
  EXPECT_EQ(Button.GetState(), ButtonState::Normal);
}

TEST_F(PaintedButton, ItsCommandMayDeleteIt) {
  for (const auto flags : {ButtonFlags::StayPressedUntilHandled, ButtonFlags::FireOnPress}) {
    auto button = std::make_unique<CPaintedButton>(Target, &Window);
    button->Create({}, kId, flags, PictureId::NextGroup, 2);
    Target.OnEach = [&] { button.reset(); };
    PressAt(*button, kInside);
    if (button) ReleaseAt(*button, kInside);
    EXPECT_EQ(button, nullptr);
  }
}

TEST_F(PaintedButton, CaptionThatStaysGoesWithItsButton) {
  Make(ButtonFlags::TipStays, PictureId::EmailPhoto);
  Button.SetTipSide(TipSide::Below);
  Button.setGeometry(100, 100, 90, 26);
  const CButtonTip* tip = FindTip();
  ASSERT_NE(tip, nullptr);
  EXPECT_TRUE(tip->isVisible());
  EXPECT_EQ(tip->accessibleName(), "Email Photo");
  EXPECT_EQ(Button.toolTip(), "Put photo in Email tab\nShortcut key: M");
  EXPECT_EQ(tip->y(), 124) << "it overlaps the last two rows";
  Button.move(30, 20);
  EXPECT_EQ(tip->y(), 44);
  EXPECT_NEAR(tip->geometry().center().x(), Button.geometry().center().x(), 1);

  QEvent leave(QEvent::Leave);
  QCoreApplication::sendEvent(&Button, &leave);
  ClickIn(Button);
  EXPECT_TRUE(tip->isVisible());
  Button.SetPicture(PictureId::DoNotEmailPhoto, 2, false);
  EXPECT_EQ(tip->accessibleName(), "Don't Email Photo");
  Button.SetCaptionForm(FontId::Small, 40);
  EXPECT_LE(tip->width(), 41);
  EXPECT_EQ(Button.GetText(), "Don't Email Photo");
  Button.hide();
  EXPECT_FALSE(tip->isVisible());
  Button.show();
  EXPECT_TRUE(tip->isVisible());
  Button.EnableTip(false);
  EXPECT_FALSE(tip->isVisible());
}

TEST_F(PaintedButton, CaptionWithoutTheFlagComesWithThePointer) {
  Make(ButtonFlags::None, PictureId::EmailPhoto);
  Button.setGeometry(100, 100, 90, 26);
  EXPECT_EQ(FindTip(), nullptr);
  MoveOver(Button, kInside);
  const CButtonTip* tip = FindTip();
  ASSERT_NE(tip, nullptr);
  EXPECT_TRUE(tip->isVisible());
  EXPECT_EQ(tip->geometry().bottom(), 102) << "it ends 3 pixels below the button's top";
  ClickIn(Button);
  EXPECT_FALSE(tip->isVisible()) << "firing hides it";
  MoveOver(Button, kInside);
  EXPECT_TRUE(tip->isVisible());
  QEvent leave(QEvent::Leave);
  QCoreApplication::sendEvent(&Button, &leave);
  EXPECT_FALSE(tip->isVisible());
}

TEST_F(PaintedButton, TipStringOverridesTheToolTipAlone) {
  Make(ButtonFlags::None, PictureId::EmailPhoto);
  Button.SetTipString(StringId::RatePhoto);
  EXPECT_EQ(Button.toolTip(), "Rate photo\nShortcut key: 0-4");
  EXPECT_EQ(Button.GetText(), "Email Photo");
  Button.SetPicture(PictureId::DoNotEmailPhoto, 2, true);
  EXPECT_EQ(Button.toolTip(), "Rate photo\nShortcut key: 0-4");
}

TEST_F(PaintedButton, AssistiveToolsSeeAButtonAndPressIt) {
  Make(ButtonFlags::None, PictureId::NextGroup);
  QAccessibleInterface* face = QAccessible::queryAccessibleInterface(&Button);
  ASSERT_NE(face, nullptr);
  EXPECT_EQ(face->role(), QAccessible::Button);
  EXPECT_EQ(face->text(QAccessible::Name), "Go to next group") << "without a caption the tip's first line";
  ASSERT_NE(face->actionInterface(), nullptr);
  face->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
  EXPECT_TRUE(QTest::qWaitFor([&] { return !Target.Commands.empty(); }));
  EXPECT_EQ(Target.Commands, std::vector{kId});
}

TEST_F(PaintedButton, TextButtonPaintsItsPlateAndMovesItsTextWhenPressed) {
  Button.CreateText({10, 10, 95, 20}, kId, "Close", ButtonFlags::None, false);
  Button.show();
  const auto look = [&] { return Painted(Window).copy(Button.geometry()); };
  const QImage rest = look();
  PressAt(Button, kInside);
  const QImage pressed = look();
  ReleaseAt(Button, kInside);
  EXPECT_EQ(Target.Commands, std::vector{kId});
  EXPECT_EQ(look(), rest);
  Button.CreateText({10, 10, 95, 20}, kId, "Close", ButtonFlags::None, true);
  const QImage byDefault = look();
  EXPECT_NE(byDefault, rest);

  const auto leftOfInk = [](const QImage& image) {
    for (int x = 12; x < image.width(); ++x) {
      for (int y = 4; y < image.height() - 4; ++y) {
        if (image.pixelColor(x, y).lightness() < 80) return x;
      }
    }
    return -1;
  };
  EXPECT_GT(leftOfInk(rest), 12);
  EXPECT_EQ(leftOfInk(pressed), leftOfInk(rest) + 2);
}

TEST(ButtonTip, StandsBesideItsOwnerInsideTheBounds) {
  constexpr QRect kBounds(0, 0, 400, 300);
  constexpr QSize kTip(60, 15);
  const auto place = [&](QRect owner, TipSide side) { return PlaceButtonTip(kTip, owner, side, kBounds); };
  constexpr QRect kMiddle(100, 100, 40, 20);
  EXPECT_EQ(place(kMiddle, TipSide::Above), QRect(90, 88, 60, 15));
  EXPECT_EQ(place(kMiddle, TipSide::Below), QRect(90, 118, 60, 15));
  EXPECT_EQ(place({100, 5, 40, 20}, TipSide::Above).top(), 23) << "no room above";
  EXPECT_EQ(place({100, 275, 40, 20}, TipSide::Below).top(), 263) << "no room below";
  EXPECT_EQ(place({2, 100, 40, 20}, TipSide::Above).left(), 0);
  EXPECT_EQ(place({390, 100, 40, 20}, TipSide::Below).left(), 340);
}
