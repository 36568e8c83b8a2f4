#include <gtest/gtest.h>

#include <climits>

#include "ui/FilmstripLayout.h"
#include "ui/SearchProgressLayout.h"

TEST(SearchProgressLayout, OutlineIsSteppedAtAllFourCorners) {
  for (const bool splash : {false, true}) {
    const QRegion outline = ProgressOutline(splash);
    const int height = ProgressHeight(splash);
    const int spans[][2] = {{7, 393}, {5, 395}, {4, 396}, {3, 397}, {2, 398}, {1, 399}, {1, 399}, {0, 400}};
    for (int row = 0; row < 8; ++row) {
      for (const int y : {row, height - 1 - row}) {
        const QRegion line = outline & QRect(-10, y, 420, 1);
        EXPECT_EQ(line.boundingRect(), QRect(spans[row][0], y, spans[row][1] - spans[row][0], 1)) << y;
      }
    }
    EXPECT_EQ(outline.boundingRect(), QRect(0, 0, 400, splash ? 330 : 160));
  }
}

TEST(SearchProgressLayout, LargeFormMovesTheControlsDown) {
  EXPECT_EQ(ProgressFrame(false), QRect(26, 25, 348, 19));
  EXPECT_EQ(ProgressFrame(true), QRect(26, 195, 348, 19));
  EXPECT_EQ(ProgressBar(false), QRect(27, 26, 346, 17));
  EXPECT_EQ(ProgressCell(false, 4), QRect(310, 62, 64, 48));
  EXPECT_EQ(ProgressCell(true, 0), QRect(26, 232, 64, 48));
  EXPECT_EQ(ProgressStopButton(true), QRect(147, 294, 105, 21));
}

TEST(SearchProgressLayout, BarFillsFromNothingToItsWholeWidth) {
  EXPECT_EQ(ProgressFill(346, -1, 10), 0);
  EXPECT_EQ(ProgressFill(346, 0, 0), 0);
  EXPECT_EQ(ProgressFill(346, 0, -1), 0);
  EXPECT_EQ(ProgressFill(346, 0, 2), 173);
  EXPECT_EQ(ProgressFill(346, 9, 10), 346);
  EXPECT_EQ(ProgressFill(346, INT_MAX, INT_MAX), 346);
  EXPECT_EQ(ProgressFill(346, 12, 10), 346);
}

TEST(SearchProgressLayout, LinesDropFurtherWhenTheLastOneIsBlank) {
  EXPECT_EQ(ProgressProductLine(0, " "), QRect(26, 105, 348, 14));
  EXPECT_EQ(ProgressProductLine(1, " ").top(), 118);
  EXPECT_EQ(ProgressProductLine(2, " ").top(), 144);
  EXPECT_EQ(ProgressProductLine(2, "ab").top(), 137);
  EXPECT_EQ(ProgressProductLine(4, "ab").top(), 163);
  EXPECT_EQ(ProgressProductLine(2, "\xC3\xA9").top(), 144) << "one character of two bytes";
}

TEST(SearchProgressLayout, PicturesKeepTheirProportionsInACell) {
  const QRect cell(100, 50, 64, 48);
  EXPECT_EQ(FitIntoProgressCell({140, 105}, cell), cell);
  EXPECT_EQ(FitIntoProgressCell({36, 48}, cell), QRect(114, 50, 36, 48));
  EXPECT_EQ(FitIntoProgressCell({20, 10}, cell), QRect(122, 69, 20, 10)) << "never enlarged";
  EXPECT_EQ(FitIntoProgressCell({1000, 1}, cell).height(), 1);
}

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
