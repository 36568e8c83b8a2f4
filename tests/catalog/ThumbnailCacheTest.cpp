#include "base/Exceptions.h"
#include "imaging/Image.h"
#include "support/CatalogFixture.h"
#include "support/FaultSteps.h"
#include "support/TestJpeg.h"

namespace {

class ThumbnailCacheTest : public CCatalogFixture {
 protected:
  void OpenAnew() { Cache.Open(CachePath, Catalog.GetDBGUID()); }

  /// Stores a thumbnail that is known by its width.
  void Store(std::int32_t id, int width) { Cache.StoreBytes(id, MakeJpeg({.Width = width, .Height = 20})); }
  /// 0 if there is none.
  int WidthOf(std::int32_t id) const {
    const std::unique_ptr<CJpegImage> image = Cache.Load(id);
    return image ? image->GetCurrentSize().Width : 0;
  }
};

TEST_F(ThumbnailCacheTest, KeepsItsRowsForTheSameCatalogAndDropsThemForAnother) {
  for (const std::int32_t id : {30, 10, 20, 10}) Store(id, 44);
  OpenAnew();
  for (int row = 0; row < 3; ++row) EXPECT_EQ(Cache.FindRow(row == 0 ? 30 : row * 10), row);
  for (const std::int32_t id : {0, 11, 31}) EXPECT_FALSE(Cache.Has(id)) << id;
  EXPECT_EQ(WidthOf(10), 44);
  Cache.Store(10, nullptr);
  Cache.StoreBytes(20, std::vector<std::uint8_t>{1, 2, 3});
  EXPECT_TRUE(Cache.Has(10)) << "an empty one counts as present";
  EXPECT_EQ(WidthOf(10) + WidthOf(20), 0);

  const CGuid other = CGuid::Generate();
  for (int opening = 0; opening < 2; ++opening) {
    Cache.Open(CachePath, other);
    EXPECT_FALSE(Cache.Has(30));
    EXPECT_EQ(Cache.Has(6), opening == 1);
    Store(6, 34);
  }
}

TEST_F(ThumbnailCacheTest, ADamagedFileIsSetAsideAndRemade) {
  Store(7, 40);
  const std::string whole = ReadBytes(CachePath);
  std::filesystem::rename(CachePath, Scratch.File("far/real"));
  std::filesystem::create_symlink("far/real", CachePath);
  int number = 0;
  for (const std::string& damage :
       {std::string(), "no storage" + std::string(2000, 'x'), whole.substr(0, whole.size() - 3000)}) {
    Scratch.Write("far/real", damage);
    OpenAnew();
    EXPECT_FALSE(Cache.Has(7));
    Store(7, 40);
    EXPECT_EQ(WidthOf(7), 40);
    EXPECT_EQ(ReadBytes(Scratch.File("far/real.damaged[" + std::to_string(++number) + "]")), damage);
  }
  EXPECT_TRUE(std::filesystem::is_symlink(CachePath));
}

TEST_F(ThumbnailCacheTest, AFileThatIsOnlyOutOfReachStaysAndIsToldByTheFirstChange) {
  Store(7, 40);
  Cache.Close();
  const std::string before = ReadBytes(CachePath);
  std::filesystem::permissions(CachePath, std::filesystem::perms(0444));
  std::filesystem::permissions(Scratch.GetPath(), std::filesystem::perms(0755));
  EXPECT_TRUE(RunAsNobody([this] {
    OpenAnew();
    EXPECT_THROW(Store(8, 40), CStorageException);
    return WidthOf(7) == 40 && !HasFailure();
  }));
  EXPECT_EQ(ReadBytes(CachePath), before);

  // A folder in its place, which goes while the program runs.
  std::filesystem::remove(CachePath);
  Scratch.File("vellumar.thumbs/in the way");
  OpenAnew();
  EXPECT_THROW(Store(7, 40), CStorageException);
  std::filesystem::remove(CachePath);
  Store(7, 40);
  EXPECT_EQ(WidthOf(7), 40);
}

}  // namespace
