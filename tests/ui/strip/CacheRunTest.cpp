#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

#include "ui/strip/CacheRun.h"

namespace {

constexpr int kUnpainted = -1000000;

/// The slots as a row of boxes that hold the index of the cell painted into them, whatever the run says.
class CModel {
 public:
  explicit CModel(int visibleCount) : Run(visibleCount), Slots(Room(), kUnpainted) {}

  void Extend(int count, CacheSide side) {
    const CacheRun::Growth growth = Run.Extend(count, side);
    std::vector<int> moved(Slots.size(), kUnpainted);
    for (int slot = 0; slot < Run.GetRoom(); ++slot) {
      const int to = slot + growth.Shift;
      if (to >= 0 && to < Run.GetRoom())
        moved[static_cast<std::size_t>(to)] = Slots[static_cast<std::size_t>(slot)];
    }
    Slots = moved;
    for (int slot = growth.FirstSlot; slot < growth.FirstSlot + growth.Count; ++slot) {
      ASSERT_GE(slot, 0);
      ASSERT_LT(slot, Run.GetRoom());
      const int index = Base + slot - Run.GetBefore();
      ASSERT_EQ(std::count(Slots.begin(), Slots.end(), index), 0) << "painted twice";
      Slots[static_cast<std::size_t>(slot)] = index;
    }
  }

  void MoveBy(int delta) {
    const CacheSide side = delta < 0 ? CacheSide::Before : CacheSide::After;
    Extend(Run.GetMissing(side, delta), side);
    ExpectShown(Base, Base + delta);
    Run.MoveBase(delta);
    Base += delta;
    ExpectShown(Base, Base);
  }

  std::optional<CacheSide> FillOne(int setCount) {
    const std::optional<CacheSide> side = Run.FindIdleSide(Base, setCount);
    if (side) Extend(1, *side);
    return side;
  }

  void Prepare() {
    for (const CacheSide side : {CacheSide::Before, CacheSide::After}) Extend(Run.GetMissing(side, 0), side);
    ExpectShown(Base, Base);
  }

  /// All cells that a slide between the two shows are held, each in its place.
  void ExpectShown(int from, int to) const {
    const int half = Run.GetRoom() / 4;
    for (int index = std::min(from, to) - half; index <= std::max(from, to) + half; ++index) {
      const int slot = Run.FindSlot(index - Base);
      ASSERT_GE(slot, 0) << index;
      ASSERT_EQ(Slots[static_cast<std::size_t>(slot)], index);
    }
    ASSERT_LE(Run.GetBefore() + Run.GetAfter(), Run.GetRoom());
  }

  CacheRun Run;
  int Base = 0;

 private:
  std::size_t Room() const { return static_cast<std::size_t>(Run.GetRoom()); }
  std::vector<int> Slots;
};

}  // namespace

TEST(CacheRun, SlotsHoldTheRightCellsAfterAnyMoves) {
  std::mt19937 random(7);
  for (const int visible : {1, 3, 7, 13}) {
    CModel model(visible);
    for (int step = 0; step < 3000 && !testing::Test::HasFatalFailure(); ++step) {
      model.Prepare();
      for (auto idle = random() % 20; idle > 0 && model.FillOne(40); --idle) {
      }
      const int delta =
          static_cast<int>(random() % static_cast<std::mt19937::result_type>(2 * visible + 1)) - visible;
      ASSERT_TRUE(model.Run.CanShowMove(delta));
      model.MoveBy(delta);
    }
  }
  EXPECT_FALSE(CacheRun(7).CanShowMove(8));
}

TEST(CacheRun, MoreThanThereIsRoomForIsCut) {
  CacheRun run(3);
  EXPECT_EQ(run.Extend(100, CacheSide::After).Count, 6);
  EXPECT_EQ(run.Extend(0, CacheSide::Before).Count, 0);
  const CacheRun::Growth growth = run.Extend(2, CacheSide::Before);
  EXPECT_EQ(growth.Shift, 2);
  EXPECT_EQ(growth.FirstSlot, 0);
  EXPECT_EQ(run.GetBefore(), 2);
  EXPECT_EQ(run.GetAfter(), 4);
  EXPECT_EQ(run.FindSlot(3), 5);
  EXPECT_EQ(run.FindSlot(4), -1) << "dropped at the far end";
  EXPECT_EQ(run.FindSlot(-3), -1);
}

TEST(CacheRun, IdleTimeFillsAheadFirstThenBehindThenTheRestAhead) {
  const auto fill = [](int current, int setCount) {
    CModel model(7);
    model.Base = current;
    model.Prepare();
    std::string order;
    while (const std::optional<CacheSide> side = model.FillOne(setCount)) {
      order += *side == CacheSide::After ? 'a' : 'b';
    }
    return order;
  };
  EXPECT_EQ(fill(50, 100), "aaabbbb");
  EXPECT_EQ(fill(0, 100), "aaaaaaa")
      << "behind the first photo are only the empty places that the window shows";
  EXPECT_EQ(fill(1, 3), "ab") << "a set that fits has an end";
}
