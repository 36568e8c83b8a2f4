#include <gtest/gtest.h>

#include <climits>

#include "ui/search/SearchProgressLayout.h"

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
