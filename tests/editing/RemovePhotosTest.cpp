#include "base/Exceptions.h"
#include "editing/EditingFixture.h"
#include "editing/RemovePhotos.h"
#include "support/FaultyVfs.h"

using testing::ElementsAre;
using testing::StartsWith;

namespace {

namespace fs = std::filesystem;

class RemovePhotosTest : public CEditingFixture {
 protected:
  RemovePhotosTest() { Toss(Photo); }

  void Toss(CAssetRecord photo) {
    photo.SetFlag(PhotoFlag::Tossed, true);
    photo.GetStamps(StampId::Thing).Add("boats");
    Cache.StoreBytes(photo.GetAssetID(), std::vector<std::uint8_t>(100, 'x'));
    Ids.push_back(photo.GetAssetID());
  }
  void TossFile(const std::string& name) { Toss(AddRow(Scratch.Write("Pictures/" + name, name))); }

  void Remove() { RemovePhotos(Catalog, Cache, Ids); }
  void Reopen() {
    CloseStores();
    OpenStores();
  }

  std::vector<std::string> NamesInTrash() const { return NamesIn(Trash + "/files"); }

  /// How many photos and stamps the catalog's file holds.
  std::string Stored() const {
    return SqlOne("select (select count(*) from Asset) || ' ' || (select count(*) from Stamp)");
  }

  const CEnvironmentVariable Data{"XDG_DATA_HOME", std::nullopt};
  const std::string Trash = Scratch.GetPath() + "/.local/share/Trash";
  std::vector<std::int32_t> Ids;
};

}  // namespace

TEST_F(RemovePhotosTest, FilesAndOriginalsGoToTheTrashAndNothingOfThePhotosStays) {
  for (const char* name :
       {"boat.jpg.orig", "gone.jpg.orig", "folder.jpg/inside.jpg", "folder.jpg.orig/inside"}) {
    Scratch.Write("Pictures/" + std::string(name), name);
  }
  // A missing file, a second row of one file, rows without a file, a folder.
  for (const char* name : {"gone.jpg", "boat.jpg", "", "folder.jpg"}) Toss(AddRow(InFolder(name)));
  Toss(AddRow(""));
  Ids.push_back(Ids.back());
  TossFile("held.jpg");
  AddRow(Scratch.Write("Pictures/kept.jpg", "kept"));
  platform::SetFaultPlan([](std::string_view operation, std::string_view path) {
    const bool refused = operation == "rename" && path.ends_with("files/held.jpg");
    return refused ? make_error_code(std::errc::permission_denied) : std::error_code();
  });
  const int commits = CountCommits();
  Remove();
  EXPECT_EQ(CountCommits(), commits + 1);
  EXPECT_EQ(Stored(), "1 0");
  for (const std::int32_t id : Ids) EXPECT_FALSE(Cache.Has(id));
  EXPECT_THAT(NamesInTrash(), ElementsAre("boat.jpg", "boat.jpg.orig", "gone.jpg.orig"));
  EXPECT_THAT(NamesInFolder(), ElementsAre("folder.jpg", "folder.jpg.orig", "held.jpg", "kept.jpg"));
  EXPECT_EQ(ReadBytes(Trash + "/files/boat.jpg"), Original);
  EXPECT_THAT(ReadBytes(Trash + "/info/boat.jpg.trashinfo"),
              StartsWith("[Trash Info]\nPath=" + InFolder("boat.jpg") + "\n"));
}

TEST_F(RemovePhotosTest, AFileThatAnotherPhotoShowsStays) {
  fs::create_directory_symlink(Pictures(), Scratch.GetPath() + "/Linked");
  const CAssetRecord shown = AddRow(Scratch.GetPath() + "/Linked/boat.jpg");
  Remove();
  EXPECT_EQ(ReadBytes(InFolder("boat.jpg")), Original);
  // Two names of one file are two photos.
  fs::create_hard_link(InFolder("boat.jpg"), Scratch.File("other/boat.jpg"));
  AddRow(Scratch.File("other/boat.jpg"));
  Ids.assign(1, shown.GetAssetID());
  Remove();
  EXPECT_THAT(NamesInTrash(), ElementsAre("boat.jpg"));
  EXPECT_EQ(ReadBytes(Scratch.File("other/boat.jpg")), Original);
}

TEST_F(RemovePhotosTest, AStopLeavesTheRestAsItWas) {
  TossFile("lake.jpg");
  RemovePhotos(Catalog, Cache, Ids, [](std::size_t done) { return done < 1; });
  EXPECT_EQ(Stored(), "1 1");
  EXPECT_THAT(NamesInTrash(), ElementsAre("boat.jpg"));
  EXPECT_TRUE(!Cache.Has(Ids[0]) && Cache.Has(Ids[1]));
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
      Scratch.Write("Pictures/boat.jpg.orig", "boat.jpg.orig");
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
      const bool stays = Stored() == "2 2";
      EXPECT_TRUE(stays || Stored() == "0 0") << "step " << step;
      EXPECT_EQ(Catalog.GetAssets().GetSize(), stays ? 2 : 0) << "step " << step;
      EXPECT_TRUE(step > 1 || NamesInFolder().size() == 3)
          << "no file moves before the catalog can be written";
      EXPECT_TRUE(!kills || stays || NamesInTrash().size() == 3) << "no row goes before its file";
      EXPECT_TRUE(kills || NamesIn(Trash + "/info").size() == NamesInTrash().size()) << "step " << step;
      for (const std::string& name : NamesInTrash()) {
        EXPECT_EQ(ReadBytes(Trash + "/files/" + name), name) << "step " << step;
        EXPECT_TRUE(ReadBytes(Trash + "/info/" + name + ".trashinfo").ends_with("\n")) << "step " << step;
      }
      if (stays) Remove();
      EXPECT_EQ(Stored(), "0 0");
      EXPECT_EQ(NamesInFolder().size() + NamesInTrash().size(), 3U) << "step " << step;
      fs::remove_all(Pictures());
    }
  }
  CloseStores();
}
