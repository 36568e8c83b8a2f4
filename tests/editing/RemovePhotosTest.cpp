#include "base/Exceptions.h"
#include "editing/EditingFixture.h"
#include "editing/RemovePhotos.h"
#include "support/FaultyVfs.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

namespace {

namespace fs = std::filesystem;

class RemovePhotosTest : public CEditingFixture {
 protected:
  RemovePhotosTest() { Toss(Photo); }

  std::int32_t Toss(CAssetRecord photo) {
    photo.SetFlag(PhotoFlag::Tossed, true);
    photo.GetStamps(StampId::Thing).Add("boats");
    Cache.StoreBytes(photo.GetAssetID(), std::vector<std::uint8_t>(100, 'x'));
    Ids.push_back(photo.GetAssetID());
    return Ids.back();
  }
  std::int32_t TossFile(const std::string& name) {
    return Toss(AddRow(Scratch.Write("Pictures/" + name, name)));
  }

  void Reopen() {
    CloseStores();
    OpenStores();
  }

  void Remove() { RemovePhotos(Catalog, Cache, Ids); }

  std::vector<std::string> NamesInTrash() const {
    std::vector<std::string> names;
    std::error_code missing;
    for (const auto& entry : fs::directory_iterator(Trash + "/files", missing)) {
      names.push_back(entry.path().filename().string());
    }
    std::ranges::sort(names);
    return names;
  }

  /// The photos and their stamps that the catalog's file holds.
  std::string Stored() const {
    return SqlOne("select (select count(*) from Asset) || ' ' || (select count(*) from Stamp)");
  }

  const CEnvironmentVariable Data{"XDG_DATA_HOME", std::nullopt};
  const std::string Trash = Scratch.GetPath() + "/.local/share/Trash";
  std::vector<std::int32_t> Ids;
};

}  // namespace

TEST_F(RemovePhotosTest, FilesAndOriginalsGoToTheTrashAndNothingOfThePhotosStays) {
  Scratch.Write("Pictures/boat.jpg.orig", "the original");
  TossFile("gone.jpg");
  Scratch.Write("Pictures/gone.jpg.orig", "of a missing photo");
  fs::remove(InFolder("gone.jpg"));
  Ids.push_back(Ids.back());
  Toss(AddRow(InFolder("boat.jpg")));  // a second row of one file
  Toss(AddRow(""));
  Toss(AddRow(Pictures() + "/"));
  TossFile("held.jpg");
  Scratch.Write("Pictures/folder.jpg/inside.jpg", "in a folder");
  fs::create_directory(InFolder("folder.jpg.orig"));
  Toss(AddRow(InFolder("folder.jpg")));
  const std::int32_t kept = AddRow(Scratch.Write("Pictures/kept.jpg", "kept")).GetAssetID();
  platform::SetFaultPlan([](std::string_view operation, std::string_view path) {
    const bool refused = operation == "rename" && path.ends_with("files/held.jpg");
    return refused ? make_error_code(std::errc::permission_denied) : std::error_code();
  });
  const int commits = CountCommits();
  Remove();
  EXPECT_EQ(CountCommits(), commits + 1);
  EXPECT_EQ(Stored(), "1 0");
  EXPECT_TRUE(Catalog.FindAssetById(kept).IsValid());
  for (const std::int32_t id : Ids) EXPECT_FALSE(Cache.Has(id));
  EXPECT_THAT(NamesInTrash(), ElementsAre("boat.jpg", "boat.jpg.orig", "gone.jpg.orig"));
  EXPECT_THAT(NamesInFolder(), ElementsAre("folder.jpg", "folder.jpg.orig", "held.jpg", "kept.jpg"));
  EXPECT_EQ(ReadBytes(Trash + "/files/boat.jpg"), Original);
  EXPECT_THAT(ReadBytes(Trash + "/info/boat.jpg.trashinfo"),
              StartsWith("[Trash Info]\nPath=" + InFolder("boat.jpg") + "\n"));
  EXPECT_THAT(Messages.Texts, IsEmpty());
}

TEST_F(RemovePhotosTest, AFileThatAnotherPhotoShowsStays) {
  fs::create_directory_symlink(Pictures(), Scratch.GetPath() + "/Linked");
  const CAssetRecord shown = AddRow(Scratch.GetPath() + "/Linked/boat.jpg");
  Remove();
  EXPECT_EQ(ReadBytes(InFolder("boat.jpg")), Original);
  // Two names of one file are two photos, and so are a photo and one that only has its name.
  fs::create_hard_link(InFolder("boat.jpg"), Scratch.File("other/boat.jpg"));
  AddRow(Scratch.File("other/boat.jpg"));
  AddRow(Scratch.File("third/boat.jpg"));
  Ids.assign(1, shown.GetAssetID());
  Remove();
  EXPECT_THAT(NamesInTrash(), ElementsAre("boat.jpg"));
  EXPECT_EQ(ReadBytes(Scratch.File("other/boat.jpg")), Original);
  EXPECT_EQ(Stored(), "2 0");
}

TEST_F(RemovePhotosTest, ACatalogThatCannotBeWrittenIsNoticedBeforeAFileIsMoved) {
  CFaultyVfs vfs;
  Reopen();
  vfs.SetPlan([](const std::string& step, const std::string&) {
    return step == "write" ? GetFaultOf(step, true) : SQLITE_OK;
  });
  EXPECT_THROW(Remove(), CStorageException);
  vfs.SetPlan({});
  EXPECT_THAT(NamesInFolder(), ElementsAre("boat.jpg"));
  EXPECT_EQ(Stored(), "1 1");
  EXPECT_TRUE(Catalog.FindAssetById(Ids[0]).GetFlag(PhotoFlag::Tossed));
  EXPECT_TRUE(Cache.Has(Ids[0]));
  CloseStores();
}

TEST_F(RemovePhotosTest, AfterAFaultOrAKillAtAnyStepASecondCallDoesTheRest) {
  Remove();
  CFaultyVfs vfs;
  Reopen();
  for (const bool kills : {false, true}) {
    bool isMet = true;
    for (int step = 1; isMet; ++step) {
      fs::remove_all(Trash);
      Ids.clear();
      for (const char* name : {"boat.jpg", "lake.jpg"}) TossFile(name);
      Scratch.Write("Pictures/boat.jpg.orig", "the original");
      const std::string before = Stored();
      EXPECT_EQ(before, "2 2");
      int steps = 0;
      const auto stops = [&] { return ++steps == step && (!kills || ::raise(SIGKILL) != 0); };
      const auto remove = [&] {
        vfs.SetPlan([&](const std::string& operation, const std::string&) {
          return stops() ? GetFaultOf(operation, true) : SQLITE_OK;
        });
        platform::SetFaultPlan([&](std::string_view, std::string_view) {
          return stops() ? make_error_code(std::errc::io_error) : std::error_code();
        });
        try {
          Remove();
        } catch (const CStorageException&) {
        }
        return 0;
      };
      isMet = kills ? WIFSIGNALED(RunInChild(remove)) : (remove(), steps >= step);
      vfs.SetPlan({});
      platform::SetFaultPlan({});
      if (kills) Reopen();
      const std::string stored = Stored();
      EXPECT_TRUE(stored == before || stored == "0 0") << stored << " at step " << step;
      EXPECT_TRUE(stored == before || !kills || NamesInFolder().empty()) << "step " << step;
      EXPECT_EQ(Catalog.GetAssets().GetSize(), stored == before ? 2 : 0) << "step " << step;
      if (stored == before) Remove();
      EXPECT_EQ(Stored(), "0 0");
      EXPECT_EQ(NamesInFolder().size() + NamesInTrash().size(), 3U) << "step " << step;
      fs::remove_all(Pictures());
    }
  }
  CloseStores();
}
