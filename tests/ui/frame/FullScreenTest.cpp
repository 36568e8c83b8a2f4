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
  WritePhotos(3);
  CMainFrame& frame = Start(1);
  const QSize before = frame.size();
  QWidget* const parts[] = {Parts().StripWindow.get(), Parts().TabBar.get(), Parts().PhotoBack.get()};
  Press({Qt::Key_F11});
  QCoreApplication::processEvents();
  EXPECT_TRUE(frame.isFullScreen());
  EXPECT_EQ(Parts().PhotoView->geometry(), frame.rect());
  for (const QWidget* part : parts) EXPECT_FALSE(part->isVisible());
  EXPECT_EQ(Parts().ToolRow->geometry().bottomRight(), frame.rect().bottomRight());
  EXPECT_EQ(Button(CommandId::ToggleFullScreen).GetText(), "View Normal");
  Press({Qt::Key_4, Qt::Key_C, Qt::Key_Tab, Qt::Key_F6});
  EXPECT_EQ(Photo(1).GetCachedRating(), 0) << "the panel doesn't show";
  Press({Qt::Key_F5});
  EXPECT_FALSE(Parts().ToolRow->isVisible());
  EXPECT_EQ(Button(CommandId::ToggleSlideShow).GetText(), "Stop");
  EXPECT_TRUE(QTest::qWaitFor([&] { return ShowsPhoto(2); }, 1000)) << "at once";
  QTest::mouseMove(frame.windowHandle(), QPoint(330, 200));
  QTest::mouseMove(frame.windowHandle(), QPoint(340, 200));
  EXPECT_TRUE(Parts().ToolRow->isVisible());
  EXPECT_TRUE(QTest::qWaitFor([&] { return Position() == 0; }, 3000)) << "round";
  Press({Qt::Key_Space});
  EXPECT_FALSE(frame.IsSlideShowRunning());

  Press({Qt::Key_Escape});
  QCoreApplication::processEvents();
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
  WritePhotos(1);
  CMainFrame& frame = Start();
  const auto tell = [&](bool full) {  // as the toolkit reads the window's state
    const Qt::WindowStates rest = frame.windowState() & ~Qt::WindowFullScreen;
    frame.setWindowState(full ? rest | Qt::WindowFullScreen : rest);
  };
  for (const bool on : {true, false, true}) {
    Press({Qt::Key_F11});
    tell(!on);
    EXPECT_EQ(frame.IsFullScreen(), on);
    EXPECT_TRUE(QTest::qWaitFor([&] { return frame.isFullScreen() == on; }, 5000)) << "asked for again";
  }
  const auto end = [&] {
    tell(false);  // counts once nothing has been asked for a while
    return !frame.IsFullScreen();
  };
  EXPECT_TRUE(QTest::qWaitFor(end, 5000));
  EXPECT_TRUE(Parts().StripWindow->isVisible());
}

TEST_F(FullScreen, ToolsVanishAndComeBackWithTheMouse) {
  QWidget window, photo(&window), row(&window);
  photo.resize(600, 300);
  Activate(window);
  CFullScreenTools tools(window, photo, row);
  const auto moveTo = [&](int x) { tools.OnPointerMoved(window.mapToGlobal(QPoint(x, 200))); };
  const auto areHidden = [&] { return tools.AreHidden(); };
  tools.Hide();
  EXPECT_TRUE(row.isVisible()) << "not in full screen";
  tools.SetActive(true);
  moveTo(300);
  EXPECT_FALSE(QTest::qWaitFor(areHidden, 2500));
  EXPECT_TRUE(QTest::qWaitFor(areHidden, 1500));
  EXPECT_FALSE(row.isVisible());
  EXPECT_TRUE(IsPointerHidden());
  moveTo(300);
  EXPECT_TRUE(areHidden()) << "it has not moved";
  tools.DropMouseMoves();
  moveTo(310);
  EXPECT_TRUE(areHidden()) << "a move that was made during a long operation";
  tools.OnActivationChanged(false);
  EXPECT_FALSE(IsPointerHidden()) << "another window is in front";
  tools.OnActivationChanged(true);
  EXPECT_TRUE(IsPointerHidden());
  QCoreApplication::processEvents();
  moveTo(330);
  EXPECT_TRUE(row.isVisible());
  EXPECT_FALSE(IsPointerHidden());
  tools.Hide();
  tools.SetActive(false);
  EXPECT_FALSE(IsPointerHidden());
}
