#include <thread>

#include "FilmstripFixture.h"
#include "ui/kit/Job.h"

using CFilmstripMove = CFilmstripFixture;

TEST_F(CFilmstripMove, SlideTakesItsTimeAndTellsOfThePhotoWhenItHasRested) {
  Begin(30, 10);
  QElapsedTimer clock;
  clock.start();
  Strip.MoveBy(1);
  EXPECT_EQ(Strip.GetCurrentIndex(), 10);
  ASSERT_TRUE(QTest::qWaitFor([&] { return Strip.GetCurrentIndex() == 11; }));
  EXPECT_GE(clock.elapsed(), kSlideTime);
  EXPECT_TRUE(Host.Shown.empty());
  ASSERT_TRUE(WaitForPhoto());
  EXPECT_GE(clock.elapsed(), kSlideTime + 50);
  EXPECT_EQ(Host.Shown, std::vector{IdAt(11)});
}

TEST_F(CFilmstripMove, SlideShowsTheCellsPassByAndEndsExactlyOnOne) {
  Begin(30, 10);
  const auto shift = [&] {  // of the photo that was under the lens
    const QImage image = Painted(Strip);
    for (int x = image.width() - 1; x >= 0; --x) {
      const QColor pixel = image.pixelColor(x, 60);
      if (std::abs(pixel.hue() - HueOf(10).hue()) < 6 && pixel.saturation() > 200) {
        return Strip.GetLayout().GetCellLeft(3) + 140 - x;
      }
    }
    return -1;
  };
  ASSERT_EQ(shift(), 0);
  Strip.MoveBy(1);
  bool between = false;
  ASSERT_TRUE(QTest::qWaitFor([&] {
    const int way = shift();
    between = between || (way > 0 && way < 151);
    return Strip.GetCurrentIndex() == 11;
  }));
  EXPECT_TRUE(between);
  EXPECT_EQ(shift(), 151);
}

TEST_F(CFilmstripMove, MoveOverCachedCellsPaintsNoneAndReadsNone) {
  Begin(8, 3);  // with the empty places at both ends all that the cache has room for
  const int painted = Strip.GetPaintedCells();
  const int read = Strip.GetReadThumbnails();
  for (const int delta : {1, 2, -4}) {
    Host.Shown.clear();
    Strip.MoveBy(delta);
    ASSERT_TRUE(WaitForPhoto());
    Settle();
  }
  EXPECT_EQ(Strip.GetCurrentIndex(), 2);
  EXPECT_EQ(Strip.GetPaintedCells(), painted);
  EXPECT_EQ(Strip.GetReadThumbnails(), read);
}

TEST_F(CFilmstripMove, NoCellIsPaintedTwiceOnALongWay) {
  Begin(60, 20);
  const int painted = Strip.GetPaintedCells();
  EXPECT_EQ(Strip.GetCache().GetRun().GetAfter(), kVisible);
  Strip.MovePage(false);
  ASSERT_TRUE(WaitForPhoto());
  Settle();
  EXPECT_EQ(Strip.GetCurrentIndex(), 20 + kVisible);
  EXPECT_EQ(Strip.GetPaintedCells(), painted + kVisible);
}

TEST_F(CFilmstripMove, HeldKeySlidesOnLoadsNothingAndStopsWhenLetGo) {
  Begin(100, 50);
  QTimer key;
  QObject::connect(&key, &QTimer::timeout, [&] { Strip.MoveBy(1); });
  Strip.MoveBy(1);
  key.start(30);
  QTest::qWait(5 * kSlideTime);
  key.stop();
  EXPECT_TRUE(Host.Shown.empty());
  const int atRelease = Strip.GetCurrentIndex();
  EXPECT_GE(atRelease, 52);
  ASSERT_TRUE(WaitForPhoto());
  QTest::qWait(100);
  EXPECT_LE(Strip.GetCurrentIndex(), atRelease + 2) << "the slide under way, and one that was put off";
  EXPECT_EQ(Host.Shown, std::vector{IdAt(Strip.GetCurrentIndex())});
}

TEST_F(CFilmstripMove, OtherDirectionReplacesTheMoveThatWasPutOff) {
  Begin(30, 10);
  Strip.MoveBy(1);
  Strip.MoveBy(3);
  Strip.MoveBy(-2);
  Strip.MoveBy(-1);
  ASSERT_TRUE(WaitForPhoto());
  EXPECT_EQ(Host.Shown, std::vector{IdAt(9)});
}

TEST_F(CFilmstripMove, WhatIsAskedDuringASlideActsOnTheStripAtRest) {
  Begin(30, 10);
  Strip.MoveBy(1);
  Strip.MoveBy(1);
  ASSERT_NE(Strip.GetCurrentRecord(), nullptr);
  EXPECT_EQ(Strip.GetCurrentRecord()->GetAssetID(), IdAt(11)) << "the move that was put off is forgotten";
  ASSERT_TRUE(WaitForPhoto());
  EXPECT_EQ(Strip.GetCurrentIndex(), 11);

  Host.Shown.clear();
  Strip.MoveBy(2);
  Strip.MoveTo(5);
  EXPECT_EQ(Strip.GetCurrentIndex(), 5);
  EXPECT_EQ(Host.Shown, std::vector{IdAt(5)}) << "at once, and alone";
  QTest::qWait(400);
  EXPECT_EQ(Host.Shown.size(), 1u);

  Strip.MoveBy(1);
  Strip.AnnounceNow();
  EXPECT_EQ(Host.Shown.back(), IdAt(6));
  Strip.AnnounceNow();
  EXPECT_EQ(Host.Shown.size(), 2u) << "nothing is due any more";

  Strip.MoveBy(1);
  const std::int32_t gone = IdAt(7);
  Strip.RemoveCurrent();
  EXPECT_EQ(Set->IndexOf(gone), -1);
}

TEST_F(CFilmstripMove, NothingLeadsOutOfTheSet) {
  Begin(1);
  EXPECT_EQ(Find("ScrollPosLabel").accessibleName(), "1 of 1");
  Strip.MoveBy(1);
  Strip.MoveBy(-1);
  Strip.MovePage(false);
  Strip.MoveTo(1);
  Strip.MoveTo(-5);
  QTest::qWait(250);
  EXPECT_EQ(Strip.GetCurrentIndex(), 0);
  EXPECT_TRUE(Host.Shown.empty());
}

TEST_F(CFilmstripMove, PagesAreClippedAtTheEnds) {
  Begin(4, 2);
  Strip.MovePage(false);
  ASSERT_TRUE(WaitForPhoto());
  EXPECT_EQ(Strip.GetCurrentIndex(), 3);
  Strip.MovePage(true);
  Strip.MovePage(true);
  ASSERT_TRUE(WaitForPhoto(2));
  EXPECT_EQ(Strip.GetCurrentIndex(), 0);
}

TEST_F(CFilmstripMove, FartherThanTheCacheReachesIsAJump) {
  Begin(100, 5);
  Strip.MoveBy(50);
  EXPECT_EQ(Host.Shown, std::vector{IdAt(55)});
}

TEST_F(CFilmstripMove, HiddenStripMovesAtOnceAndThenAtItsPace) {
  Begin(100, 50);
  Window.hide();
  Strip.MoveBy(1);
  EXPECT_EQ(Host.Shown, std::vector{IdAt(51)}) << "nobody sees a slide";
  for (int repeats = 0; repeats < 5; ++repeats) Strip.MoveBy(1);
  EXPECT_EQ(Host.Shown.size(), 1U) << "a held key runs no faster";
  EXPECT_TRUE(QTest::qWaitFor([&] { return Host.Shown == std::vector{IdAt(51), IdAt(52)}; }, 2000));
  Strip.MoveBy(1);
  Strip.FinishMove();
  Strip.MoveBy(1);
  EXPECT_EQ(Host.Shown.back(), IdAt(53)) << "a press ends the pause";
  Window.show();
  Settle();
  EXPECT_NEAR(Painted(Strip).pixelColor(CellPoint(0)).hue(), HueOf(53).hue(), 3);
}

TEST_F(CFilmstripMove, SlideShowStepsTellsAtOnceAndGoesRound) {
  Begin(4, 2);
  EXPECT_TRUE(Strip.StartSlideShow());
  EXPECT_TRUE(Strip.StartSlideShow());
  EXPECT_EQ(Host.ShowChanges, 1);
  QElapsedTimer clock;
  clock.start();
  ASSERT_TRUE(WaitForPhoto());
  EXPECT_LT(clock.elapsed(), 1000);
  ASSERT_TRUE(WaitForPhoto(2));
  EXPECT_EQ(Host.Shown, (std::vector{IdAt(3), IdAt(0)})) << "from the last photo to the first";
  EXPECT_TRUE(Strip.IsSlideShowRunning());
  Strip.StopSlideShow();
  Strip.StopSlideShow();
  EXPECT_FALSE(Strip.IsSlideShowRunning());
  EXPECT_EQ(Host.ShowChanges, 2);
  QTest::qWait(2300);
  EXPECT_EQ(Strip.GetCurrentIndex(), 0);
}

TEST_F(CFilmstripMove, RestsWhileAJobOwnsTheData) {
  Begin(100, 50);
  Strip.MoveBy(1);
  int index = -1;
  RunJob([&] {
    std::this_thread::sleep_for(std::chrono::milliseconds(400));
    RunOnWindowThread([&] {
      Strip.repaint();
      Window.resize(1400, kStripWindowHeight);  // more cells would have to be read
      index = Strip.GetCurrentIndex();
    });
  });
  EXPECT_EQ(index, 50);
  EXPECT_TRUE(Host.Shown.empty());
  ASSERT_TRUE(WaitForPhoto());
  EXPECT_EQ(Host.Shown, std::vector{IdAt(51)});
  Settle();
  EXPECT_EQ(Strip.GetLayout().GetVisibleCount(), 11);
  EXPECT_EQ(Strip.GetCache().GetRun().GetBefore() + Strip.GetCache().GetRun().GetAfter(), 22);
}
