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
  for (const double ratio : {1.0, 1.5}) {
    const StripLayout layout(ratio, static_cast<int>(1000 * ratio));
    const StripMetrics& metrics = layout.GetMetrics();
    const QRect frame = layout.GetCellFrame(5);
    EXPECT_EQ(layout.HitTest(frame.topLeft()), (StripHit{5, false, -1}));
    EXPECT_EQ(layout.HitTest({frame.x(), metrics.BandTop}), (StripHit{5, true, -1}));
    EXPECT_EQ(layout.HitTest(frame.topLeft() - QPoint(1, 0)), StripHit()) << "on the separator";
    EXPECT_EQ(layout.HitTest(frame.topLeft() - QPoint(0, 1)), StripHit()) << "on the film's edge";
    for (const int mark : {0, 1}) {
      EXPECT_EQ(layout.HitTest(metrics.MarkCornerAt(frame.x(), mark)), (StripHit{5, true, mark}));
    }
  }
}

TEST(PushBarLayout, PressFindsThePhotoThere) {
  // 100 photos, the one at 40 under the lens.
  const double percent = GetRestPercent(40, 100);
  const PushBarForm left{BarSide::Left, 1.0, 412, 27, percent};
  const PushBarForm right{BarSide::Right, 1.0, 412, 27, percent};
  const auto press = [](const PushBarForm& form, int x, int y) { return form.FindTarget({x, y}, 40, 100); };
  const int cap = right.GetCap().right();
  EXPECT_EQ(press(left, left.GetBody().left() - 27, 13), 0) << "beyond its end";
  EXPECT_EQ(press(left, left.GetBody().left() - 28, 13), -1);
  for (const auto& [y, target] : {std::pair(3, -1), {4, 20}, {22, 20}, {23, -1}}) {
    EXPECT_EQ(press(left, 331, y), target) << y;
  }
  for (const auto& [x, target] : {std::pair(0, 41), {cap - 12, 99}, {cap + 15, 99}, {cap + 16, -1}}) {
    EXPECT_EQ(press(right, x, 13), target) << x;
  }
}
