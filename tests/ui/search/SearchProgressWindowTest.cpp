#include "discovery/SearchProgress.h"
#include "ui/WindowTest.h"
#include "ui/kit/Colours.h"
#include "ui/kit/Job.h"
#include "ui/search/SearchProgressWindow.h"
#include "ui/search/WindowedSearchProgress.h"

TEST(SearchProgressWindow, StopsByButtonEscAndCloseAndGoesOnByAnyOtherKey) {
  const CFontTable fonts(false);
  CSearchProgressWindow window(false);
  window.ShowCentered();
  auto* button = window.findChild<QAbstractButton*>("StopSearching");

  QTest::mouseClick(button, Qt::LeftButton);
  EXPECT_TRUE(window.IsStopRequested());
  QTest::keyClick(&window, Qt::Key_A);
  EXPECT_FALSE(window.IsStopRequested());
  QTest::keyClick(&window, Qt::Key_Escape);
  EXPECT_TRUE(window.IsStopRequested());
  QTest::keyClick(&window, Qt::Key_Space);
  EXPECT_FALSE(window.IsStopRequested()) << "the button must not take the keys";
  QTest::keyClick(&window, Qt::Key_Tab);
  QTest::keyClick(window.focusWidget(), Qt::Key_Return);
  EXPECT_TRUE(window.IsStopRequested()) << "until Tab has led to it";
  QTest::keyClick(&window, Qt::Key_A);
  window.close();
  EXPECT_TRUE(window.IsStopRequested());
  EXPECT_TRUE(window.isVisible());
}

TEST(SearchProgressWindow, ReportsOfASearchReachIt) {
  const CFontTable fonts(false);
  CWindowedSearchProgress progress(false, false);
  EXPECT_FALSE(progress.GetWindow().isVisible());
  const std::string path = "/photos/a.jpg";
  const std::string jpeg = MakePhoto(140, 105, Qt::green);
  const std::vector<std::uint8_t> green(jpeg.begin(), jpeg.end());
  RunJob([&] {
    EXPECT_TRUE(progress.SetTotal(3));
    for (int i = 0; i < 3; ++i) progress.Progress({i, path, green, true});
  });
  EXPECT_TRUE(progress.GetWindow().isVisible());
  const QColor shown = Painted(progress.GetWindow()).pixelColor(ProgressCell(false, 0).center());
  EXPECT_GT(shown.green(), 200);
  const QColor end = Painted(progress.GetWindow()).pixelColor(ProgressBar(false).topRight());
  EXPECT_EQ(end, colours::kProgress) << "the last report is shown, however soon it comes";
  progress.Stop();
  const std::vector<std::uint8_t> broken(30);
  EXPECT_FALSE(progress.Progress({2, path, broken, true})) << "a picture that can't be read is left out";
}
