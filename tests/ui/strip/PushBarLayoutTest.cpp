#include <gtest/gtest.h>

#include "ui/strip/PushBarLayout.h"
#include "ui/strip/Slide.h"

TEST(PushBarLayout, LeftBarGrowsOutOfTheLensAndRightBarShrinksTowardsIt) {
  const int top = 10;
  const auto left = [](double percent) { return PushBarForm{BarSide::Left, 1.0, 412, 27, percent}; };
  const auto right = [](double percent) { return PushBarForm{BarSide::Right, 1.0, 412, 27, percent}; };
  EXPECT_TRUE(left(0).GetBody().isEmpty());
  EXPECT_EQ(left(0).GetCap(), QRect(400, top, 12, 7));
  EXPECT_EQ(left(50).GetBody(), QRect(212, top, 200, 7));
  EXPECT_EQ(left(50).GetCap(), QRect(200, top, 12, 7));
  EXPECT_EQ(left(100).GetCap(), QRect(0, top, 12, 7));
  EXPECT_EQ(right(0).GetBody(), QRect(0, top, 400, 7));
  EXPECT_EQ(right(0).GetCap(), QRect(400, top, 12, 7));
  EXPECT_EQ(right(100).GetCap(), QRect(0, top, 12, 7));
  EXPECT_EQ((PushBarForm{BarSide::Right, 1.5, 618, 41, 0}).GetCap(), QRect(600, 15, 18, 11));
}

TEST(PushBarLayout, PressFindsThePhotoThere) {
  // 100 photos, the one at 40 under the lens.
  const double percent = GetRestPercent(40, 100);
  const PushBarForm left{BarSide::Left, 1.0, 412, 27, percent};
  const PushBarForm right{BarSide::Right, 1.0, 412, 27, percent};
  const auto target = [](const PushBarForm& form, int x, int y) { return form.FindTarget({x, y}, 40, 100); };

  const QRect leftBody = left.GetBody();
  EXPECT_EQ(target(left, leftBody.left(), 13), 0);
  EXPECT_EQ(target(left, leftBody.center().x(), 13), 20);
  EXPECT_EQ(target(left, leftBody.right(), 13), 40);
  const QRect rightBody = right.GetBody();
  EXPECT_EQ(target(right, 0, 13), 41);
  EXPECT_EQ(target(right, rightBody.center().x(), 13), 70);
  EXPECT_EQ(target(right, rightBody.right(), 13), 99) << "held at the last photo";

  // The caps, with what belongs to them.
  const int capLeft = left.GetCap().left();
  EXPECT_EQ(target(left, capLeft - 15, 13), 0);
  EXPECT_EQ(target(left, capLeft - 16, 13), -1);
  EXPECT_EQ(target(left, capLeft, 1), 0);
  EXPECT_EQ(target(left, capLeft, 26), -1);
  const int capRight = right.GetCap().right();
  EXPECT_EQ(target(right, capRight + 15, 13), 99);
  EXPECT_EQ(target(right, capRight + 16, 13), -1);

  // Above and below the body.
  EXPECT_EQ(target(left, leftBody.center().x(), 4), 20);
  EXPECT_EQ(target(left, leftBody.center().x(), 3), -1);
  EXPECT_EQ(target(left, leftBody.center().x(), 22), 20);
  EXPECT_EQ(target(left, leftBody.center().x(), 23), -1);
  EXPECT_EQ((PushBarForm{BarSide::Left, 1.0, 412, 27, 0}).FindTarget({411, 13}, 0, 1), 0)
      << "without a body there is the cap";
}

TEST(PushBarLayout, PercentFollowsTheSlide) {
  EXPECT_EQ(GetRestPercent(0, 1), 0.0);
  EXPECT_EQ(GetRestPercent(99, 100), 100.0);
  EXPECT_DOUBLE_EQ(GetSlidePercent(40, 101, 0, 151), GetRestPercent(40, 101));
  EXPECT_DOUBLE_EQ(GetSlidePercent(40, 101, 151, 151), 40 + 100.0 / 101);
  EXPECT_DOUBLE_EQ(GetSlidePercent(40, 101, -302, 151), 40 - 200.0 / 101);
}

TEST(Slide, GoesAtItsSpeedAndEndsOnItsCell) {
  using std::chrono::milliseconds;
  const CSlide::TimePoint begin{};
  const CSlide ahead(5, 2, 151, 1000, begin);
  EXPECT_EQ(ahead.GetOffset(begin), 0);
  EXPECT_EQ(ahead.GetOffset(begin + milliseconds(100)), 100);
  EXPECT_EQ(ahead.GetIndexAt(150), 5);
  EXPECT_EQ(ahead.GetIndexAt(151), 6);
  EXPECT_EQ(ahead.GetEnd(), begin + milliseconds(302));
  EXPECT_EQ(ahead.GetOffset(begin + milliseconds(500)), 302);
  const CSlide back(5, -1, 227, 1500, begin);
  EXPECT_EQ(back.GetOffset(begin + milliseconds(100)), -150);
  EXPECT_EQ(back.GetIndexAt(-226), 5);
  EXPECT_EQ(back.GetOffset(back.GetEnd()), -227);
}
