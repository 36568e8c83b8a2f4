#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include "base/Exceptions.h"
#include "catalog/ThumbnailCache.h"
#include "imaging/JpegImage.h"
#include "storage/StorageException.h"
#include "support/ScratchFolder.h"
#include "support/TestJpeg.h"

namespace {

class ThumbnailCacheTest : public testing::Test {
 protected:
  void OpenAnew(CThumbnailCache& cache) { cache.Open(Path, Guid); }

  static std::vector<std::uint8_t> Thumbnail(unsigned width) {
    const std::string jpeg = MakeJpeg(width, 20, 200, 100, 50);
    return {jpeg.begin(), jpeg.end()};
  }

  const CScratchFolder Scratch;
  const std::string Path = Scratch.File("vellumar.thumbs");
  const CGuid Guid = CGuid::Generate();
};

}  // namespace

TEST_F(ThumbnailCacheTest, KeepsItsRowsForTheSameCatalogAndDropsThemForAnother) {
  {
    CThumbnailCache cache;
    EXPECT_EQ(&cache, CThumbnailCache::GetInstance());
    OpenAnew(cache);
    cache.StoreBytes(5, Thumbnail(33));
  }
  EXPECT_EQ(nullptr, CThumbnailCache::GetInstance());
  CThumbnailCache cache;
  OpenAnew(cache);
  ASSERT_NE(nullptr, cache.Load(5));
  EXPECT_EQ((ImageSize{33, 20}), cache.Load(5)->GetCurrentSize());

  const CGuid other = CGuid::Generate();
  cache.Open(Path, other);
  EXPECT_FALSE(cache.Has(5));
  cache.StoreBytes(6, Thumbnail(34));
  cache.Open(Path, other);
  EXPECT_TRUE(cache.Has(6));
  OpenAnew(cache);
  EXPECT_FALSE(cache.Has(6));
}

TEST_F(ThumbnailCacheTest, FindsRowsStoredInAnyOrder) {
  CThumbnailCache cache;
  OpenAnew(cache);
  for (const int id : {30, 10, 20}) cache.StoreBytes(id, Thumbnail(static_cast<unsigned>(id)));
  EXPECT_EQ(0, cache.FindRow(30));
  EXPECT_EQ(1, cache.FindRow(10));
  EXPECT_EQ(2, cache.FindRow(20));
  for (const int id : {0, 9, 11, 25, 31, -1}) {
    EXPECT_EQ(-1, cache.FindRow(id)) << id;
    EXPECT_EQ(nullptr, cache.Load(id)) << id;
  }
  cache.StoreBytes(10, Thumbnail(44));
  EXPECT_EQ(1, cache.FindRow(10));
  EXPECT_EQ(-1, cache.FindRow(31));
  EXPECT_EQ(44, cache.Load(10)->GetCurrentSize().Width);
}

TEST_F(ThumbnailCacheTest, AnEmptyOrUnreadableThumbnailCountsAsPresentAndLoadsAsNone) {
  CThumbnailCache cache;
  OpenAnew(cache);
  CJpegImage image;
  image.LoadMemory(Thumbnail(50), 0, 0);
  cache.Store(1, &image);
  EXPECT_EQ(50, cache.Load(1)->GetCurrentSize().Width);
  cache.Store(1, nullptr);
  EXPECT_TRUE(cache.Has(1));
  EXPECT_EQ(nullptr, cache.Load(1));
  cache.StoreBytes(2, std::vector<std::uint8_t>{1, 2, 3});
  EXPECT_TRUE(cache.Has(2));
  EXPECT_EQ(nullptr, cache.Load(2));
}

TEST_F(ThumbnailCacheTest, WithAutoCommitOffOnlyCommitReachesTheFile) {
  CThumbnailCache cache;
  OpenAnew(cache);
  cache.SetAutoCommit(false);
  cache.StoreBytes(1, Thumbnail(21));
  cache.Commit();
  cache.StoreBytes(2, Thumbnail(22));
  EXPECT_TRUE(cache.Has(2));
  cache.Close();
  EXPECT_FALSE(cache.Has(1));
  EXPECT_EQ(nullptr, cache.Load(1));
  OpenAnew(cache);
  EXPECT_TRUE(cache.Has(1));
  EXPECT_FALSE(cache.Has(2));
  cache.StoreBytes(1, Thumbnail(60));
  cache.Rollback();
  EXPECT_EQ(21, cache.Load(1)->GetCurrentSize().Width);
}

TEST_F(ThumbnailCacheTest, ADamagedFileIsSetAsideAndRemade) {
  const std::string damages[] = {
      "", "no storage at all, but long enough to be looked at " + std::string(2000, 'x')};
  int number = 0;
  for (const std::string& damage : damages) {
    Scratch.Write("vellumar.thumbs", damage);
    CThumbnailCache cache;
    OpenAnew(cache);
    cache.StoreBytes(7, Thumbnail(40));
    EXPECT_NE(nullptr, cache.Load(7));
    EXPECT_EQ(damage, ReadBytes(Path + ".damaged[" + std::to_string(++number) + "]"));
  }
  // Cut short.
  const std::string whole = ReadBytes(Path);
  Scratch.Write("vellumar.thumbs", whole.substr(0, whole.size() - 3000));
  CThumbnailCache cache;
  OpenAnew(cache);
  EXPECT_FALSE(cache.Has(7));
  EXPECT_EQ(whole.size() - 3000, ReadBytes(Path + ".damaged[3]").size());
  // Behind a link.
  cache.Close();
  std::filesystem::remove(Path);
  std::filesystem::create_symlink(Scratch.Write("far/real", "no storage"), Path);
  OpenAnew(cache);
  cache.StoreBytes(7, Thumbnail(40));
  EXPECT_TRUE(std::filesystem::is_symlink(Path));
  EXPECT_TRUE(std::filesystem::exists(Scratch.File("far/real.damaged[1]")));
}

TEST_F(ThumbnailCacheTest, AFileThatIsOnlyOutOfReachStaysAndIsToldByTheFirstChange) {
  {
    CThumbnailCache cache;
    OpenAnew(cache);
    cache.StoreBytes(7, Thumbnail(40));
  }
  const std::string before = ReadBytes(Path);
  ASSERT_EQ(0, ::chmod(Path.c_str(), 0444));
  ASSERT_EQ(0, ::chmod(Scratch.GetPath().c_str(), 0755));
  const pid_t child = ::fork();
  if (child == 0) {
    if (::seteuid(65534) != 0) std::_Exit(3);
    CThumbnailCache cache;
    OpenAnew(cache);
    if (cache.Load(7) == nullptr) std::_Exit(1);
    try {
      cache.StoreBytes(8, Thumbnail(40));
      std::_Exit(2);
    } catch (const CStorageException& error) {
      std::_Exit(error.GetMessage().find("vellumar.thumbs") != std::string::npos ? 0 : 4);
    }
  }
  int status = 0;
  ASSERT_EQ(child, ::waitpid(child, &status, 0));
  EXPECT_TRUE(WIFEXITED(status));
  EXPECT_EQ(0, WEXITSTATUS(status));
  EXPECT_EQ(before, ReadBytes(Path));
  EXPECT_FALSE(std::filesystem::exists(Path + ".damaged[1]"));

  // A folder in its place, which goes while the program runs.
  std::filesystem::remove(Path);
  Scratch.File("vellumar.thumbs/in the way");
  CThumbnailCache cache;
  OpenAnew(cache);
  EXPECT_FALSE(cache.Has(7));
  EXPECT_THROW(cache.StoreBytes(7, Thumbnail(40)), CStorageException);
  std::filesystem::remove(Path);
  cache.StoreBytes(7, Thumbnail(40));
  EXPECT_NE(nullptr, cache.Load(7));
}
