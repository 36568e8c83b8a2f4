#include <cmath>
#include <random>
#include <set>

#include "discovery/SearchFixture.h"
#include "imaging/Image.h"
#include "support/KilledChild.h"

namespace {

constexpr int kPhotos = 120;

class KillTest : public CSearchFixture {
 protected:
  /// Each photo has a colour of its own, by which its thumbnail is known.
  void AddColouredPhotos() const {
    for (unsigned i = 0; i < kPhotos; ++i) {
      Scratch.Write("Pictures/" + std::to_string(100 + i) + ".jpg",
                    MakeJpeg(320, 240, ColourOf(i, 0), ColourOf(i, 1), ColourOf(i, 2)));
    }
  }
  static unsigned ColourOf(unsigned photo, unsigned channel) {
    const unsigned digits[] = {photo % 5, photo / 5 % 5, photo / 25 % 5};
    return 20 + 50 * digits[channel];
  }

  void CheckThumbnails() {
    for (unsigned i = 0; i < kPhotos; ++i) {
      const CAssetRecord record =
          Catalog.FindAssetByPath(Pictures() + "/" + std::to_string(100 + i) + ".jpg");
      if (!record.IsValid()) continue;
      const std::unique_ptr<CImage> thumbnail = record.LoadThumbnail();
      if (!thumbnail) continue;
      const std::uint8_t* pixel = thumbnail->GetPixels().Bits;
      for (unsigned channel = 0; channel < 3; ++channel) {
        ASSERT_NEAR(ColourOf(i, channel), pixel[2 - channel], 12) << "photo " << i;
      }
    }
  }
};

TEST_F(KillTest, AnImportKilledAtAnyMomentLeavesWholeStores) {
  AddColouredPhotos();
  Cache.Close();
  Catalog.Close();
  std::mt19937 random(20022);  // NOLINT: the same moments each time
  int interrupted = 0;
  for (int kill = 0; kill < 30; ++kill) {
    if (kill % 3 == 0) {  // begin anew, with numbers of lost photos given out again
      std::filesystem::remove(Scratch.File("vellumar.db"));
      std::filesystem::remove(Scratch.File("vellumar.db-journal"));
    }
    const int progress = RunAndKill(
        [&](const CReport& report) {
          OpenStores();
          report.Send(1);
          Search.SearchFolder(Pictures(), true);
          report.Send(2);
        },
        std::chrono::microseconds(random() % 100000));
    interrupted += progress == 1 ? 1 : 0;

    OpenStores();
    const int photos = Catalog.GetAssets().GetSize();
    EXPECT_TRUE(photos == 0 || photos == kPhotos) << "a search is one transaction";
    EXPECT_EQ(photos == 0 ? -1 : 0, Catalog.GetCurrentRollID());
    CheckThumbnails();
    Search.Reset();
    EXPECT_TRUE(Search.SearchFolder(Pictures(), true));
    EXPECT_EQ(kPhotos, Catalog.GetAssets().GetSize());
    CheckThumbnails();
    Cache.Close();
    Catalog.Close();
    if (kill % 3 == 1) std::filesystem::remove(Scratch.File("vellumar.db"));
  }
  EXPECT_GT(interrupted, 5) << "the kills came too early or too late to tell anything";
}

TEST_F(KillTest, ThumbnailsOfNumbersThatWereTakenBackAreOverwritten) {
  AddColouredPhotos();
  {
    // What a stop between the two commits leaves: the thumbnails are kept, the photos are not.
    CAutoCommitPause dropped(Catalog);
    Search.SearchFolder(Pictures(), true);
  }
  ASSERT_TRUE(Catalog.GetAssets().IsEmpty());
  ASSERT_TRUE(Cache.Has(1));
  std::filesystem::remove(Pictures() + "/100.jpg");
  Scratch.Write("Pictures/101.jpg", "no picture");
  EXPECT_TRUE(Search.SearchFolder(Pictures(), true));
  EXPECT_EQ(nullptr, Catalog.FindAssetByPath(Pictures() + "/101.jpg").LoadThumbnail());
  EXPECT_NE(nullptr, Catalog.FindAssetByPath(Pictures() + "/102.jpg").LoadThumbnail());
  CheckThumbnails();
}

}  // namespace
