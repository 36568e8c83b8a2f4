#include "base/Exceptions.h"
#include "editing/EditingFixture.h"
#include "editing/RenamePhotoFile.h"
#include "support/FaultyVfs.h"

using testing::ElementsAre;

namespace {

namespace fs = std::filesystem;

class RenamePhotoFileTest : public CEditingFixture {
 protected:
  /// File and row agree on the name, and the photo is whole.
  void ExpectPhotoAt(const std::string& name) const {
    EXPECT_EQ(Photo.GetPath(), InFolder(name));
    EXPECT_EQ(ReadBytes(InFolder(name)), Original);
  }

  std::string IntentPath() const { return Catalog.GetPath() + ".rename"; }

  /// Leaves what a rename from `boat.jpg` has written before it moves the file.
  void WriteIntent(const std::string& text) const { std::ofstream(IntentPath(), std::ios::binary) << text; }
  std::string IntentTo(const std::string& name) const {
    return "1" + ('\0' + InFolder("boat.jpg") + '\0') + InFolder(name) + '\0';
  }

  void Restart() {
    const std::string path = Catalog.GetPath();
    Catalog.Close();
    Catalog.Open(path);
    FinishInterruptedRename(Catalog);
    Photo = Catalog.FindAssetById(1);
    EXPECT_FALSE(fs::exists(IntentPath()));
  }
};

TEST_F(RenamePhotoFileTest, FileAndRowGoTogether) {
  const std::pair<const char*, const char*> names[] = {{"Boat at dusk", "Boat at dusk.jpg"},
                                                       {"Boat at dusk.jpg", "Boat at dusk.jpg"},
                                                       {"Boat.JPEG", "Boat.JPEG"},
                                                       {"boat.jpeg", "boat.jpeg"},
                                                       {"b\xf6ot\n.jpg", "b\xf6ot\n.jpg"}};
  for (const auto& [asked, given] : names) {
    EXPECT_FALSE(RenamePhotoFile(Photo, asked));
    ExpectPhotoAt(given);
    EXPECT_THAT(NamesInFolder(), ElementsAre(given));
  }
  EXPECT_FALSE(fs::exists(IntentPath()));
}

TEST_F(RenamePhotoFileTest, NothingIsOverwrittenAndARefusalChangesNothing) {
  Scratch.Write("photos/taken.jpg", "another photo");
  Scratch.Write("photos/boat.jpg.orig", "the original");
  Scratch.Write("photos/kept.jpg.orig", "the original of another photo");
  for (const char* name : {"taken", "kept"}) EXPECT_EQ(RenamePhotoFile(Photo, name), std::errc::file_exists);
  for (const char* name : {"", "a/b", "..", "../up.jpg"})
    EXPECT_EQ(RenamePhotoFile(Photo, name), std::errc::invalid_argument) << name;
  EXPECT_EQ(RenamePhotoFile(Photo, std::string(300, 'x')), std::errc::filename_too_long);
  EXPECT_EQ(FindFreeName(Photo, std::string(300, 'x'), ".jpg").size(), 250U) << "with room for .orig";

  // A folder that the user can't change.
  for (const char* folder : {"", "/data"}) fs::permissions(Scratch.GetPath() + folder, fs::perms::all);
  fs::permissions(InFolder(""), fs::perms::owner_read | fs::perms::owner_exec | fs::perms::others_exec);
  EXPECT_TRUE(RunAsNobody([&] { return RenamePhotoFile(Photo, "new") == std::errc::permission_denied; }));
  fs::permissions(InFolder(""), fs::perms::owner_all);
  {
    const CFileSizeLimit full(0);
    EXPECT_TRUE(RenamePhotoFile(Photo, "new")) << "no room for the intent";
  }
  {
    const CFileSizeLimit full(300);  // room for the intent, none for the catalog's journal
    EXPECT_THROW(RenamePhotoFile(Photo, "new"), CException);
  }
  ExpectPhotoAt("boat.jpg");
  EXPECT_FALSE(fs::exists(IntentPath()));
  EXPECT_THAT(NamesInFolder(), ElementsAre("boat.jpg", "boat.jpg.orig", "kept.jpg.orig", "taken.jpg"));
}

TEST_F(RenamePhotoFileTest, WhateverStepTheDiskRefusesFileAndRowAgree) {
  CFaultyVfs vfs;
  for (const bool allAfter : {false, true}) {
    bool failed = true;
    for (int step = 1; failed; ++step) {
      Restart();
      int steps = 0;
      const auto fails = [&] { return ++steps == step || (allAfter && steps > step); };
      vfs.SetPlan([&](const std::string& operation, const std::string&) {
        return fails() ? GetFaultOf(operation, false) : SQLITE_OK;
      });
      platform::SetFaultPlan([&](std::string_view, std::string_view) {
        return fails() ? make_error_code(std::errc::io_error) : std::error_code();
      });
      bool renamed = false;
      try {
        renamed = !RenamePhotoFile(Photo, "new");
      } catch (const CException&) {
      }
      vfs.SetPlan({});
      platform::SetFaultPlan({});
      failed = steps >= step;
      EXPECT_TRUE(renamed || failed);
      // After a single fault they agree at once, otherwise after the next start.
      const std::string name = renamed ? "new.jpg" : "boat.jpg";
      if (!allAfter) ExpectPhotoAt(name);
      Restart();
      ExpectPhotoAt(allAfter ? Photo.GetFilename() : name);
      EXPECT_FALSE(RenamePhotoFile(Photo, "boat"));
    }
  }
  Catalog.Close();
}

TEST_F(RenamePhotoFileTest, AKillAtAnyStepIsFinishedOrUndoneAtTheNextStart) {
  const std::string catalogPath = Catalog.GetPath();
  Catalog.Close();
  for (int step = 1, killed = 1; killed; ++step) {
    killed = RunAndKillAtStep(step, [&] {
      Catalog.Open(catalogPath);
      static_cast<void>(RenamePhotoFile(Catalog.FindAssetById(1), "new"));
      ::_exit(0);  // as if killed before the program ends in order
    });
    Catalog.Open(catalogPath);
    Restart();
    ExpectPhotoAt(Photo.GetFilename() == "new.jpg" ? "new.jpg" : "boat.jpg");
    EXPECT_EQ(NamesInFolder().size(), 1U) << "step " << step;
    EXPECT_FALSE(RenamePhotoFile(Photo, "boat"));
    Catalog.Close();
  }
}

TEST_F(RenamePhotoFileTest, AStartBringsTheFileToTheRowOrTheRowToTheFile) {
  WriteIntent(IntentTo("new.jpg"));
  fs::rename(InFolder("boat.jpg"), InFolder("new.jpg"));
  Restart();
  ExpectPhotoAt("boat.jpg");

  WriteIntent(IntentTo("new.jpg"));
  fs::rename(InFolder("boat.jpg"), InFolder("new.jpg"));
  platform::SetFaultPlan([](std::string_view operation, std::string_view) {
    return operation == "rename" ? make_error_code(std::errc::read_only_file_system) : std::error_code();
  });
  {
    const CFileSizeLimit full(0);
    FinishInterruptedRename(Catalog);
  }
  EXPECT_EQ(Messages.Texts.size(), 1U) << "neither can be done";
  EXPECT_TRUE(fs::exists(IntentPath()));
  Restart();
  ExpectPhotoAt("new.jpg");
  platform::SetFaultPlan({});

  // An intent that is older than the last rename moves no file that has come since.
  WriteIntent(IntentTo("new.jpg"));
  Scratch.Write("photos/boat.jpg", "another boat");
  Restart();
  EXPECT_EQ(ReadBytes(InFolder("boat.jpg")), "another boat");
  ExpectPhotoAt("new.jpg");

  // Another photo has come to where the file should be.
  fs::remove(InFolder("boat.jpg"));
  ASSERT_FALSE(RenamePhotoFile(Photo, "boat"));
  fs::remove(InFolder("boat.jpg"));
  WriteIntent(IntentTo("lake.jpg"));
  Catalog.AddAsset(Scratch.Write("photos/lake.jpg", "the lake"));
  Restart();
  EXPECT_EQ(ReadBytes(InFolder("lake.jpg")), "the lake");
}

TEST_F(RenamePhotoFileTest, AnIntentThatTellsNothingIsDropped) {
  using namespace std::string_literals;
  for (const std::string& damaged :
       {""s, "1"s, "1\0a"s, "x\0a\0b\0"s, "1\0a\0b\0c"s, "99\0a\0b\0"s, "1\0\0\0"s}) {
    WriteIntent(damaged);
    Restart();
    ExpectPhotoAt("boat.jpg");
  }
  WriteIntent(IntentTo("new\nname.jpg"));
  fs::rename(InFolder("boat.jpg"), InFolder("new\nname.jpg"));
  Restart();
  ExpectPhotoAt("boat.jpg");
}

}  // namespace
