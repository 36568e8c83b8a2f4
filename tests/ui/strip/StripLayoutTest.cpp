#include <gtest/gtest.h>

#include "ui/strip/StripLayout.h"

namespace {

constexpr double kRatios[] = {1.0, 1.25, 1.5, 1.75, 2.0, 3.0};

}  // namespace

TEST(StripLayout, ShowsTheSmallestOddNumberOfCellsThatCoversTheWindow) {
  const auto count = [](int width) { return StripLayout(1.0, width).GetVisibleCount(); };
  EXPECT_EQ(count(0), 1);
  EXPECT_EQ(count(157), 1);
  EXPECT_EQ(count(160), 3);
  EXPECT_EQ(count(760), 5);
  EXPECT_EQ(count(1000), 7);
  EXPECT_EQ(StripLayout(2.0, 2000).GetVisibleCount(), 7);
}

TEST(StripLayout, MiddleCellIsCentredAndNeighboursTouch) {
  for (const double ratio : kRatios) {
    for (int width = 1; width < 3000; width += 7) {
      const StripLayout layout(ratio, width);
      const StripMetrics& metrics = layout.GetMetrics();
      const int count = layout.GetVisibleCount();
      ASSERT_EQ(count % 2, 1);
      ASSERT_LE(layout.GetCellLeft(0) - metrics.SeparatorWidth, 0) << width;
      const QRect last = layout.GetCellFrame(count - 1);
      ASSERT_GE(last.x() + last.width() + metrics.SeparatorWidth, width);
      const QRect middle = layout.GetCellFrame(layout.GetLensCell());
      ASSERT_LE(std::abs(middle.x() - (width - middle.x() - middle.width())), 1) << width;
      for (int cell = 1; cell < count; ++cell) {
        ASSERT_EQ(layout.GetCellLeft(cell) - layout.GetCellLeft(cell - 1), metrics.Pitch);
      }
      // What the window shows of the cache at rest lies where the cells are hit.
      const int slotOfFirst = 4;
      const int source = layout.GetSourceLeft(0, slotOfFirst + layout.GetLensCell());
      ASSERT_EQ(slotOfFirst * metrics.Pitch + metrics.SeparatorWidth - source, layout.GetCellLeft(0));
    }
  }
}

TEST(StripLayout, CellHasItsMeasures) {
  const StripLayout layout(1.0, 1000);
  EXPECT_EQ(layout.GetCellFrame(0), QRect(151 * 0 - (151 * 7 - 1000 + 6) / 2 + 6, 3, 145, 122));
  EXPECT_EQ(layout.GetSourceLeft(-40, 9), (151 * 7 + 6 - 1000) / 2 - 40 + 6 * 151);
  const StripMetrics& metrics = layout.GetMetrics();
  EXPECT_EQ(metrics.ThumbnailBoxAt(10), QRect(11, 4, 140, 105));
  EXPECT_EQ(metrics.BandLabelAt(10), QRect(10, 113, 111, 12));
  EXPECT_EQ(metrics.MarksAt(10), QRect(121, 113, 34, 12));
  EXPECT_EQ(metrics.MarkCornerAt(10, 0), QPoint(123, 113));
  EXPECT_EQ(metrics.MarkCornerAt(10, 1), QPoint(139, 113));
  EXPECT_EQ(metrics.MarkTargetAt(10, 0), QRect(155 - 34, 113, 16, 12));
  EXPECT_EQ(metrics.MarkTargetAt(10, 1), QRect(155 - 18, 113, 16, 12));
}

TEST(StripLayout, PartsOfACellMeetOnWholePixels) {
  for (const double ratio : kRatios) {
    const StripMetrics metrics(ratio);
    const QRect frame = metrics.FrameAt(40);
    const QRect picture = metrics.PictureAreaAt(40);
    const QRect label = metrics.BandLabelAt(40);
    const QRect marks = metrics.MarksAt(40);
    EXPECT_EQ(picture.bottom() + 1, label.top());
    EXPECT_EQ(label.right() + 1, marks.left());
    EXPECT_EQ(label.united(picture).united(marks), frame);
    EXPECT_TRUE(picture.contains(metrics.ThumbnailBoxAt(40)));
    for (int mark = 0; mark < kMarkCount; ++mark) {
      EXPECT_TRUE(marks.contains(metrics.MarkTargetAt(40, mark)));
      EXPECT_TRUE(marks.contains(metrics.MarkCornerAt(40, mark)));
    }
    EXPECT_EQ(metrics.MarkTargetAt(40, 0).right() + 1, metrics.MarkTargetAt(40, 1).left());
  }
}

TEST(StripLayout, HitTestFindsCellBandAndMark) {
  for (const double ratio : kRatios) {
    const StripLayout layout(ratio, static_cast<int>(1000 * ratio));
    const StripMetrics& metrics = layout.GetMetrics();
    for (int cell = 1; cell < 6; ++cell) {
      const QRect frame = layout.GetCellFrame(cell);
      EXPECT_EQ(layout.HitTest(frame.topLeft()), (StripHit{cell, false, -1}));
      EXPECT_EQ(layout.HitTest({frame.x(), metrics.BandTop - 1}), (StripHit{cell, false, -1}));
      EXPECT_EQ(layout.HitTest({frame.x(), metrics.BandTop}), (StripHit{cell, true, -1}));
      EXPECT_EQ(layout.HitTest(frame.topLeft() - QPoint(1, 0)), StripHit()) << "on the separator";
      EXPECT_EQ(layout.HitTest(frame.topLeft() - QPoint(0, 1)), StripHit()) << "on the film's edge";
      for (int mark = 0; mark < kMarkCount; ++mark) {
        EXPECT_EQ(layout.HitTest(metrics.MarkCornerAt(frame.x(), mark)), (StripHit{cell, true, mark}));
      }
    }
  }
}

TEST(StripLayout, LensAndBarsStandAroundTheMiddleCell) {
  const StripLayout layout(1.0, 1001);
  const QPoint corner = layout.GetCellFrame(3).topLeft();
  EXPECT_EQ(layout.GetLensPart(LensPart::Top), QRect(corner - QPoint(4, 4), QSize(153, 4)));
  EXPECT_EQ(layout.GetLensPart(LensPart::Left), QRect(corner - QPoint(4, 0), QSize(4, 122)));
  EXPECT_EQ(layout.GetLensPart(LensPart::Right), QRect(corner + QPoint(145, 0), QSize(4, 122)));
  EXPECT_EQ(layout.GetLensPart(LensPart::Bottom), QRect(corner + QPoint(-4, 122), QSize(153, 27)));
  const int lensRight = corner.x() + 149;
  EXPECT_EQ(layout.GetRightBar(), QRect(lensRight, 128, 1001 - lensRight, 27));
  EXPECT_EQ(layout.GetLeftBar(), QRect(corner.x() - 4 - (1001 - lensRight), 128, 1001 - lensRight, 27));

  const StripLayout between(1.5, 1500);
  const QRect top = between.GetLensPart(LensPart::Top);
  const QRect right = between.GetLensPart(LensPart::Right);
  const QRect bottom = between.GetLensPart(LensPart::Bottom);
  EXPECT_EQ(right.right(), top.right());
  EXPECT_EQ(top.bottom() + 1, right.top());
  EXPECT_EQ(right.bottom() + 1, bottom.top());
  EXPECT_EQ(between.GetRightBar().left(), bottom.right() + 1);
}
