#include <gmock/gmock.h>

#include <random>

#include "catalog/StringHistory.h"
#include "discovery/FolderSearch.h"
#include "discovery/FolderWalk.h"
#include "discovery/SearchProgress.h"
#include "imaging/Image.h"
#include "sets/QuerySet.h"
#include "support/CatalogFixture.h"
#include "support/FaultSteps.h"
#include "support/ScriptedMessages.h"
#include "support/TestJpeg.h"

using testing::ElementsAre;

namespace {

/// A progress window by script: notes the photos, and is stopped after some of them.
class CScriptedProgress : public CSearchProgress {
 public:
  bool SetTotal(int) override { return !Stopped; }
  bool Progress(const PhotoProgress& photo) override {
    Paths.push_back(photo.Path);
    Stopped = Paths.size() == StopAfter;
    return !Stopped;
  }
  bool IsStopped() const override { return Stopped; }

  std::size_t StopAfter = 0;  // 0: never
  bool Stopped = false;
  std::vector<std::string> Paths;
};

/// A search over the stores of a session. Paths are given from the home on.
class FolderSearchTest : public CCatalogFixture {
 protected:
  FolderSearchTest() { Search.Reset(); }

  void Restart() {
    CloseStores();
    Search.Reset();
    OpenStores();
  }

  std::string In(const std::string& path) const { return Scratch.GetPath() + "/" + path; }
  std::string AddPhoto(const std::string& path, const std::string& dateTime = {}) const {
    return Scratch.Write(path, MakeJpeg(160, 120, 200, 100, 50, dateTime));
  }
  CAssetRecord At(const std::string& path) { return Catalog.FindAssetByPath(In(path)); }
  int Photos() const { return Catalog.GetAssets().GetSize(); }
  int CountBelow(const std::string& folder) {
    CQuerySet set(&Catalog, SetKind::Available);
    set.SetFolderFilter(In(folder));
    set.Rebuild();
    return set.GetCount();
  }

  CScriptedMessages Messages;
  CScriptedProgress Progress;
  CFolderSearch& Search = CFolderSearch::GetInstance();
};

TEST_F(FolderSearchTest, RegularVisibleJpegFilesAreFoundOnce) {
  // The limit of a folder's length counts characters: these are 100 in 200 bytes.
  std::string letters;
  for (int i = 0; i < 100; ++i) letters += "ü";
  const std::string longest = letters + "/" + std::string(255 - Pictures().size() - 102, 'x') + "/a.jpg";
  for (const std::string& name : {longest, letters + "/x" + longest.substr(letters.size() + 1)}) {
    AddPhoto("Pictures/" + name);
  }
  for (const char* name : {"b.jpg", "a.JPEG", "no.jpe", "no.tif", "jpg", ".hidden.jpg", ".folder/no.jpg",
                           "folder.jpg/c.jpg", "folder.jpg/.vellumar-abcdefghij", "real/trip/d.jpg",
                           "\xff bad utf-8.jpg", "line\nfeed.jpg", "../elsewhere/e.jpg"}) {
    AddPhoto(std::string("Pictures/") + name);
  }
  const char* links[][2] = {{"link.jpg", "b.jpg"}, {"dangling.jpg", "nowhere"},      {"A link", "real/trip"},
                            {"real/up", ".."},     {"real/between", "../real/trip"}, {"out", "../elsewhere"}};
  for (const auto& [name, target] : links) std::filesystem::create_symlink(target, In("Pictures/") + name);
  Search.Progress = &Progress;
  EXPECT_TRUE(Search.SearchFolder(In("Pictures"), true));
  for (std::string& path : Progress.Paths) path.erase(0, Pictures().size() + 1);
  EXPECT_THAT(Progress.Paths, ElementsAre("a.JPEG", "b.jpg", "folder.jpg/c.jpg", "line\nfeed.jpg", "link.jpg",
                                          "out/e.jpg", "real/trip/d.jpg", longest, "\xff bad utf-8.jpg"));
  EXPECT_FALSE(std::filesystem::exists(In("Pictures/folder.jpg/.vellumar-abcdefghij"))) << "left by a kill";
}

TEST_F(FolderSearchTest, NewPhotosFormOneRollWithDatesAndThumbnails) {
  AddPhoto("Pictures/b.JPG", "2003:02:09 14:00:00");
  Scratch.Write("Pictures/2002/a.jpeg", "no picture");
  int found = 0, pending = 0;
  EXPECT_TRUE(Search.SearchFolder(Pictures(), true));
  EXPECT_EQ(Catalog.GetCurrentRollID(), 0);
  EXPECT_EQ(At("Pictures/b.JPG").GetStamps(StampId::Date).Get(0).GetText(), "Feb 9, 2003");
  EXPECT_EQ(At("Pictures/b.JPG").LoadThumbnail()->GetNaturalSize(), (ImageSize{140, 105}));
  EXPECT_NE(At("Pictures/2002/a.jpeg").GetCachedDate(), 0);
  Restart();
  EXPECT_TRUE(Search.SearchFolder(Pictures(), false, &found, &pending));
  EXPECT_EQ(found, 2);
  EXPECT_EQ(pending, 0) << "a file that can't be decoded is not tried again";
  EXPECT_FALSE(Search.SearchFolder(Pictures(), false)) << "once a session";
  Cache.Open(CachePath, CGuid::Generate());
  EXPECT_TRUE(Search.SearchFolder(Pictures(), true));
  EXPECT_NE(At("Pictures/b.JPG").LoadThumbnail(), nullptr) << "a lost one is made again, without a roll";
  for (const char* path : {"Pictures/c.jpg", "Elsewhere/d.jpg"}) AddPhoto(path);
  Search.GetHistory().Add(In("Elsewhere"));
  EXPECT_TRUE(Search.SearchAllFolders(true));
  EXPECT_EQ(At("Elsewhere/d.jpg").GetRollID(), 1);
  EXPECT_EQ(At("Pictures/c.jpg").GetRollID(), 2);
}

TEST_F(FolderSearchTest, WhatIsStoppedOrGoneIsBroughtInByTheNextSearch) {
  for (const char* name : {"Pictures/a.jpg", "Pictures/b.jpg", "Pictures/c.jpg"}) AddPhoto(name);
  CFolderWalk walk(Pictures(), Catalog, Cache, &Progress);
  std::filesystem::remove(In("Pictures/b.jpg"));
  Cache.StoreBytes(2, {});  // of a photo that was taken back
  Progress.StopAfter = 2;
  EXPECT_FALSE(walk.Update());
  Restart();
  EXPECT_EQ(Photos(), 2);
  EXPECT_FALSE(Cache.Has(2));
  AddPhoto("Pictures/b.jpg");
  EXPECT_TRUE(Search.SearchFolder(Pictures(), true));
  EXPECT_NE(At("Pictures/b.jpg").LoadThumbnail(), nullptr);
  EXPECT_EQ(At("Pictures/c.jpg").GetRollID(), 1);
}

TEST_F(FolderSearchTest, MoreThan3000PhotosAreAskedAboutOnceUnlessTheFolderIsOnTheList) {
  for (int i = 0; i < 3000; ++i) Scratch.Write("Pictures/" + std::to_string(i) + ".jpg", "");
  Progress.StopAfter = 1;
  Search.Progress = &Progress;
  EXPECT_FALSE(Search.SearchFolder(Pictures(), true));
  EXPECT_EQ(Photos(), 1) << "it was not asked about";
  Search.Reset();
  for (const char* name : {"Pictures/new.jpg", "Pictures/new2.jpg"}) Scratch.Write(name, "");
  Messages.Answer = false;
  for (const bool force : {false, false, true}) EXPECT_FALSE(Search.SearchFolder(Pictures(), force));
  ASSERT_EQ(Messages.Texts.size(), 2U) << "a declined folder is asked about again only by force";
  EXPECT_TRUE(Messages.Texts.front().starts_with("You have 3001 photos in " + Pictures() + " and its"));
  Search.GetHistory().Add(Pictures());
  EXPECT_TRUE(Search.SearchFolder(Pictures(), true));
}

TEST_F(FolderSearchTest, APhotoThatIsFoundAgainIsBackWithAllItHad) {
  const std::string path = AddPhoto("Trip/a.jpg");
  Search.SearchFolder(In("Trip"), true);
  CAssetRecord photo = At("Trip/a.jpg");
  photo.GetStamps(StampId::Rating).SetNumber(4, 0);
  std::filesystem::rename(path, In("away"));
  Search.UpdateMissingFlags();
  EXPECT_EQ(photo.GetMissing(), MissingState::Gone);
  std::filesystem::rename(In("away"), path);
  Search.UpdateMissingFlags();
  EXPECT_EQ(photo.GetMissing(), MissingState::InPlace);
  Search.MarkFolderRemoved(In("Trip"));
  Search.UpdateMissingFlags();
  EXPECT_EQ(photo.GetMissing(), MissingState::FolderRemoved);
  // Another case of the name is the same photo under its new spelling.
  std::filesystem::rename(path, In("Trip/A.JPG"));
  EXPECT_TRUE(Search.SearchFolder(In("Trip"), true));
  EXPECT_EQ(photo.GetPath(), In("Trip/A.JPG"));
  EXPECT_EQ(photo.GetMissing(), MissingState::InPlace);
  EXPECT_EQ(photo.GetCachedRating(), 4);
}

TEST_F(FolderSearchTest, AFolderThatIsReachedTwiceIsOne) {
  std::filesystem::remove(Pictures());
  for (const char* path : {"data/trip/a.jpg", "elsewhere/b.jpg"}) Scratch.Write(path, "x");
  std::filesystem::create_directory_symlink(In("data"), Pictures());
  std::filesystem::create_directory_symlink(In("elsewhere"), In("data/link"));
  Search.SearchFolder(Pictures(), true);
  // From above, by its own name, a folder in it, and what a link in it leads to.
  for (const auto& [folder, count] : {std::pair("", 2), {"data", 2}, {"data/trip", 1}, {"elsewhere", 1}}) {
    Restart();
    Search.UpdateMissingFlags();
    EXPECT_TRUE(Search.SearchFolder(In(folder), true));
    EXPECT_EQ(Photos(), 2) << folder;
    EXPECT_EQ(CountBelow(folder), count) << folder;
  }
  Scratch.Write("data/trip/new.jpg", "x");
  Search.SearchFolder(In("data/trip"), true);
  EXPECT_EQ(Catalog.FindAssetById(3).GetPath(), In("Pictures/trip/new.jpg")) << "beside the others";
  CStringHistory& list = Search.GetHistory();
  list.Add(In("data/trip"));
  EXPECT_EQ(list.Add(In("Pictures/trip")), 0);
  EXPECT_TRUE(list.Remove(In("Pictures/trip")));
  Search.MarkFolderRemoved(In("data/trip"));
  EXPECT_EQ(CountBelow("Pictures/trip"), 2) << "My Pictures shows them still";
}

TEST_F(FolderSearchTest, ARemovedFolderTakesOnlyThePhotosThatNothingElseShows) {
  for (const char* name : {"outer/a.jpg", "outer/inner/b.jpg", "Pictures/c.jpg"}) Scratch.Write(name, "x");
  Search.SearchFolder(Scratch.GetPath(), true);
  for (const char* name : {"outer", "outer/inner"}) Search.GetHistory().Add(In(name));
  for (const auto& [folder, left] : {std::pair("outer/inner", 3), {"OUTER", 3}, {"oute", 3}, {"", 1}}) {
    Search.MarkFolderRemoved(In(folder));
    EXPECT_EQ(CountBelow(""), left) << folder;
  }
}

TEST_F(FolderSearchTest, TheFirstSearchOpensOnTheFolderLastLookedAt) {
  for (const char* path : {"Pictures/a.jpg", "Elsewhere/b.jpg"}) AddPhoto(path);
  EXPECT_EQ(Search.FirstSearch(), Pictures());
  EXPECT_EQ(Photos(), 1);
  Search.GetHistory().Add(In("Elsewhere"));
  Catalog.SetCurrentPhotoFolder(In("Elsewhere"));
  EXPECT_EQ(Search.FirstSearch(), In("Elsewhere"));
  std::filesystem::rename(In("Elsewhere"), In("ELSEwhere"));
  Restart();
  EXPECT_EQ(Search.FirstSearch(), In("ELSEwhere")) << "renamed to another case";
  EXPECT_EQ(Search.GetHistory().Get(0), In("ELSEwhere"));
  EXPECT_EQ(Photos(), 2);
  std::filesystem::remove_all(In("ELSEwhere"));
  EXPECT_EQ(Search.FirstSearch(), Pictures()) << "a folder that is gone gives way";
  Catalog.SetCurrentPhotoFolder("");
  EXPECT_EQ(Search.FirstSearch(), "");
}

TEST_F(FolderSearchTest, ARemovableDiskWithPhotosIsSearchedAlone) {
  EXPECT_EQ(Search.GetFolderLabel(Pictures() + "/"), "Pictures");
  EXPECT_EQ(Search.GetFolderLabel(Pictures() + "/2002/Lakes/"), "2002/Lakes");
  EXPECT_EQ(Search.GetFolderLabel(Pictures() + "2"), Pictures() + "2");
  const std::string onDisk = GetActiveDiskPhotoFolder(), photo = onDisk + "/vellumar test.jpg";
  const bool isNew = std::filesystem::create_directories(onDisk);
  AddPhoto("Pictures/home.jpg");
  std::filesystem::copy(In("Pictures/home.jpg"), photo);
  Search.ActiveDisk = true;
  EXPECT_EQ(Search.GetFolderLabel(onDisk), "Active Disk Photos");
  EXPECT_EQ(Search.FirstSearch(), onDisk);
  EXPECT_EQ(Photos(), 1);
  std::filesystem::remove(photo);
  EXPECT_EQ(Search.FirstSearch(), Pictures()) << "without photos on it the normal rule holds";
  if (isNew) std::filesystem::remove(onDisk);
}

TEST_F(FolderSearchTest, AFullDiskUndoesTheSearchAndTheNextOneFindsThePhotosAgain) {
  const std::string first = AddPhoto("Pictures/first.jpg");
  Search.SearchFolder(Pictures(), true);
  std::filesystem::remove(first);
  for (int i = 0; i < 60; ++i) AddPhoto("Pictures/" + std::to_string(i) + ".jpg");
  {
    const CFileSizeLimit full(std::filesystem::file_size(CachePath) + 20000);
    EXPECT_FALSE(Search.SearchFolder(Pictures(), true));
  }
  EXPECT_THAT(Messages.Texts, ElementsAre(testing::HasSubstr("vellumar.thumbs")));
  Search.Reset();
  {
    const CFileSizeLimit full(0);
    Search.Progress = &Progress;
    Search.UpdateMissingFlags();
    EXPECT_EQ(Search.FirstSearch(), Pictures());
    EXPECT_FALSE(Search.SearchFolder(Pictures(), false)) << "not again unless it is asked for";
  }
  EXPECT_EQ(Messages.Texts.size(), 2U) << "a start tells once";
  EXPECT_EQ(Catalog.FindAssetById(1).GetMissing(), MissingState::InPlace);
  EXPECT_EQ(Photos(), 1);
  EXPECT_TRUE(Search.SearchFolder(Pictures(), true));
  EXPECT_EQ(Photos(), 61);
  EXPECT_EQ(Catalog.GetCurrentRollID(), 1);
}

TEST_F(FolderSearchTest, ThumbnailsThatProveDamagedInTheMiddleOfASearchAreBegunAnew) {
  Cache.StoreBytes(1, std::vector<std::uint8_t>(400000));
  Cache.StoreBytes(1, {});  // leaves pages without use, which nothing reads at opening
  Cache.Close();
  std::string file = ReadBytes(CachePath);
  std::fill(file.begin() + 3 * 4096, file.end(), '\x5a');
  Scratch.Write("vellumar.thumbs", file);
  Cache.Open(CachePath, Catalog.GetDBGUID());
  ASSERT_TRUE(Cache.Has(1)) << "not seen at opening";
  for (int i = 0; i < 40; ++i) AddPhoto("Pictures/" + std::to_string(i) + ".jpg");
  EXPECT_TRUE(Search.SearchFolder(Pictures(), true));
  for (int id = 1; id <= 40; ++id) EXPECT_NE(Catalog.FindAssetById(id).LoadThumbnail(), nullptr) << id;
  EXPECT_THAT(Messages.Texts, ElementsAre());
}

TEST_F(FolderSearchTest, AnImportKilledAtAnyMomentLeavesWholeStores) {
  constexpr int kPhotos = 30, kNoPicture = 29;
  const auto nameOf = [](int i) { return "Pictures/" + std::to_string(100 + i) + ".jpg"; };
  // Photos of very different cost, each of its own red, by which its thumbnail is known.
  for (int i = 0; i < kPhotos; ++i) {
    const unsigned size = i % 7 == 0 ? 900 : 60;
    Scratch.Write(nameOf(i), MakeJpeg(size, size, static_cast<unsigned>(8 * i), 100, 50));
  }
  Scratch.Write(nameOf(kNoPicture), "no picture");
  CloseStores();
  const std::string emptyCatalog = ReadBytes(CatalogPath);
  std::mt19937 random(20022);  // NOLINT: the same moments each time
  int interrupted = 0;
  for (int kill = 0; kill < 20; ++kill) {
    // The thumbnails of the last round stay, each under a number that now goes to another photo.
    Scratch.Write("vellumar.db", emptyCatalog);
    std::filesystem::remove(In(nameOf(kill)));
    interrupted += RunAndKill(
        [this](const auto& begins) {
          OpenStores();
          begins();
          Search.SearchFolder(Pictures(), true);
        },
        std::chrono::microseconds(random() % 60000));
    Restart();
    const int left = kPhotos - kill - 1;
    EXPECT_TRUE(Photos() == 0 || Photos() == left) << "a search is one transaction";
    EXPECT_EQ(Catalog.GetCurrentRollID(), Photos() == 0 ? -1 : 0);
    EXPECT_TRUE(Search.SearchFolder(Pictures(), true));
    for (int i = kill + 1; i < kPhotos; ++i) {
      const std::unique_ptr<CImage> thumbnail = At(nameOf(i)).LoadThumbnail();
      ASSERT_EQ(thumbnail != nullptr, i != kNoPicture);
      EXPECT_NEAR(thumbnail ? thumbnail->GetPixels().Top[2] : 8 * i, 8 * i, 3);
    }
    CloseStores();
  }
  EXPECT_GT(interrupted, 3) << "the kills came too early or too late to tell anything";
}

}  // namespace
