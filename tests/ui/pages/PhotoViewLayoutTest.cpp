#include <gtest/gtest.h>

#include "ui/pages/PhotoViewLayout.h"

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
