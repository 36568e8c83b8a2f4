#include <QCursor>

#include "ui/back/PhotoBack.h"
#include "ui/frame/FrameFixture.h"
#include "ui/kit/Toolbar.h"
#include "ui/pages/ViewTabBar.h"
#include "ui/strip/StripWindow.h"

namespace {

using FullScreen = CFrameFixture;

bool IsPointerHidden() {
  const QCursor* cursor = QGuiApplication::overrideCursor();
  return cursor != nullptr && cursor->shape() == Qt::BlankCursor;
}

}  // namespace

TEST_F(FullScreen, PhotoFillsTheWindowAndEverythingComesBack) {
  AddPhotos(2);
  Show([](CMainFrame& frame) {
    GoTo(frame, 0);
    const QSize before = frame.size();
    QTest::keyClick(&frame, Qt::Key_F11);
    QCoreApplication::processEvents();
    EXPECT_TRUE(frame.isFullScreen());
    EXPECT_EQ(frame.GetPhotoView().geometry(), frame.rect());
    for (QWidget* part :
         {static_cast<QWidget*>(&frame.GetStripWindow()), static_cast<QWidget*>(&frame.GetTabBar()),
          static_cast<QWidget*>(&frame.GetPhotoBack())}) {
      EXPECT_FALSE(part->isVisible()) << qPrintable(part->objectName());
    }
    EXPECT_TRUE(frame.GetToolRow().isVisible());
    EXPECT_EQ(frame.GetToolRow().geometry().bottomRight(), frame.rect().bottomRight());
    EXPECT_EQ(frame.GetToolRow().GetButton(CommandId::ToggleFullScreen)->GetText(), "View Normal");
    EXPECT_TRUE(frame.hasFocus());

    QTest::keyClick(&frame, Qt::Key_Right);
    Rest(frame);
    EXPECT_EQ(Position(frame), 1) << "the strip goes on unseen";
    EXPECT_TRUE(IsNear(PhotoColour(frame), kHues[1]));

    QTest::keyClick(&frame, Qt::Key_Escape);
    QCoreApplication::processEvents();
    EXPECT_FALSE(frame.isFullScreen());
    EXPECT_EQ(frame.size(), before);
    EXPECT_TRUE(frame.GetStripWindow().isVisible());
    EXPECT_TRUE(frame.GetPhotoBack().isVisible());
    EXPECT_TRUE(frame.hasFocus());
    QTest::keyClick(&frame, Qt::Key_Escape);
    EXPECT_FALSE(frame.isFullScreen());

    QTest::mouseDClick(&frame.GetPhotoView(), Qt::LeftButton);
    EXPECT_TRUE(frame.IsFullScreen());
    QTest::mouseDClick(&frame.GetPhotoView(), Qt::LeftButton);
    EXPECT_FALSE(frame.IsFullScreen());
    QCoreApplication::processEvents();
    const CPaintedButton& button = *frame.GetToolRow().GetButton(CommandId::ToggleFullScreen);
    QTest::mouseDClick(frame.windowHandle(), Qt::LeftButton, {}, button.mapTo(&frame, QPoint(5, 5)));
    QCoreApplication::processEvents();
    EXPECT_TRUE(frame.IsFullScreen()) << "the second click was none on the photo";
    QTest::mouseDClick(frame.windowHandle(), Qt::LeftButton, {}, {300, 200});
    EXPECT_FALSE(frame.IsFullScreen());
  });
}

TEST_F(FullScreen, DesktopMayEndItButWhatItTellsOfBeforeIsNoWish) {
  AddPhotos(1);
  Show([](CMainFrame& frame) {
    const auto tell = [&](bool full) {  // as the toolkit reads the window's state
      frame.setWindowState(full ? frame.windowState() | Qt::WindowFullScreen
                                : frame.windowState() & ~Qt::WindowFullScreen);
    };
    for (const bool on : {true, false, true}) {
      QTest::keyClick(&frame, Qt::Key_F11);
      tell(!on);
      EXPECT_EQ(frame.IsFullScreen(), on);
      EXPECT_TRUE(QTest::qWaitFor([&] { return frame.isFullScreen() == on; }, 5000)) << "asked for again";
      EXPECT_EQ(frame.IsFullScreen(), on);
      EXPECT_EQ(frame.GetStripWindow().isVisible(), !on);
    }
    QTest::qWait(1000);
    tell(false);
    EXPECT_FALSE(frame.IsFullScreen());
    EXPECT_TRUE(frame.GetStripWindow().isVisible());
  });
}

TEST_F(FullScreen, ToolsVanishAndComeBackWithTheMouse) {
  AddPhotos(1);
  Show([](CMainFrame& frame) {
    frame.ToggleFullScreen(FullScreenChange::FullScreen);
    QCoreApplication::processEvents();
    CFullScreenTools& tools = frame.GetFullScreenTools();
    tools.OnPointerMoved(frame.mapToGlobal(QPoint(300, 200)));
    EXPECT_FALSE(tools.AreHidden());
    QTest::qWait(2500);
    EXPECT_FALSE(tools.AreHidden());
    EXPECT_TRUE(QTest::qWaitFor([&] { return tools.AreHidden(); }, 1500));
    EXPECT_FALSE(frame.GetToolRow().isVisible());
    EXPECT_TRUE(IsPointerHidden());

    tools.OnPointerMoved(frame.mapToGlobal(QPoint(300, 200)));
    EXPECT_TRUE(tools.AreHidden()) << "it has not moved";
    tools.DropMouseMoves();
    tools.OnPointerMoved(frame.mapToGlobal(QPoint(310, 200)));
    EXPECT_TRUE(tools.AreHidden()) << "a move that was made during a long operation";
    QTest::qWait(5);
    QTest::mouseMove(frame.windowHandle(), QPoint(330, 200));
    EXPECT_FALSE(tools.AreHidden());
    EXPECT_TRUE(frame.GetToolRow().isVisible());
    EXPECT_FALSE(IsPointerHidden());

    tools.Hide();
    tools.OnActivationChanged(false);
    EXPECT_FALSE(IsPointerHidden()) << "another window is in front";
    tools.OnActivationChanged(true);
    EXPECT_TRUE(IsPointerHidden());
    QTest::keyClick(&frame, Qt::Key_F11);
    EXPECT_FALSE(IsPointerHidden());
    EXPECT_TRUE(frame.GetToolRow().isVisible());
  });
}

TEST_F(FullScreen, SlideShowGoesRoundAndHidesTheTools) {
  AddPhotos(3);
  Show([](CMainFrame& frame) {
    GoTo(frame, 1);
    frame.ToggleFullScreen(FullScreenChange::FullScreen);
    QTest::keyClick(&frame, Qt::Key_F5);
    EXPECT_TRUE(frame.IsSlideShowRunning());
    EXPECT_TRUE(frame.GetFullScreenTools().AreHidden());
    EXPECT_FALSE(frame.GetToolRow().isVisible());
    EXPECT_EQ(frame.GetToolRow().GetButton(CommandId::ToggleSlideShow)->GetText(), "Stop");
    EXPECT_TRUE(QTest::qWaitFor([&] { return IsNear(PhotoColour(frame), kHues[2]); }, 1000)) << "at once";
    EXPECT_TRUE(QTest::qWaitFor([&] { return Position(frame) == 0; }, 3000)) << "round";
    QTest::keyClick(&frame, Qt::Key_Space);
    EXPECT_FALSE(frame.IsSlideShowRunning());
    EXPECT_EQ(frame.GetToolRow().GetButton(CommandId::ToggleSlideShow)->GetText(), "Play");
    QTest::keyClick(&frame, Qt::Key_Pause);
    EXPECT_TRUE(frame.IsSlideShowRunning());
    EXPECT_FALSE(frame.GetToolRow().isVisible()) << "they were hidden before it began";
    QTest::keyClick(&frame, Qt::Key_Left);
    EXPECT_FALSE(frame.IsSlideShowRunning());
  });
}
