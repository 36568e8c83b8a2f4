#include "catalog/StringHistory.h"
#include "discovery/FolderSearch.h"
#include "discovery/SearchFixture.h"
#include "imaging/Image.h"
#include "sets/QuerySet.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

using FolderSearchTest = CSearchFixture;

TEST_F(FolderSearchTest, NewPhotosFormOneRollWithDatesAndThumbnails) {
  AddPhoto("b.JPG", "2003:02:09 14:00:00");
  AddPhoto("2002/a.jpeg");
  Search.Progress = &Progress;
  int found = 0, pending = 0;
  EXPECT_TRUE(Search.SearchFolder(Pictures(), true, &found, &pending));
  EXPECT_EQ(2, found);
  EXPECT_EQ(2, pending);
  EXPECT_EQ(2, Progress.Total);
  EXPECT_THAT(Progress.Paths, ElementsAre(Pictures() + "/2002/a.jpeg", Pictures() + "/b.JPG"));
  EXPECT_EQ(2, Progress.Thumbnails);
  EXPECT_EQ(0, Catalog.GetCurrentRollID());

  const CAssetRecord dated = Catalog.FindAssetByPath(Pictures() + "/b.JPG");
  EXPECT_EQ(0, dated.GetRollID());
  EXPECT_EQ(1, dated.GetStamps(StampId::CameraDate).Count());
  EXPECT_EQ(1, dated.GetStamps(StampId::FileCreateDate).Count());
  StampId source = StampId::None;
  EXPECT_EQ(dated.GetCachedDate(), dated.GetStamps(StampId::Date).Get(0).GetDate(&source));
  EXPECT_EQ(StampId::CameraDate, source);
  EXPECT_EQ("Feb 9, 2003", dated.GetStamps(StampId::Date).Get(0).GetText());
  EXPECT_EQ((ImageSize{140, 105}), dated.LoadThumbnail()->GetNaturalSize());

  const CAssetRecord undated = Catalog.FindAssetByPath(Pictures() + "/2002/a.jpeg");
  EXPECT_EQ(0, undated.GetStamps(StampId::CameraDate).Count());
  undated.GetStamps(StampId::Date).Get(0).GetDate(&source);
  EXPECT_EQ(StampId::FileCreateDate, source);

  Restart();
  EXPECT_TRUE(Search.SearchFolder(Pictures(), false, &found, &pending));
  EXPECT_EQ(2, found);
  EXPECT_EQ(0, pending);
  EXPECT_FALSE(Search.SearchFolder(Pictures(), false)) << "once a session";
  AddPhoto("c.jpg");
  EXPECT_TRUE(Search.SearchFolder(Pictures(), true));
  EXPECT_EQ(1, Catalog.GetCurrentRollID());
  EXPECT_EQ(1, Catalog.FindAssetByPath(Pictures() + "/c.jpg").GetRollID());
}

TEST_F(FolderSearchTest, AStoppedSearchKeepsWhatItHasDoneAsARoll) {
  for (int i = 10; i < 30; ++i) AddPhoto(std::to_string(i) + ".jpg");
  Search.Progress = &Progress;
  Progress.StopAfter = 10;
  EXPECT_FALSE(Search.SearchFolder(Pictures(), true));
  EXPECT_EQ(10, Catalog.GetAssets().GetSize());
  EXPECT_EQ(0, Catalog.GetCurrentRollID());
  Restart();
  EXPECT_EQ(10, Catalog.GetAssets().GetSize());
  EXPECT_TRUE(Search.SearchFolder(Pictures(), true));
  EXPECT_EQ(20, Catalog.GetAssets().GetSize());
  EXPECT_EQ(1, Catalog.GetCurrentRollID());
  EXPECT_EQ(1, Catalog.FindAssetByPath(Pictures() + "/29.jpg").GetRollID());

  AddPhoto("late.jpg");
  Progress.Stopped = true;
  Search.Progress = &Progress;
  Search.SearchFolder(Pictures(), true);
  EXPECT_EQ(20, Catalog.GetAssets().GetSize()) << "stopped before the walk began";
}

TEST_F(FolderSearchTest, ManyPhotosAreAskedAboutOnceUnlessTheFolderIsOnTheList) {
  for (int i = 0; i < 3000; ++i) Scratch.Write("Pictures/" + std::to_string(i) + ".jpg", "");
  Messages.Answer = false;
  AddPhoto("one too many.jpg");
  EXPECT_FALSE(Search.SearchFolder(Pictures(), false));
  ASSERT_EQ(1U, Messages.Texts.size());
  EXPECT_EQ("You have 3001 photos in " + Pictures() +
                " and its subfolders.\n\nAre you sure you want to bring all of them into Vellumar Photo "
                "Organizer?\n\nSelect OK to continue the search, or Cancel to stop the search.",
            Messages.Texts.front());
  EXPECT_FALSE(Search.SearchFolder(Pictures(), false));
  EXPECT_EQ(1U, Messages.Texts.size()) << "a declined folder is not asked about again";
  EXPECT_FALSE(Search.SearchFolder(Pictures(), true));
  EXPECT_EQ(2U, Messages.Texts.size());
  EXPECT_TRUE(Catalog.GetAssets().IsEmpty());

  std::filesystem::remove(Pictures() + "/0.jpg");
  EXPECT_TRUE(Search.SearchFolder(Pictures(), true));
  EXPECT_EQ(2U, Messages.Texts.size()) << "three thousand are not too many";
  EXPECT_EQ(3000, Catalog.GetAssets().GetSize());

  Scratch.Write("Pictures/0.jpg", "");
  for (int i = 3001; i < 6010; ++i) Scratch.Write("Pictures/" + std::to_string(i) + ".jpg", "");
  Search.GetHistory().Add(Pictures());
  EXPECT_TRUE(Search.SearchFolder(Pictures(), true));
  EXPECT_EQ(2U, Messages.Texts.size());
}

TEST_F(FolderSearchTest, APhotoThatIsFoundAgainIsBackWithAllItHad) {
  const std::string folder = Scratch.GetPath() + "/Trip";
  const std::string path = Scratch.Write("Trip/a.jpg", MakeJpeg(160, 120, 200, 100, 50));
  Search.SearchFolder(folder, true);
  Catalog.FindAssetByPath(path).GetStamps(StampId::Rating).SetNumber(4, 0);
  std::filesystem::rename(path, Scratch.File("hidden"));
  Search.Progress = &Progress;
  Progress.Stopped = true;
  Search.UpdateMissingFlags();
  Search.Progress = nullptr;
  EXPECT_EQ(MissingState::Gone, Catalog.FindAssetByPath(path).GetMissing());
  std::filesystem::rename(Scratch.File("hidden"), path);
  Search.UpdateMissingFlags();
  EXPECT_EQ(MissingState::InPlace, Catalog.FindAssetByPath(path).GetMissing());

  Search.MarkFolderRemoved(Scratch.GetPath() + "/Tri");
  EXPECT_EQ(MissingState::InPlace, Catalog.FindAssetByPath(path).GetMissing());
  Search.MarkFolderRemoved(folder);
  Search.UpdateMissingFlags();
  EXPECT_EQ(MissingState::FolderRemoved, Catalog.FindAssetByPath(path).GetMissing());
  EXPECT_TRUE(Search.SearchFolder(folder, true));
  EXPECT_EQ(MissingState::InPlace, Catalog.FindAssetByPath(path).GetMissing());
  EXPECT_EQ(4, Catalog.FindAssetByPath(path).GetCachedRating());

  // Moved photos are new ones; another case of the name is the same photo under its new spelling.
  std::filesystem::rename(path, folder + "/A.JPG");
  Search.UpdateMissingFlags();
  EXPECT_TRUE(Search.SearchFolder(folder, true));
  EXPECT_EQ(1, Catalog.GetAssets().GetSize());
  EXPECT_EQ(folder + "/A.JPG", Catalog.FindAssetById(1).GetPath());
  EXPECT_EQ(MissingState::InPlace, Catalog.FindAssetById(1).GetMissing());
  std::filesystem::create_directory(folder + "/sub");
  std::filesystem::rename(folder + "/A.JPG", folder + "/sub/A.JPG");
  EXPECT_TRUE(Search.SearchFolder(folder, true));
  EXPECT_EQ(1, Catalog.FindAssetByPath(folder + "/sub/A.JPG").GetRollID());
}

TEST_F(FolderSearchTest, AFolderThatIsReachedTwiceIsOne) {
  const std::string data = Scratch.GetPath() + "/data", trip = data + "/trip";
  std::filesystem::remove(Pictures());
  std::filesystem::create_directory_symlink(data, Pictures());
  Scratch.Write("data/trip/a.jpg", "x");
  Scratch.Write("elsewhere/b.jpg", "x");
  std::filesystem::create_directory_symlink(Scratch.GetPath() + "/elsewhere", data + "/link");
  Search.SearchFolder(Pictures(), true);
  const auto countBelow = [this](const std::string& folder) {
    CQuerySet set(&Catalog, SetKind::Available);
    set.SetFolderFilter(folder);
    set.Rebuild();
    return set.GetCount();
  };
  // From above, by its own name, a folder in it, and what a link in it leads to.
  for (const std::string& folder : {Scratch.GetPath(), data, trip, Scratch.GetPath() + "/elsewhere"}) {
    Restart();
    Search.UpdateMissingFlags();
    EXPECT_TRUE(Search.SearchFolder(folder, true));
    EXPECT_EQ(2, Catalog.GetAssets().GetSize()) << folder;
    EXPECT_EQ(folder == Scratch.GetPath() || folder == data ? 2 : 1, countBelow(folder)) << folder;
  }
  Scratch.Write("data/trip/new.jpg", "x");
  Search.SearchFolder(trip, true);
  EXPECT_EQ(Pictures() + "/trip/new.jpg", Catalog.FindAssetById(3).GetPath()) << "beside the others";

  CStringHistory& list = Search.GetHistory();
  list.Add(trip);
  EXPECT_EQ(0, list.Add(Pictures() + "/trip"));
  EXPECT_EQ(trip, list.Get(0));
  EXPECT_TRUE(list.Remove(Pictures() + "/trip"));
  Search.MarkFolderRemoved(trip);
  EXPECT_EQ(2, countBelow(Pictures() + "/trip")) << "My Pictures shows them still";
  std::filesystem::create_directory_symlink("/", Scratch.GetPath() + "/disk");
  EXPECT_TRUE(IsDiskRoot(Scratch.GetPath() + "/disk"));
}

TEST_F(FolderSearchTest, ARemovedFolderTakesOnlyThePhotosThatNothingElseShows) {
  const std::string outer = Scratch.GetPath() + "/outer";
  for (const char* name : {"outer/a.jpg", "outer/inner/b.jpg", "Pictures/sub/c.jpg"})
    Scratch.Write(name, "x");
  Search.SearchFolder(Scratch.GetPath(), true);
  const auto remove = [this](const std::string& folder) {
    Search.MarkFolderRemoved(folder);
    return CQuerySet(&Catalog, SetKind::Available).GetCount();
  };
  for (const char* name : {"/outer", "/outer/inner"}) Search.GetHistory().Add(Scratch.GetPath() + name);
  EXPECT_EQ(3, remove(Pictures() + "/sub"));
  EXPECT_EQ(3, remove(outer + "/inner")) << "the folder above is on the list";
  EXPECT_EQ(3, remove(Scratch.GetPath() + "/OUTER")) << "another folder";
  EXPECT_EQ(1, remove(Scratch.GetPath())) << "My Pictures stays";
}

TEST_F(FolderSearchTest, LostThumbnailsAreRemadeWithoutANewRoll) {
  AddPhoto("a.jpg");
  const std::string rubbish = Scratch.Write("Pictures/rubbish.jpg", "no picture");
  Search.SearchFolder(Pictures(), true);
  Cache.Close();
  Cache.Open(Scratch.File("vellumar.thumbs"), CGuid::Generate());
  EXPECT_FALSE(Cache.Has(1));
  int pending = 0;
  EXPECT_TRUE(Search.SearchFolder(Pictures(), true, nullptr, &pending));
  EXPECT_EQ(2, pending);
  EXPECT_EQ(0, Catalog.GetCurrentRollID());
  EXPECT_NE(nullptr, Catalog.FindAssetById(1).LoadThumbnail());
  EXPECT_EQ(nullptr, Catalog.FindAssetByPath(rubbish).LoadThumbnail());
  Search.SearchFolder(Pictures(), true, nullptr, &pending);
  EXPECT_EQ(0, pending) << "a file that can't be decoded is not tried again";
}

TEST_F(FolderSearchTest, AFullDiskUndoesTheSearchAndTheNextOneFindsThePhotosAgain) {
  AddPhoto("first.jpg");
  Search.SearchFolder(Pictures(), true);
  for (int i = 0; i < 300; ++i) AddPhoto(std::to_string(i) + ".jpg", "2003:08:09 14:00:00");
  {
    const CFileSizeLimit full(std::filesystem::file_size(Scratch.File("vellumar.thumbs")) + 20000);
    EXPECT_FALSE(Search.SearchFolder(Pictures(), true));
  }
  ASSERT_EQ(1U, Messages.Texts.size());
  EXPECT_THAT(Messages.Texts.front(), testing::HasSubstr("vellumar.thumbs"));
  EXPECT_EQ(1, Catalog.GetAssets().GetSize());
  EXPECT_EQ(0, Catalog.GetCurrentRollID());
  EXPECT_TRUE(Catalog.GetAutoCommit());
  EXPECT_TRUE(Cache.GetAutoCommit());
  EXPECT_TRUE(Search.SearchFolder(Pictures(), true));
  EXPECT_EQ(301, Catalog.GetAssets().GetSize());
  EXPECT_EQ(1, Catalog.GetCurrentRollID());
  EXPECT_NE(nullptr, Catalog.FindAssetById(301).LoadThumbnail());
}

TEST_F(FolderSearchTest, ThumbnailsThatProveDamagedInTheMiddleOfASearchAreBegunAnew) {
  for (int i = 0; i < 40; ++i) AddPhoto("old " + std::to_string(i) + ".jpg");
  Search.SearchFolder(Pictures(), true);
  for (int id = 1; id <= 40; ++id) Cache.Remove(id);  // pages without use, which nothing reads at opening
  Cache.StoreBytes(1, {});
  Cache.Close();
  // Everything behind the pages that are read at opening.
  std::fstream file(Scratch.File("vellumar.thumbs"), std::ios::in | std::ios::out | std::ios::binary);
  file.seekp(4 * 4096);
  const auto rest = std::filesystem::file_size(Scratch.File("vellumar.thumbs")) - 4 * 4096;
  file << std::string(rest, '\x5a');
  file.close();
  Cache.Open(Scratch.File("vellumar.thumbs"), Catalog.GetDBGUID());
  ASSERT_FALSE(std::filesystem::exists(Scratch.File("vellumar.thumbs.damaged[1]"))) << "not seen at opening";
  for (int i = 0; i < 100; ++i) AddPhoto("new " + std::to_string(i) + ".jpg");

  EXPECT_TRUE(Search.SearchFolder(Pictures(), true));
  EXPECT_EQ(140, Catalog.GetAssets().GetSize());
  EXPECT_TRUE(std::filesystem::exists(Scratch.File("vellumar.thumbs.damaged[1]")));
  for (int id = 1; id <= 140; ++id) EXPECT_NE(nullptr, Catalog.FindAssetById(id).LoadThumbnail()) << id;
  EXPECT_TRUE(Messages.Texts.empty());
}

TEST_F(FolderSearchTest, AStartOnAFullDiskGoesOnAndTellsWhy) {
  const std::string path = AddPhoto("a.jpg");
  Search.SearchFolder(Pictures(), true);
  std::filesystem::remove(path);
  AddPhoto("b.jpg");
  {
    const CFileSizeLimit full(0);
    CScriptedProgress progress;
    Search.Progress = &progress;
    Search.UpdateMissingFlags();
    EXPECT_EQ(Pictures(), Search.FirstSearch());
    EXPECT_FALSE(Search.SearchFolder(Pictures(), false)) << "not again unless it is asked for";
    Search.Progress = nullptr;
  }
  EXPECT_EQ(1U, Messages.Texts.size());
  EXPECT_EQ(MissingState::InPlace, Catalog.FindAssetByPath(path).GetMissing());
  EXPECT_TRUE(Catalog.GetAutoCommit());
  Search.UpdateMissingFlags();
  EXPECT_EQ(MissingState::Gone, Catalog.FindAssetByPath(path).GetMissing());
}

TEST_F(FolderSearchTest, ARemovableDiskWithPhotosIsSearchedAlone) {
  AddPhoto("home.jpg");
  const std::string onDisk = GetActiveDiskPhotoFolder();
  const bool wasThere = std::filesystem::exists(onDisk);
  std::filesystem::create_directories(onDisk);
  Search.ActiveDisk = true;
  EXPECT_EQ(Pictures(), Search.FirstSearch()) << "without photos on it the normal rule holds";
  EXPECT_EQ(1, Catalog.GetAssets().GetSize());
  Restart();
  AddPhoto("home2.jpg");
  const std::string photo = onDisk + "/vellumar test.jpg";
  std::ofstream(photo, std::ios::binary) << MakeJpeg(8, 8, 1, 2, 3);
  Search.ActiveDisk = true;
  EXPECT_EQ(onDisk, Search.FirstSearch());
  EXPECT_EQ(2, Catalog.GetAssets().GetSize());
  std::filesystem::remove(photo);
  if (!wasThere) std::filesystem::remove(onDisk);
}

TEST_F(FolderSearchTest, EachFolderOfTheListMakesARollOfItsOwn) {
  AddPhoto("a.jpg");
  Scratch.Write("Elsewhere/b.jpg", "x");
  Search.GetHistory().Add(Scratch.GetPath() + "/Elsewhere");
  EXPECT_TRUE(Search.SearchAllFolders(true));
  EXPECT_EQ(0, Catalog.FindAssetByPath(Scratch.GetPath() + "/Elsewhere/b.jpg").GetRollID());
  EXPECT_EQ(1, Catalog.FindAssetByPath(Pictures() + "/a.jpg").GetRollID());
  EXPECT_EQ(1, Catalog.GetCurrentRollID());
}

TEST_F(FolderSearchTest, TheFirstSearchOpensOnTheFolderLastLookedAt) {
  AddPhoto("a.jpg");
  Scratch.Write("Elsewhere/b.jpg", MakeJpeg(8, 8, 1, 2, 3));
  const std::string elsewhere = Scratch.GetPath() + "/Elsewhere";
  EXPECT_EQ(Pictures(), Search.FirstSearch());
  EXPECT_EQ(1, Catalog.GetAssets().GetSize());

  Restart();
  Search.GetHistory().Add(elsewhere);
  Catalog.SetCurrentPhotoFolder(elsewhere);
  EXPECT_EQ(elsewhere, Search.FirstSearch());
  EXPECT_EQ(2, Catalog.GetAssets().GetSize());

  Restart();
  std::filesystem::rename(elsewhere, Scratch.GetPath() + "/ELSEwhere");
  EXPECT_EQ(Scratch.GetPath() + "/ELSEwhere", Search.FirstSearch()) << "renamed to another case";
  EXPECT_EQ(Scratch.GetPath() + "/ELSEwhere", Search.GetHistory().Get(0));
  EXPECT_EQ(2, Catalog.GetAssets().GetSize());

  Restart();
  std::filesystem::rename(Scratch.GetPath() + "/ELSEwhere", Scratch.GetPath() + "/Moved");
  EXPECT_EQ(Pictures(), Search.FirstSearch()) << "a folder that is gone gives way";

  Restart();
  Catalog.SetCurrentPhotoFolder("");
  AddPhoto("c.jpg");
  EXPECT_EQ("", Search.FirstSearch());
  EXPECT_EQ(3, Catalog.GetAssets().GetSize());
}

TEST_F(FolderSearchTest, FoldersBelowThePhotoRootHaveShortNames) {
  EXPECT_EQ("Pictures", Search.GetFolderLabel(Pictures() + "/"));
  EXPECT_EQ("2002/Lakes", Search.GetFolderLabel(Pictures() + "/2002/Lakes/"));
  EXPECT_EQ(Pictures() + "2", Search.GetFolderLabel(Pictures() + "2"));
  EXPECT_EQ("/elsewhere", Search.GetFolderLabel("/elsewhere/"));
  Search.ActiveDisk = true;
  EXPECT_EQ("Active Disk Photos", Search.GetFolderLabel(GetActiveDiskPhotoFolder()));
  EXPECT_EQ(Pictures(), Search.GetFolderLabel(Pictures()));
  EXPECT_TRUE(IsDiskRoot("/"));
  EXPECT_FALSE(IsDiskRoot(Pictures()));
}

}  // namespace
