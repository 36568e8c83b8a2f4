#include <gtest/gtest.h>

#include "ui/pages/PhotoViewLayout.h"

TEST(PhotoViewLayout, PhotoStandsInTheMiddleOfItsMargins) {
  EXPECT_EQ(PhotoArea({400, 300}, 10), QRect(10, 10, 380, 280));
  EXPECT_EQ(PlacePhoto({400, 300}, 10, {380, 100}, true), QRect(10, 100, 380, 100));
  EXPECT_EQ(PlacePhoto({400, 300}, 10, {380, 100}, false), QRect(10, 10, 380, 100));
}

TEST(PhotoViewLayout, ReloadsOnlyWhatIsTooSmallAndHasMore) {
  const HeldPhoto reduced{{4000, 3000}, {500, 375}, {400, 300}};
  EXPECT_FALSE(NeedsReload(reduced, {400, 300}));
  EXPECT_FALSE(NeedsReload(reduced, {390, 1000})) << "wide enough when it was asked for";
  EXPECT_FALSE(NeedsReload(reduced, {450, 370})) << "the bitmap still covers it";
  EXPECT_FALSE(NeedsReload(reduced, {900, 350})) << "one side still covers it";
  EXPECT_TRUE(NeedsReload(reduced, {501, 376}));
  const HeldPhoto whole{{500, 375}, {500, 375}, {400, 300}};
  EXPECT_FALSE(NeedsReload(whole, {2000, 2000})) << "the file has no more to give";
}

TEST(PhotoViewLayout, MarksStandFromTheCornerLeftwards) {
  const QRect photo(10, 10, 200, 100);
  const bool firstTwo[] = {true, true, false};
  const bool firstAlone[] = {true, false};
  const auto both = PlaceMarks(photo, firstTwo, 1);
  EXPECT_EQ(both[1], QRect(174, 74, 32, 32));
  EXPECT_EQ(both[0], QRect(156, 74, 32, 32));
  EXPECT_TRUE(both[2].isEmpty());
  EXPECT_EQ(PlaceMarks(photo, firstAlone, 1)[0], QRect(174, 74, 32, 32)) << "alone, it takes the corner";
}
