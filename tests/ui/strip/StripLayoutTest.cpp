#include <gtest/gtest.h>

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
