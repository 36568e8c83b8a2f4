#include "base/Exceptions.h"
#include "imaging/Image.h"
#include "storage/StorageException.h"
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
  Store(5, 33);
  OpenAnew();
  EXPECT_EQ(WidthOf(5), 33);
  const CGuid other = CGuid::Generate();
  for (int opening = 0; opening < 2; ++opening) {
    Cache.Open(CachePath, other);
    EXPECT_FALSE(Cache.Has(5));
    EXPECT_EQ(Cache.Has(6), opening == 1);
    Store(6, 34);
  }
  OpenAnew();
  EXPECT_FALSE(Cache.Has(6));
}

TEST_F(ThumbnailCacheTest, FindsRowsStoredInAnyOrder) {
  for (const std::int32_t id : {30, 10, 20, 10}) Store(id, 44);
  EXPECT_EQ(Cache.FindRow(30), 0);
  EXPECT_EQ(Cache.FindRow(10), 1);
  EXPECT_EQ(Cache.FindRow(20), 2);
  for (const std::int32_t id : {0, 11, 31, -1}) EXPECT_EQ(Cache.FindRow(id), -1) << id;
  // One that is empty, or no picture, counts as present.
  Cache.Store(10, nullptr);
  Cache.StoreBytes(20, std::vector<std::uint8_t>{1, 2, 3});
  CJpegImage image(ImageSize{50, 8});
  Cache.Store(30, &image);
  EXPECT_TRUE(Cache.Has(10));
  EXPECT_EQ(WidthOf(10), 0);
  EXPECT_EQ(WidthOf(20), 0);
  EXPECT_EQ(WidthOf(30), 50);
}

TEST_F(ThumbnailCacheTest, WithAutoCommitOffOnlyCommitReachesTheFile) {
  Cache.SetAutoCommit(false);
  Store(1, 21);
  Cache.Commit();
  Store(2, 22);
  Cache.Close();
  EXPECT_FALSE(Cache.Has(1));
  OpenAnew();
  EXPECT_TRUE(Cache.Has(1));
  EXPECT_FALSE(Cache.Has(2));
  Store(1, 60);
  Cache.Rollback();
  EXPECT_EQ(WidthOf(1), 21);
}

TEST_F(ThumbnailCacheTest, ADamagedFileIsSetAsideAndRemade) {
  Store(7, 40);
  Cache.Close();
  const std::string whole = ReadBytes(CachePath);
  int number = 0;
  for (const std::string& damage :
       {std::string(), "no storage" + std::string(2000, 'x'), whole.substr(0, whole.size() - 3000)}) {
    Scratch.Write("vellumar.thumbs", damage);
    OpenAnew();
    EXPECT_FALSE(Cache.Has(7));
    Store(7, 40);
    EXPECT_EQ(WidthOf(7), 40);
    EXPECT_EQ(ReadBytes(CachePath + ".damaged[" + std::to_string(++number) + "]"), damage);
    Cache.Close();
  }
  std::filesystem::remove(CachePath);
  std::filesystem::create_symlink(Scratch.Write("far/real", "no storage"), CachePath);
  OpenAnew();
  EXPECT_TRUE(std::filesystem::is_symlink(CachePath));
  EXPECT_TRUE(std::filesystem::exists(Scratch.File("far/real.damaged[1]")));
}

TEST_F(ThumbnailCacheTest, AFileThatIsOnlyOutOfReachStaysAndIsToldByTheFirstChange) {
  Store(7, 40);
  Cache.Close();
  const std::string before = ReadBytes(CachePath);
  std::filesystem::permissions(CachePath, std::filesystem::perms(0444));
  std::filesystem::permissions(Scratch.GetPath(), std::filesystem::perms(0755));
  EXPECT_TRUE(RunAsNobody([this] {
    OpenAnew();
    if (WidthOf(7) != 40) return false;
    try {
      Store(8, 40);
    } catch (const CStorageException& error) {
      return error.GetMessage().find("vellumar.thumbs") != std::string::npos;
    }
    return false;
  }));
  EXPECT_EQ(ReadBytes(CachePath), before);
  EXPECT_FALSE(std::filesystem::exists(CachePath + ".damaged[1]"));

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
