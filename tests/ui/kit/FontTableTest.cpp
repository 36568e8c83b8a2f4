#include <gtest/gtest.h>

#include <QFontInfo>

#include "ui/kit/FontTable.h"

TEST(FontTable, LettersAreTheLargestThatTheLineHolds) {
  constexpr double kLineHeight = 1.117;  // of Arial and its metric equals
  const int sizes[][2] = {{12, 11}, {13, 12}, {14, 12}, {15, 13}, {18, 16}, {20, 18}, {25, 22}};
  for (const auto& [cellHeight, pixels] : sizes) {
    EXPECT_EQ(PixelSizeForCell(cellHeight, kLineHeight), pixels);
    EXPECT_LT(pixels * kLineHeight, cellHeight + 0.5);
    EXPECT_GE((pixels + 1) * kLineHeight, cellHeight + 0.5);
  }
  EXPECT_EQ(PixelSizeForCell(1, 4.0), 1);
}

TEST(FontTable, SmallScreenHasSmallerLabelsAndNothingElse) {
  const CFontTable large(false);
  const CFontTable small(true);
  EXPECT_EQ(large.GetCellHeight(FontId::Label), 15);
  EXPECT_EQ(small.GetCellHeight(FontId::Label), 13);
  EXPECT_EQ(small.GetCellHeight(FontId::Caption), 12);
  EXPECT_EQ(small.GetCellHeight(FontId::Heading), large.GetCellHeight(FontId::Heading));
  EXPECT_LT(small.GetFont(FontId::LabelBold).pixelSize(), large.GetFont(FontId::LabelBold).pixelSize());
}

TEST(FontTable, FacesFollowTheTable) {
  const CFontTable fonts(false);
  EXPECT_TRUE(fonts.GetFont(FontId::LabelItalic).italic());
  EXPECT_TRUE(fonts.GetFont(FontId::PanelBold).bold());
  EXPECT_TRUE(fonts.GetFont(FontId::Heading).bold());
  EXPECT_FALSE(fonts.GetFont(FontId::Tab).bold() || fonts.GetFont(FontId::Tab).italic());
}
