#include <gtest/gtest.h>

#include "ui/strip/PushBars.h"
#include "ui/strip/StripLayout.h"

TEST(StripLayout, MiddleCellIsCentredAndTheWindowCovered) {
  for (const double ratio : {1.0, 1.25, 1.5, 1.75, 2.0, 3.0}) {
    for (int width = 1; width < 3000; width += 7) {
      const StripLayout layout(ratio, width);
      const StripMetrics& metrics = layout.GetMetrics();
      const int count = layout.GetVisibleCount();
      ASSERT_EQ(count % 2, 1);
      ASSERT_TRUE(count == 1 || metrics.Pitch * (count - 2) < width - metrics.SeparatorWidth) << "the least";
      ASSERT_LE(layout.GetCellLeft(0) - metrics.SeparatorWidth, 0) << width;
      const QRect last = layout.GetCellFrame(count - 1);
      ASSERT_GE(last.x() + last.width() + metrics.SeparatorWidth, width);
      const QRect middle = layout.GetCellFrame(layout.GetLensCell());
      ASSERT_LE(std::abs(middle.x() - (width - middle.x() - middle.width())), 1) << width;
      const int source = layout.GetSourceLeft(0, 4 + layout.GetLensCell());
      ASSERT_EQ(4 * metrics.Pitch + metrics.SeparatorWidth - source, layout.GetCellLeft(0))
          << "shown and hit";
    }
  }
}

TEST(StripLayout, HitTestFindsCellBandAndMark) {
  const StripLayout layout(1.5, 1500);
  const QRect frame = layout.GetCellFrame(5);
  EXPECT_EQ(layout.HitTest(frame.topLeft()), (StripHit{5, false, -1}));
  EXPECT_EQ(layout.HitTest({frame.x(), layout.GetMetrics().BandTop}), (StripHit{5, true, -1}));
  EXPECT_EQ(layout.HitTest(frame.topLeft() - QPoint(1, 1)), StripHit()) << "on the film";
  for (const int mark : {0, 1}) {
    EXPECT_EQ(layout.HitTest(layout.GetMetrics().MarkCornerAt(frame.x(), mark)), (StripHit{5, true, mark}));
  }
}

TEST(PushBarLayout, PressFindsThePhotoThere) {
  // 100 photos, the one at 40 under the lens. The lens is at the right end of the left bar.
  const std::tuple<BarSide, int, int, int> rows[] = {{BarSide::Left, 331, 13, 20},
                                                     {BarSide::Left, 331, 3, -1},
                                                     {BarSide::Right, 0, 13, 41},
                                                     {BarSide::Right, 411, 13, -1}};
  for (const auto& [side, x, y, target] : rows) {
    const PushBarForm form{side, 1.0, 412, 27, GetRestPercent(40, 100)};
    EXPECT_EQ(form.FindTarget({x, y}, 40, 100), target) << x << ", " << y;
    EXPECT_EQ(form.FindTarget(form.GetCap().center(), 40, 100), side == BarSide::Left ? 0 : 99);
  }
}
