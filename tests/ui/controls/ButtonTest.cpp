#include <QAccessible>
#include <QKeyEvent>

#include "ui/WindowTest.h"
#include "ui/controls/Toolbar.h"

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

TEST_F(PaintedButton, AssistiveToolsSeeAButtonAndPressIt) {
  const std::tuple<PictureId, const char*, const char*, const char*> rows[] = {
      {PictureId::AutoFix, "AutoFix", "Automatically adjust brightness and color balance", "F"},
      {PictureId::Restore, "Restore", "", ""},
  };
  for (const auto& [picture, name, description, key] : rows) {
    Make(ButtonFlags::None, picture);
    QAccessibleInterface* face = QAccessible::queryAccessibleInterface(&Button);
    EXPECT_EQ(face->role(), QAccessible::Button);
    EXPECT_EQ(face->text(QAccessible::Name), name);
    EXPECT_EQ(face->text(QAccessible::Description), description);
    EXPECT_EQ(face->text(QAccessible::Accelerator), key);
    Target.Commands.clear();
    face->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_TRUE(QTest::qWaitFor([&] { return Target.Commands.size() == 1; }));
  }
}

TEST_F(PaintedButton, SpaceAndEnterPressItOnceAndAFrameShowsTheFocusThatAKeyBrought) {
  Button.CreateText({0, 0, 80, 20}, CommandId::NextGroup, "Close", ButtonFlags::None, true);
  CPaintedButton other(Target, &Window);
  other.CreateText({0, 30, 80, 20}, CommandId::Help, "Help", ButtonFlags::None, false);
  Window.show();
  Window.setFocus();
  Window.activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&Window));
  const QImage plain = Painted(Button);
  QTest::mouseClick(&Button, Qt::LeftButton);
  EXPECT_FALSE(Button.hasFocus());
  Button.setFocus(Qt::TabFocusReason);
  EXPECT_NE(Painted(Button), plain);
  Target.Commands.clear();

  const auto send = [&](QEvent::Type type, int key, bool repeat, quint64 time) {
    QKeyEvent event(type, key, Qt::NoModifier, 0, 0, 0, QString(), repeat);
    event.setTimestamp(time);
    QCoreApplication::sendEvent(&Button, &event);
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
  EXPECT_EQ(Button.GetState(), ButtonState::Pressed);
  other.setFocus(Qt::OtherFocusReason);
  send(QEvent::KeyRelease, Qt::Key_Space, false, 600);
  EXPECT_EQ(Target.Commands.size(), 3U) << "the focus left before the release";
  Button.setFocus(Qt::OtherFocusReason);
  EXPECT_NE(Painted(Button), plain);
  QTest::mouseClick(&Window, Qt::LeftButton);
  Button.setFocus(Qt::OtherFocusReason);
  EXPECT_EQ(Painted(Button), plain) << "the mouse is used";
}

TEST(Toolbar, ButtonsShareARowOfAnyWidth) {
  const std::vector<ToolbarItem> items = {{0, 90, {60, 50, 40}}, {10, 90, {70, 60, 50}}};
  for (int width = 80; width < 200; ++width) {
    const ToolbarPlan plan = ArrangeToolbar(items, width);
    int end = 0;
    for (const ToolbarPlace& place : plan.Places) {
      EXPECT_GE(place.Left, end) << width;
      EXPECT_LE(place.CaptionWidth, place.Width);
      end = place.Left + place.Width;
    }
    EXPECT_NEAR(width - end, plan.Places.front().Left, 1) << width;
    EXPECT_EQ(plan.CaptionFont, kCaptionFonts[width >= 142 ? 0 : width >= 122 ? 1 : 2]) << width;
  }
}
