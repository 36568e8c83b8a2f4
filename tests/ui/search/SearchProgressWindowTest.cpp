#include "discovery/SearchProgress.h"
#include "ui/WindowTest.h"
#include "ui/kit/Colours.h"
#include "ui/kit/Job.h"
#include "ui/search/SearchProgressWindow.h"
#include "ui/search/WindowedSearchProgress.h"

namespace {

const QColor kPage(221, 223, 225);

QImage Plain(QColor colour, QSize size = {64, 48}) {
  QImage image(size, QImage::Format_RGB32);
  image.fill(colour);
  return image;
}

std::vector<std::uint8_t> MakeThumbnail(QColor hue) {
  const std::string jpeg = MakePhoto(140, 105, hue);
  return {jpeg.begin(), jpeg.end()};
}

class SearchProgressWindow : public testing::Test {
 protected:
  const CFontTable Fonts{false};
};

}  // namespace

TEST_F(SearchProgressWindow, BarShowsItsTextAndHowFarTheSearchIs) {
  CSearchProgressWindow window(false);
  window.show();
  const QRect bar = ProgressBar(false);
  const auto edge = [&](const QImage& image, int x) { return image.pixelColor(bar.left() + x, bar.top()); };

  QImage image = Painted(window);
  EXPECT_EQ(image.pixelColor(ProgressFrame(false).topLeft()), QColor(Qt::black));
  EXPECT_EQ(image.pixelColor(ProgressFrame(false).bottomRight()), QColor(Qt::black));
  EXPECT_EQ(edge(image, 0), kPage);
  EXPECT_TRUE(HoldsInk(image, bar, kPage)) << "the text that asks to wait";

  window.SetTotal(4);
  EXPECT_EQ(edge(Painted(window), 0), kPage) << "nothing is done yet";
  window.SetCurrent(0, {});
  image = Painted(window);
  EXPECT_EQ(edge(image, 85), colours::kProgress);
  EXPECT_EQ(edge(image, 86), kPage);
  window.SetCurrent(3, {});
  EXPECT_EQ(edge(Painted(window), bar.width() - 1), colours::kProgress);
}

TEST_F(SearchProgressWindow, PicturesGoRoundTheFiveCells) {
  CSearchProgressWindow window(true);
  window.show();
  window.SetTotal(10);
  const auto middle = [&](int cell) { return Painted(window).pixelColor(ProgressCell(true, cell).center()); };
  EXPECT_EQ(middle(0), colours::kEmptyCell);
  const QColor hues[] = {Qt::red, Qt::green, Qt::blue, Qt::cyan, Qt::magenta, Qt::yellow};
  for (int i = 0; i < 6; ++i) window.SetCurrent(i, Plain(hues[i]));
  window.SetCurrent(6, {});  // a photo without a picture takes no cell
  EXPECT_EQ(middle(0), QColor(Qt::yellow));
  EXPECT_EQ(middle(1), QColor(Qt::green));
  EXPECT_EQ(middle(4), QColor(Qt::magenta));

  window.SetCurrent(7, Plain(Qt::red, {36, 48}));
  EXPECT_EQ(middle(1), QColor(Qt::red));
  EXPECT_EQ(Painted(window).pixelColor(ProgressCell(true, 1).topLeft()), colours::kEmptyCell);
}

TEST_F(SearchProgressWindow, LargeFormCarriesTheProductLines) {
  CSearchProgressWindow window(true);
  window.show();
  const QImage image = Painted(window);
  EXPECT_EQ(image.size(), QSize(400, 330));
  for (const int line : {0, 1, 2, 3}) {
    EXPECT_TRUE(HoldsInk(image, ProgressProductLine(line, " "), kPage)) << line;
  }
  EXPECT_EQ(window.mask(), ProgressOutline(true));
  EXPECT_EQ(window.windowTitle(), "Vellumar Photo Organizer - Searching for new photos");
}

TEST_F(SearchProgressWindow, StopsByButtonEscAndCloseAndGoesOnByAnyOtherKey) {
  CSearchProgressWindow window(false);
  window.ShowCentered();
  auto* button = window.findChild<QAbstractButton*>("StopSearching");
  ASSERT_NE(button, nullptr);
  EXPECT_EQ(button->text(), "Stop searching");
  EXPECT_FALSE(window.IsStopRequested());

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

TEST_F(SearchProgressWindow, StandsInTheMiddleOfItsParent) {
  QWidget parent;
  parent.setGeometry(100, 100, 600, 400);
  CSearchProgressWindow window(false, &parent);
  window.ShowCentered();
  EXPECT_EQ(window.geometry().center(), parent.frameGeometry().center());
}

TEST_F(SearchProgressWindow, ReportsOfASearchReachIt) {
  CWindowedSearchProgress progress(false, false);
  EXPECT_FALSE(progress.GetWindow().isVisible());
  const std::string path = "/photos/a.jpg";
  const auto green = MakeThumbnail(Qt::green);
  RunJob([&] {
    EXPECT_TRUE(progress.SetTotal(3));
    progress.Progress({0, path, green, true});
  });
  EXPECT_TRUE(progress.GetWindow().isVisible());
  const QColor shown = Painted(progress.GetWindow()).pixelColor(ProgressCell(false, 0).center());
  EXPECT_GT(shown.green(), 200);
  EXPECT_LT(shown.red(), 60);

  const std::vector<std::uint8_t> broken(green.begin(), green.begin() + 30);
  progress.Stop();
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

TEST(ReportThrottle, LetsThirtyASecondThrough) {
  CReportThrottle throttle;
  CReportThrottle::Time now{};
  now += std::chrono::hours(1);
  int shown = 0;
  for (int i = 0; i < 10'000; ++i, now += std::chrono::microseconds(100))
    shown += throttle.IsDue(now) ? 1 : 0;
  EXPECT_LE(shown, 31);
  EXPECT_GE(shown, 29);
  now += std::chrono::seconds(5);
  EXPECT_TRUE(throttle.IsDue(now)) << "a pause isn't made up for";
  EXPECT_FALSE(throttle.IsDue(now));
}
