#include <gtest/gtest.h>

#include "ui/strip/FilmstripLayout.h"

TEST(FilmstripLayout, ShortStripStandsInTheMiddle) {
  EXPECT_EQ(StripStart(1000, 2, 1), (1000 - 302) / 2);
  EXPECT_EQ(StripStart(1000, 0, 0), 500);
  const CellRange none = VisibleCells(1000, 500, 0);
  EXPECT_EQ(none.First, none.End);
}

TEST(FilmstripLayout, LongStripKeepsTheCurrentCellInViewAndItsEndsAtTheEdges) {
  constexpr int kWidth = 1000;
  constexpr int kCount = 100;
  EXPECT_EQ(StripStart(kWidth, kCount, 0), 0);
  EXPECT_EQ(StripStart(kWidth, kCount, kCount - 1), kWidth - kCount * kCellPitch);
  for (int current = 0; current < kCount; ++current) {
    const int start = StripStart(kWidth, kCount, current);
    const QRect cell = CellRect(current, start);
    ASSERT_TRUE(QRect(0, 0, kWidth, kStripHeight).contains(cell)) << current;
    const CellRange visible = VisibleCells(kWidth, start, kCount);
    ASSERT_TRUE(visible.Contains(current));
    ASSERT_LE(CellRect(visible.First, start).left(), 0);
    ASSERT_GE(CellRect(visible.End - 1, start).right() + 1, kWidth);
    ASSERT_LE(visible.End - visible.First, kWidth / kCellPitch + 2);
  }
}

TEST(FilmstripLayout, HitTestAgreesWithTheCells) {
  const int start = StripStart(1000, 3, 0);
  for (int cell = 0; cell < 3; ++cell) {
    EXPECT_EQ(CellAt(CellRect(cell, start).left(), start, 3), cell);
    EXPECT_EQ(CellAt(CellRect(cell, start).right(), start, 3), cell);
  }
  EXPECT_EQ(CellAt(start - 1, start, 3), -1);
  EXPECT_EQ(CellAt(CellRect(2, start).right() + 1, start, 3), -1);
  EXPECT_EQ(CellsPerPage(50), 1);
}
