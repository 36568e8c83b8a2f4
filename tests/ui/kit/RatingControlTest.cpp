#include "ui/kit/ButtonTest.h"
#include "ui/kit/Pictures.h"
#include "ui/kit/RatingControl.h"

namespace {

class CScriptedOwner : public CRatingOwner {
 public:
  int GetRating() const override { return Rating; }
  void SetRating(int rating) override { Rating = rating; }
  void Commit() override {
    ++Commits;
    Control->Refresh();
  }

  CRatingControl* Control = nullptr;
  int Rating = 0;
  int Commits = 0;
};

class RatingControl : public testing::Test {
 protected:
  void SetUp() override {
    Owner.Control = &Control;
    Control.show();
  }

  void ClickStar(int star) {
    auto* button = Control.childAt(21 * star - 10, 10);
    ASSERT_NE(button, nullptr);
    ClickIn(*button);
  }
  int CountFilled() {
    const QImage image = Painted(Control);
    int filled = 0;
    for (int i = 0; i < 4; ++i) filled += image.pixelColor(21 * i + 10, 11).saturation() > 100 ? 1 : 0;
    return filled;
  }

  const CFontTable Fonts{false};
  CScriptedOwner Owner;
  CRatingControl Control{Owner, nullptr};
};

}  // namespace

TEST_F(RatingControl, ClickGivesTheStarsAndOneOnTheLastTakesItAway) {
  EXPECT_EQ(Control.size(), QSize(84, 21));
  const int cases[][3] = {{0, 1, 1}, {0, 4, 4}, {1, 1, 0}, {3, 3, 2}, {3, 4, 4}, {3, 1, 1}, {4, 4, 3}};
  for (const auto& [before, star, after] : cases) {
    Owner.Rating = before;
    Control.Refresh();
    EXPECT_EQ(CountFilled(), before);
    Owner.Commits = 0;
    ClickStar(star);
    EXPECT_EQ(Owner.Rating, after) << "star " << star << " of " << before;
    EXPECT_EQ(Owner.Commits, 1);
    EXPECT_EQ(CountFilled(), after);
  }
}

TEST_F(RatingControl, StarsActOnPressAndNameThemselves) {
  auto* third = dynamic_cast<CPaintedButton*>(Control.childAt(50, 10));
  ASSERT_NE(third, nullptr);
  PressAt(*third, {5, 5});
  EXPECT_EQ(Owner.Rating, 3);
  ReleaseAt(*third, {5, 5});
  EXPECT_EQ(Owner.Commits, 1);
  EXPECT_EQ(third->GetCommand(), CommandId::RateByStar3);
  EXPECT_EQ(third->accessibleName(), "3 stars");
  EXPECT_EQ(third->toolTip(), "Rate photo\nShortcut key: 0-4");
}
