#include <gtest/gtest.h>

#include <random>

#include "catalog/Catalog.h"
#include "catalog/StampList.h"
#include "support/KilledChild.h"
#include "support/ScratchFolder.h"

namespace {

constexpr int kPhotos = 20;

/// The n-th of a series of edits: a rating and a text of one photo, each its own transaction.
void Edit(CCatalog& catalog, int number) {
  CAssetRecord record = catalog.FindAssetById(1 + number % kPhotos);
  record.GetStamps(StampId::Event).SetText("event " + std::to_string(number), 0);
  record.GetStamps(StampId::Rating).SetNumber(number, 0);
}

TEST(KillTest, NoEditThatHadReturnedIsLost) {
  const CScratchFolder scratch;
  const std::string path = scratch.File("vellumar.db");
  {
    CCatalog catalog;
    catalog.Open(path);
    CAutoCommitPause pause(catalog);
    for (int i = 0; i < kPhotos; ++i) catalog.AddAsset("/p/" + std::to_string(i) + ".jpg");
    pause.Commit();
  }
  std::mt19937 random(20021);  // NOLINT: the same moments each time
  int done = 0;
  for (int kill = 0; kill < 30; ++kill) {
    const int first = done;
    done = RunAndKill(
        [&](const CReport& report) {
          CCatalog catalog;
          catalog.Open(path);
          report.Send(first);
          for (int number = first + 1;; ++number) {
            Edit(catalog, number);
            report.Send(number);
          }
        },
        std::chrono::microseconds(random() % 200000));

    CCatalog catalog;
    ASSERT_TRUE(catalog.Open(path));
    for (int i = std::max(1, done - kPhotos + 1); i <= done; ++i) {
      const CAssetRecord record = catalog.FindAssetById(1 + i % kPhotos);
      const int rating = record.GetStamps(StampId::Rating).Get(0).GetNumber();
      EXPECT_EQ(rating, record.GetCachedRating());
      EXPECT_TRUE(rating == i || rating == i + kPhotos) << "edit " << i << " of " << done;
      const CStampList events = record.GetStamps(StampId::Event);
      ASSERT_EQ(1, events.Count());
      EXPECT_TRUE(events.Get(0).GetText().starts_with("event "));
    }
    std::vector<std::string> texts;
    catalog.ListStrings(static_cast<std::int32_t>(StampId::Event), texts, true);
    EXPECT_LE(texts.size(), static_cast<std::size_t>(kPhotos)) << "no text outlives its last photo";
  }
  EXPECT_GT(done, 10) << "the kills came too early to tell anything";
}

}  // namespace
