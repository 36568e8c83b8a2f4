#include <QCursor>

#include "ui/frame/FrameFixture.h"
#include "ui/pages/ViewTabBar.h"

namespace {

using FullScreen = CFrameFixture;

bool IsPointerHidden() {
  const QCursor* cursor = QGuiApplication::overrideCursor();
  return cursor != nullptr && cursor->shape() == Qt::BlankCursor;
}

}  // namespace

TEST_F(FullScreen, PhotoFillsTheWindowAndEverythingComesBack) {
  AddPhotos(2);
  CMainFrame& frame = StartAt(0);
  const QSize before = frame.size();
  QWidget* const parts[] = {Parts().StripWindow.get(), Parts().TabBar.get(), Parts().PhotoBack.get()};
  Press({Qt::Key_F11});
  QCoreApplication::processEvents();
  EXPECT_TRUE(frame.isFullScreen());
  EXPECT_EQ(Parts().PhotoView->geometry(), frame.rect());
  for (const QWidget* part : parts) EXPECT_FALSE(part->isVisible());
  EXPECT_EQ(Parts().ToolRow->geometry().bottomRight(), frame.rect().bottomRight());
  EXPECT_EQ(Button(CommandId::ToggleFullScreen).GetText(), "View Normal");
  Press({Qt::Key_4, Qt::Key_C, Qt::Key_Tab, Qt::Key_F6, Qt::Key_Right});
  Rest();
  EXPECT_EQ(Position(), 1) << "the strip goes on unseen";
  EXPECT_TRUE(ShowsPhoto(1));
  EXPECT_EQ(Photo(0).GetCachedRating(), 0) << "the panel doesn't show";
  Press({Qt::Key_Escape});
  QCoreApplication::processEvents();
  EXPECT_FALSE(frame.isFullScreen());
  EXPECT_EQ(frame.size(), before);
  for (const QWidget* part : parts) EXPECT_TRUE(part->isVisible());
  EXPECT_TRUE(frame.hasFocus());

  QTest::mouseDClick(Parts().PhotoView.get(), Qt::LeftButton);
  EXPECT_TRUE(frame.IsFullScreen());
  QTest::mouseDClick(Parts().PhotoView.get(), Qt::LeftButton);
  EXPECT_FALSE(frame.IsFullScreen());
  QCoreApplication::processEvents();
  const QPoint button = Button(CommandId::ToggleFullScreen).mapTo(&frame, QPoint(5, 5));
  QTest::mouseDClick(frame.windowHandle(), Qt::LeftButton, {}, button);
  QCoreApplication::processEvents();
  EXPECT_TRUE(frame.IsFullScreen()) << "the second click was none on the photo";
}

TEST_F(FullScreen, DesktopMayEndItButWhatItTellsOfBeforeIsNoWish) {
  AddPhotos(1);
  CMainFrame& frame = Start();
  const auto tell = [&](bool full) {  // as the toolkit reads the window's state
    frame.setWindowState(full ? frame.windowState() | Qt::WindowFullScreen
                              : frame.windowState() & ~Qt::WindowFullScreen);
  };
  for (const bool on : {true, false, true}) {
    Press({Qt::Key_F11});
    tell(!on);
    EXPECT_EQ(frame.IsFullScreen(), on);
    EXPECT_TRUE(QTest::qWaitFor([&] { return frame.isFullScreen() == on; }, 5000)) << "asked for again";
    EXPECT_EQ(Parts().StripWindow->isVisible(), !on);
  }
  EXPECT_TRUE(QTest::qWaitFor(
      [&] {
        tell(false);  // counts once nothing has been asked for a while
        return !frame.IsFullScreen();
      },
      5000));
  EXPECT_TRUE(Parts().StripWindow->isVisible());
}

TEST_F(FullScreen, ToolsVanishAndComeBackWithTheMouse) {
  QWidget window;
  QWidget photo(&window);
  QWidget row(&window);
  window.resize(600, 400);
  photo.resize(600, 300);
  Activate(window);
  CFullScreenTools tools(window, photo, row);
  tools.Hide();
  EXPECT_TRUE(row.isVisible()) << "not in full screen";
  tools.SetActive(true);
  tools.OnPointerMoved(window.mapToGlobal(QPoint(300, 200)));
  EXPECT_FALSE(QTest::qWaitFor([&] { return tools.AreHidden(); }, 2500));
  EXPECT_TRUE(QTest::qWaitFor([&] { return tools.AreHidden(); }, 1500));
  EXPECT_FALSE(row.isVisible());
  EXPECT_TRUE(IsPointerHidden());
  tools.OnPointerMoved(window.mapToGlobal(QPoint(300, 200)));
  EXPECT_TRUE(tools.AreHidden()) << "it has not moved";
  tools.DropMouseMoves();
  tools.OnPointerMoved(window.mapToGlobal(QPoint(310, 200)));
  EXPECT_TRUE(tools.AreHidden()) << "a move that was made during a long operation";
  tools.OnActivationChanged(false);
  EXPECT_FALSE(IsPointerHidden()) << "another window is in front";
  tools.OnActivationChanged(true);
  EXPECT_TRUE(IsPointerHidden());
  QCoreApplication::processEvents();
  tools.OnPointerMoved(window.mapToGlobal(QPoint(330, 200)));
  EXPECT_TRUE(row.isVisible());
  EXPECT_FALSE(IsPointerHidden());
  tools.Hide();
  tools.SetActive(false);
  EXPECT_FALSE(IsPointerHidden());
}

TEST_F(FullScreen, SlideShowGoesRoundAndHidesTheTools) {
  AddPhotos(3);
  CMainFrame& frame = StartAt(1);
  frame.ToggleFullScreen(FullScreenChange::FullScreen);
  Press({Qt::Key_F5});
  EXPECT_TRUE(frame.IsSlideShowRunning());
  EXPECT_FALSE(Parts().ToolRow->isVisible());
  EXPECT_EQ(Button(CommandId::ToggleSlideShow).GetText(), "Stop");
  EXPECT_TRUE(QTest::qWaitFor([&] { return ShowsPhoto(2); }, 1000)) << "at once";
  QTest::mouseMove(frame.windowHandle(), QPoint(330, 200));
  QTest::mouseMove(frame.windowHandle(), QPoint(340, 200));
  EXPECT_TRUE(Parts().ToolRow->isVisible());
  EXPECT_TRUE(QTest::qWaitFor([&] { return Position() == 0; }, 3000)) << "round";
  Press({Qt::Key_Space});
  EXPECT_FALSE(frame.IsSlideShowRunning());
  EXPECT_EQ(Button(CommandId::ToggleSlideShow).GetText(), "Play");
}
