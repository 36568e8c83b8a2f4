#include "discovery/SearchProgress.h"
#include "ui/WindowTest.h"
#include "ui/kit/Colours.h"
#include "ui/kit/Job.h"
#include "ui/search/SearchProgressWindow.h"
#include "ui/search/WindowedSearchProgress.h"

namespace {

class SearchProgressWindow : public testing::Test {
 protected:
  const CFontTable Fonts{false};
};

}  // namespace

TEST_F(SearchProgressWindow, StopsByButtonEscAndCloseAndGoesOnByAnyOtherKey) {
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
  window.close();
  EXPECT_TRUE(window.IsStopRequested());
  EXPECT_TRUE(window.isVisible());
}

TEST_F(SearchProgressWindow, ReportsOfASearchReachIt) {
  CWindowedSearchProgress progress(false, false);
  EXPECT_FALSE(progress.GetWindow().isVisible());
  const std::string path = "/photos/a.jpg";
  const std::string jpeg = MakePhoto(140, 105, Qt::green);
  const std::vector<std::uint8_t> green(jpeg.begin(), jpeg.end());
  RunJob([&] {
    EXPECT_TRUE(progress.SetTotal(3));
    progress.Progress({0, path, green, true});
  });
  EXPECT_TRUE(progress.GetWindow().isVisible());
  const QColor shown = Painted(progress.GetWindow()).pixelColor(ProgressCell(false, 0).center());
  EXPECT_GT(shown.green(), 200);

  EXPECT_EQ(ProgressFill(346, 0, 2), 173);
  progress.Stop();
  const std::vector<std::uint8_t> broken(30);
  EXPECT_FALSE(progress.Progress({2, path, broken, true})) << "a picture that can't be read is left out";
}

TEST_F(SearchProgressWindow, FastReportsArePassedOverButTheLastIsShown) {
  CWindowedSearchProgress progress(false, true);
  CSearchProgressWindow& window = progress.GetWindow();
  constexpr int kPhotos = 200'000;
  QElapsedTimer timer;
  timer.start();
  RunJob([&] {
    progress.SetTotal(kPhotos);
    const std::string path = "/photos/a.jpg";
    for (int i = 0; i < kPhotos; ++i) progress.Progress({i, path, {}, true});
  });
  EXPECT_LT(timer.elapsed(), 5'000) << "each would wait for a paint";
  const QRect bar = ProgressBar(false);
  EXPECT_EQ(Painted(window).pixelColor(bar.topRight()), colours::kProgress);
}
