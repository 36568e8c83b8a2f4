#include <QAccessible>
#include <QKeyEvent>

#include "ui/WindowTest.h"
#include "ui/kit/RatingControl.h"
#include "ui/kit/Toolbar.h"

namespace {

constexpr QPoint kInside(5, 5);
constexpr QPoint kOutside(-5, 5);

class CNotedCommands : public CCommandTarget {
 public:
  void OnCommand(CommandId id) override {
    Commands.push_back(id);
    if (OnEach) OnEach();
  }

  std::vector<CommandId> Commands;
  std::function<void()> OnEach;
};

void PressAt(QWidget& widget, QPoint at) { QTest::mousePress(&widget, Qt::LeftButton, {}, at); }
void ReleaseAt(QWidget& widget, QPoint at) { QTest::mouseRelease(&widget, Qt::LeftButton, {}, at); }
void SendTo(QWidget& widget, QEvent::Type type) {
  QEvent event(type);
  QCoreApplication::sendEvent(&widget, &event);
}

class PaintedButton : public testing::Test {
 protected:
  void Make(ButtonFlags flags, PictureId picture = PictureId::NextGroup, int images = 2) {
    Window.resize(400, 200);
    Window.show();
    Button.Create({100, 100}, CommandId::NextGroup, flags, picture, images);
    Button.show();
  }

  const CFontTable Fonts{false};
  CNotedCommands Target;
  QWidget Window;
  CPaintedButton Button{Target, &Window};
};

}  // namespace

TEST_F(PaintedButton, ClickFiresOnceAndAPressMovedAwayDoesNot) {
  Make(ButtonFlags::None);
  PressAt(Button, kInside);
  QTest::mouseMove(&Button, kOutside);
  EXPECT_EQ(Button.GetState(), ButtonState::Normal);
  ReleaseAt(Button, kOutside);
  QTest::mouseClick(&Button, Qt::RightButton);
  EXPECT_TRUE(Target.Commands.empty());
  PressAt(Button, kInside);
  QTest::mouseMove(&Button, kOutside);
  QTest::mouseMove(&Button, kInside);
  EXPECT_TRUE(Target.Commands.empty());
  ReleaseAt(Button, kInside);
  EXPECT_EQ(Target.Commands, std::vector{CommandId::NextGroup});
}

TEST_F(PaintedButton, FiresOnEachPressOfADoubleClick) {
  Make(ButtonFlags::FireOnPress);
  PressAt(Button, kInside);
  EXPECT_EQ(Target.Commands.size(), 1U);
  ReleaseAt(Button, kInside);
  QTest::mouseDClick(&Button, Qt::LeftButton);
  EXPECT_EQ(Target.Commands.size(), 2U);
}

TEST_F(PaintedButton, RepeatsWhileItIsHeldUntilTheMouseIsTakenAway) {
  Make(ButtonFlags::RepeatWhileHeld);
  const auto repeats = [this](int milliseconds) {
    const auto count = Target.Commands.size();
    return QTest::qWaitFor([&] { return Target.Commands.size() >= count + 2; }, milliseconds);
  };
  PressAt(Button, kInside);
  EXPECT_FALSE(repeats(400)) << "half a second passes first";
  EXPECT_TRUE(repeats(5000));
  QTest::mouseMove(&Button, kOutside);
  EXPECT_FALSE(repeats(120));
  QTest::mouseMove(&Button, kInside);
  EXPECT_TRUE(repeats(5000));
  SendTo(Button, QEvent::WindowDeactivate);
  EXPECT_FALSE(repeats(120));
  PressAt(Button, kInside);
  Button.setEnabled(false);
  EXPECT_EQ(Button.GetState(), ButtonState::Disabled);
  EXPECT_FALSE(repeats(120));
}

TEST_F(PaintedButton, ItsCommandMayDeleteIt) {
  for (const auto flags : {ButtonFlags::StayPressedUntilHandled, ButtonFlags::FireOnPress}) {
    auto button = std::make_unique<CPaintedButton>(Target, &Window);
    button->Create({}, CommandId::NextGroup, flags, PictureId::NextGroup, 2);
    Target.OnEach = [&] { button.reset(); };
    PressAt(*button, kInside);
    if (button) ReleaseAt(*button, kInside);
    EXPECT_EQ(button, nullptr);
  }
}

TEST_F(PaintedButton, CaptionStaysWithItsButtonOrComesWithThePointer) {
  const auto isTipShown = [&] { return Window.findChild<QWidget*>("ButtonTip")->isVisible(); };
  Make(ButtonFlags::TipStays, PictureId::EmailPhoto);
  EXPECT_EQ(Button.toolTip(), "Put photo in Email tab\nShortcut key: M");
  SendTo(Button, QEvent::Leave);
  EXPECT_TRUE(isTipShown());
  Button.hide();
  EXPECT_FALSE(isTipShown());
  Make(ButtonFlags::None, PictureId::DoNotEmailPhoto);
  EXPECT_FALSE(isTipShown());
  QTest::mouseMove(&Button, kInside);
  EXPECT_TRUE(isTipShown());
  SendTo(Button, QEvent::Leave);
  EXPECT_FALSE(isTipShown());
}

TEST_F(PaintedButton, AssistiveToolsSeeAButtonAndPressIt) {
  struct Texts {
    PictureId Picture;
    const char* Name;
    const char* Description;
    const char* Key;
  };
  for (const Texts& texts :
       {Texts{PictureId::NextGroup, "Go to next group", "", "Down Arrow"},
        {PictureId::AutoFix, "AutoFix", "Automatically adjust brightness and color balance", "F"},
        {PictureId::Restore, "Restore", "", ""}}) {
    Make(ButtonFlags::None, texts.Picture);
    QAccessibleInterface* face = QAccessible::queryAccessibleInterface(&Button);
    EXPECT_EQ(face->role(), QAccessible::Button);
    EXPECT_EQ(face->text(QAccessible::Name), texts.Name);
    EXPECT_EQ(face->text(QAccessible::Description), texts.Description);
    EXPECT_EQ(face->text(QAccessible::Accelerator), texts.Key);
    Target.Commands.clear();
    face->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_TRUE(QTest::qWaitFor([&] { return Target.Commands.size() == 1; }));
  }
}

TEST_F(PaintedButton, SpaceAndEnterPressItOnceAndOtherKeysAreItsParents) {
  struct CParent : QWidget {
    void keyPressEvent(QKeyEvent* event) override { Keys.push_back(event->key()); }
    std::vector<int> Keys;
  } parent;
  CPaintedButton button(Target, &parent);
  button.CreateText({0, 0, 80, 20}, CommandId::NextGroup, "Close", ButtonFlags::None, true);
  CPaintedButton other(Target, &parent);
  other.CreateText({0, 30, 80, 20}, CommandId::Help, "Help", ButtonFlags::None, false);
  parent.show();
  parent.setFocus();
  parent.activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&parent));
  const QImage plain = Painted(button);
  QTest::mouseClick(&button, Qt::LeftButton);
  EXPECT_FALSE(button.hasFocus());
  button.setFocus(Qt::TabFocusReason);
  EXPECT_NE(Painted(button), plain);
  Target.Commands.clear();

  const auto send = [&](QEvent::Type type, int key, bool repeat, quint64 time) {
    QKeyEvent event(type, key, Qt::NoModifier, 0, 0, 0, QString(), repeat);
    event.setTimestamp(time);
    QCoreApplication::sendEvent(&button, &event);
  };
  for (const int key : {Qt::Key_Space, Qt::Key_Return, Qt::Key_Enter}) {
    const auto before = Target.Commands.size();
    send(QEvent::KeyPress, key, false, 100);
    send(QEvent::KeyRelease, key, true, 200);
    send(QEvent::KeyPress, key, true, 200);
    send(QEvent::KeyRelease, key, false, 300);  // a repeat that isn't told as one
    send(QEvent::KeyPress, key, false, 300);
    send(QEvent::KeyRelease, key, false, 400);
    EXPECT_EQ(Target.Commands.size(), before + 1) << key;
  }
  send(QEvent::KeyPress, Qt::Key_Space, false, 500);
  EXPECT_EQ(button.GetState(), ButtonState::Pressed);
  other.setFocus(Qt::OtherFocusReason);
  send(QEvent::KeyRelease, Qt::Key_Space, false, 600);
  EXPECT_EQ(Target.Commands.size(), 3U) << "the focus left before the release";
  button.setFocus(Qt::OtherFocusReason);
  EXPECT_EQ(Painted(button), plain) << "no frame, for no key brought the focus";

  for (const int key : {Qt::Key_Left, Qt::Key_Down, Qt::Key_A}) send(QEvent::KeyPress, key, false, 700);
  EXPECT_EQ(parent.Keys, (std::vector<int>{Qt::Key_Left, Qt::Key_Down, Qt::Key_A}));
  EXPECT_TRUE(button.hasFocus());
  button.setEnabled(false);
  EXPECT_TRUE(parent.hasFocus()) << "not the next button, which the next key would press";
}

TEST(ButtonTip, StandsBesideItsOwnerInsideTheBounds) {
  const auto place = [](QRect owner, TipSide side) {
    return PlaceButtonTip({60, 15}, owner, side, {0, 0, 400, 300}).topLeft();
  };
  EXPECT_EQ(place({100, 100, 40, 20}, TipSide::Above), QPoint(90, 88));
  EXPECT_EQ(place({2, 5, 40, 20}, TipSide::Above), QPoint(0, 23)) << "no room above";
  EXPECT_EQ(place({390, 275, 40, 20}, TipSide::Below), QPoint(340, 263)) << "no room below";
}

TEST(RatingControl, ClickGivesTheStarsAndOneOnTheLastTakesItAway) {
  struct Owner : CRatingOwner {
    int GetRating() const override { return Rating; }
    void SetRating(int rating) override { Next = rating; }
    void Commit() override { Rating = Next; }
    int Rating = 0;
    int Next = 0;
  };
  const CFontTable fonts(false);
  Owner owner;
  CRatingControl control(owner, nullptr);
  const int cases[][3] = {{0, 1, 1}, {0, 4, 4}, {1, 1, 0}, {3, 3, 2}, {3, 4, 4}, {3, 1, 1}, {4, 4, 3}};
  for (const auto& [before, star, after] : cases) {
    owner.Rating = before;
    control.Refresh();
    EXPECT_EQ(Painted(control).pixelColor(21 * star - 10, 11).saturation() > 100, star <= before);
    QTest::mousePress(control.childAt(21 * star - 10, 10), Qt::LeftButton);
    EXPECT_EQ(owner.Rating, after) << "star " << star << " of " << before;
  }
}

TEST(Toolbar, GivesUpMarginsThenGapsThenLettersThenTheEndsOfCaptions) {
  const std::vector<ToolbarItem> items = {{0, 90, {60, 50, 40}}, {10, 90, {70, 60, 50}}};
  // Width of the row, number of the font, then left edge, width and width of the caption of both buttons.
  const int cases[][8] = {{160, 0, 2, 68, 60, 80, 78, 70},
                          {142, 0, 2, 62, 60, 68, 72, 70},
                          {141, 1, 2, 58, 50, 70, 68, 60},
                          {80, 2, 2, 36, 34, 42, 36, 34}};
  for (const auto& [row, font, left, width, caption, left2, width2, caption2] : cases) {
    const ToolbarPlan plan = ArrangeToolbar(items, row);
    std::vector<int> got;
    for (const auto& place : plan.Places) {
      got.insert(got.end(), {place.Left, place.Width, place.CaptionWidth});
    }
    EXPECT_EQ(got, (std::vector{left, width, caption, left2, width2, caption2})) << row;
    EXPECT_EQ(plan.CaptionFont, kCaptionFonts[static_cast<std::size_t>(font)]) << row;
  }
}
