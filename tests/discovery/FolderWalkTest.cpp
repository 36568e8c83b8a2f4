#include <sys/stat.h>
#include <unistd.h>

#include "discovery/FolderWalk.h"
#include "discovery/SearchFixture.h"
#include "imaging/Image.h"

using testing::ElementsAre;

namespace {

class FolderWalkTest : public CSearchFixture {
 protected:
  /// The names of what a walk finds, after its update.
  std::vector<std::string> FoundBelow(const std::string& folder) {
    CFolderWalk walk(folder, Catalog, Cache, &Progress);
    EXPECT_TRUE(walk.Update());
    std::vector<std::string> names;
    for (const std::string& path : Progress.Paths) names.push_back(path.substr(folder.size() + 1));
    return names;
  }
};

TEST_F(FolderWalkTest, OnlyRegularVisibleJpegFilesAreFound) {
  for (const char* name :
       {"b.jpg", "a.JPEG", "no.jpe", "no.tif", "no.bmp", "jpg", ".hidden.jpg", ".folder/no.jpg",
        "folder.jpg/c.jpg", "folder.jpg/.vellumar-abcdefghij", "\xff\xfe bad utf-8.jpg", "line\nfeed.jpg"}) {
    AddPhoto(name);
  }
  ASSERT_EQ(0, ::mkfifo((Pictures() + "/fifo.jpg").c_str(), 0600));
  std::filesystem::create_symlink("b.jpg", Pictures() + "/link.jpg");
  std::filesystem::create_symlink("nowhere", Pictures() + "/dangling.jpg");
  EXPECT_THAT(FoundBelow(Pictures()), ElementsAre("a.JPEG", "b.jpg", "folder.jpg/c.jpg", "line\nfeed.jpg",
                                                  "link.jpg", "\xff\xfe bad utf-8.jpg"));
  EXPECT_TRUE(Catalog.FindAssetByPath(Pictures() + "/\xff\xfe bad utf-8.jpg").IsValid());
  EXPECT_FALSE(std::filesystem::exists(Pictures() + "/folder.jpg/.vellumar-abcdefghij")) << "left by a kill";
}

TEST_F(FolderWalkTest, LinksThatLoopAndFoldersThatRepeatAreEnteredOnce) {
  AddPhoto("one/a.jpg");
  std::filesystem::create_directory_symlink("..", Pictures() + "/one/up");
  std::filesystem::create_directory_symlink(Pictures(), Pictures() + "/one/top");
  CFolderWalk walk(Pictures(), Catalog, Cache, nullptr);
  EXPECT_EQ(1, walk.GetFoundCount());
  EXPECT_EQ(1, walk.GetPendingCount());
}

TEST_F(FolderWalkTest, PhotosAreKnownByTheirOwnPlaceAndElseByALinkToTheirFolder) {
  AddPhoto("real/trip/a.jpg");
  Scratch.Write("elsewhere/b.jpg", "x");
  for (const char* link : {"A link", "z link", "real/between"}) {
    std::filesystem::create_directory_symlink(Pictures() + "/real/trip", Pictures() + "/" + link);
  }
  std::filesystem::create_directory_symlink(Scratch.GetPath() + "/elsewhere", Pictures() + "/out");
  EXPECT_THAT(FoundBelow(Pictures()), ElementsAre("out/b.jpg", "real/trip/a.jpg"));
}

TEST_F(FolderWalkTest, FoldersPastTheLengthLimitAreLeftOut) {
  // The limit counts characters: this name has 100 in 200 bytes.
  std::string name;
  for (int i = 0; i < 100; ++i) name += "ü";
  const std::string long1 = Pictures() + "/" + name;
  const std::size_t characters = Pictures().size() + 101;
  const std::string fits = long1 + "/" + std::string(255 - characters - 1, 'x');
  const std::string tooLong = long1 + "/" + std::string(256 - characters - 1, 'y');
  for (const std::string& folder : {fits, tooLong}) {
    std::filesystem::create_directories(folder);
    std::ofstream(folder + "/a.jpg") << "x";
  }
  CFolderWalk walk(Pictures(), Catalog, Cache, &Progress);
  EXPECT_TRUE(walk.Update());
  EXPECT_THAT(Progress.Paths, ElementsAre(fits + "/a.jpg"));
}

TEST_F(FolderWalkTest, AFileThatCannotBeReadIsTriedAgainByTheNextSearch) {
  AddPhoto("a.jpg");
  const std::string gone = AddPhoto("b.jpg");
  AddPhoto("c.jpg");
  Progress.OnTotal = [&gone] { std::filesystem::remove(gone); };
  FoundBelow(Pictures());
  EXPECT_EQ(3, Progress.Total);
  EXPECT_EQ(2, Progress.Thumbnails);
  EXPECT_FALSE(Cache.Has(Catalog.FindAssetByPath(gone).GetAssetID()));
  AddPhoto("b.jpg");
  EXPECT_TRUE(Search.SearchFolder(Pictures(), true));
  EXPECT_NE(nullptr, Catalog.FindAssetByPath(gone).LoadThumbnail());
  EXPECT_EQ(0, Catalog.GetCurrentRollID());
}

TEST_F(FolderWalkTest, UnreadableFoldersAreAsGoodAsEmpty) {
  AddPhoto("closed/a.jpg");
  AddPhoto("open/b.jpg");
  ASSERT_EQ(0, ::chmod((Pictures() + "/closed").c_str(), 0));
  constexpr uid_t kNobody = 65534;
  const bool isRoot = ::geteuid() == 0;
  if (isRoot) {
    std::filesystem::permissions(Scratch.GetPath(), std::filesystem::perms::all);
    ASSERT_EQ(0, ::seteuid(kNobody));
  }
  CFolderWalk walk(Pictures(), Catalog, Cache, nullptr);
  CFolderWalk none(Pictures() + "/nosuch", Catalog, Cache, nullptr);
  if (isRoot) {
    ASSERT_EQ(0, ::seteuid(0));
  }
  ::chmod((Pictures() + "/closed").c_str(), 0700);
  EXPECT_EQ(1, walk.GetFoundCount());
  EXPECT_EQ(0, none.GetFoundCount());
}

TEST_F(FolderWalkTest, ResultsOfManyThreadsKeepTheOrderOfTheFiles) {
  // Photos of very different cost, each of its own colour: none may get another's thumbnail.
  for (unsigned i = 0; i < 60; ++i) {
    const unsigned size = i % 7 == 0 ? 1500 : 20;
    Scratch.Write("Pictures/" + std::to_string(100 + i) + ".jpg",
                  MakeJpeg(size, size, i * 4, 255 - i * 4, 128));
  }
  FoundBelow(Pictures());
  for (int i = 0; i < 60; ++i) {
    const CAssetRecord record = Catalog.FindAssetByPath(Pictures() + "/" + std::to_string(100 + i) + ".jpg");
    const std::unique_ptr<CImage> thumbnail = record.LoadThumbnail();
    ASSERT_NE(nullptr, thumbnail);
    EXPECT_NEAR(i * 4, thumbnail->GetPixels().Bits[2], 6) << "red of photo " << i;
  }
}

}  // namespace
