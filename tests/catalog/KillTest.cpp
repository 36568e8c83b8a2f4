#include <random>

#include "support/CatalogFixture.h"
#include "support/KilledChild.h"

namespace {

constexpr int kPhotos = 20;

/// The n-th of a series of edits: a text and a rating of one photo, each its own transaction.
void Edit(CCatalog& catalog, int number) {
  const CAssetRecord record = catalog.FindAssetById(1 + number % kPhotos);
  record.GetStamps(StampId::Event).SetText("event " + std::to_string(number), 0);
  record.GetStamps(StampId::Rating).SetNumber(number, 0);
}

using KillTest = CCatalogFixture;

TEST_F(KillTest, NoEditThatHadReturnedIsLost) {
  for (int i = 0; i < kPhotos; ++i) AddRow("/p/" + std::to_string(i) + ".jpg");
  CloseStores();
  std::mt19937 random(20021);  // NOLINT: the same moments each time
  int done = 0;
  for (int kill = 0; kill < 20; ++kill) {
    done = RunAndKill(
        [this, first = done](const CReport& report) {
          OpenStores();
          for (int number = first;; ++number) {
            if (number > first) Edit(Catalog, number);
            report.Send(number);
          }
        },
        std::chrono::microseconds(random() % 150000));
    OpenStores();
    for (int i = std::max(1, done - kPhotos + 1); i <= done; ++i) {
      const CAssetRecord record = Catalog.FindAssetById(1 + i % kPhotos);
      const int rating = record.GetStamps(StampId::Rating).Get(0).GetNumber();
      EXPECT_EQ(record.GetCachedRating(), rating);
      EXPECT_TRUE(rating == i || rating == i + kPhotos) << "edit " << i << " of " << done;
      EXPECT_TRUE(record.GetStamps(StampId::Event).Get(0).GetText().starts_with("event "));
    }
    EXPECT_LE(Catalog.CountStrings(static_cast<std::int32_t>(StampId::Event)), kPhotos)
        << "no text outlives its last photo";
    CloseStores();
  }
  EXPECT_GT(done, 10) << "the kills came too early to tell anything";
}

}  // namespace
