#include <gtest/gtest.h>

#include "ui/kit/FontTable.h"

TEST(FontTable, LettersAreTheLargestThatTheLineHolds) {
  constexpr double kLineHeight = 1.117;  // of Arial and its metric equals
  const int sizes[][2] = {{12, 11}, {13, 12}, {14, 12}, {15, 13}, {25, 22}, {0, 1}};
  for (const auto& [cellHeight, pixels] : sizes) EXPECT_EQ(PixelSizeForCell(cellHeight, kLineHeight), pixels);
  EXPECT_EQ(CFontTable(false).GetCellHeight(FontId::Label), 15);
  EXPECT_EQ(CFontTable(true).GetCellHeight(FontId::Label), 13);
}
