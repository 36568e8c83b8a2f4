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

  /// Leaves what a rename from `boat.jpg` has written before it moves the file.
  void WriteIntent(const std::string& text) const { std::ofstream(IntentPath, std::ios::binary) << text; }
  std::string IntentTo(const std::string& name) const {
    return "1" + ('\0' + InFolder("boat.jpg") + '\0') + InFolder(name) + '\0';
  }

  void Restart() {
    Catalog.Close();
    Catalog.Open(CatalogPath);
    FinishInterruptedRename(Catalog);
    Photo = Catalog.FindAssetById(1);
    EXPECT_FALSE(fs::exists(IntentPath));
  }

  const std::string IntentPath = CatalogPath + ".rename";
};

TEST_F(RenamePhotoFileTest, FileAndRowGoTogetherAndNothingIsOverwritten) {
  for (const char* name : {"Boat.JPEG", "boat.jpeg", "boat.jpeg", "b\xf6ot\n.jpg"}) {
    EXPECT_FALSE(RenamePhotoFile(Photo, name));
    ExpectPhotoAt(name);
  }
  EXPECT_FALSE(RenamePhotoFile(Photo, "boat"));
  ExpectPhotoAt("boat.jpg");
  Scratch.Write("Pictures/taken.jpg", "another photo");
  Scratch.Write("Pictures/boat.jpg.orig", "the original");
  Scratch.Write("Pictures/kept.jpg.orig", "the original of another photo");
  for (const char* name : {"taken", "kept"}) EXPECT_EQ(RenamePhotoFile(Photo, name), std::errc::file_exists);
  for (const char* name : {"", "a/b", "..", "../up.jpg"}) {
    EXPECT_EQ(RenamePhotoFile(Photo, name), std::errc::invalid_argument) << name;
  }
  EXPECT_EQ(FindFreeName(Photo, std::string(300, 'x'), ".jpg").size(), 250U) << "with room for .orig";
  {
    const CFileSizeLimit full(0);
    EXPECT_TRUE(RenamePhotoFile(Photo, "new")) << "no room for the intent";
  }
  ExpectPhotoAt("boat.jpg");
  EXPECT_FALSE(fs::exists(IntentPath));
  EXPECT_THAT(NamesInFolder(), ElementsAre("boat.jpg", "boat.jpg.orig", "kept.jpg.orig", "taken.jpg"));
}

TEST_F(RenamePhotoFileTest, WhateverStepFailsOrIsKilledFileAndRowAgree) {
  enum class Fault { Once, FromThereOn, Kill };
  CFaultyVfs vfs;
  for (const Fault fault : {Fault::Once, Fault::FromThereOn, Fault::Kill}) {
    bool failed = true;
    for (int step = 1; failed; ++step) {
      Restart();
      int steps = 0;
      const auto fails = [&] { return ++steps == step || (fault == Fault::FromThereOn && steps > step); };
      const auto stops = [&] { return fails() && (fault != Fault::Kill || ::raise(SIGKILL) != 0); };
      const auto rename = [&] {
        vfs.SetPlan([&](const std::string& operation, const std::string&) {
          return stops() ? GetFaultOf(operation, false) : SQLITE_OK;
        });
        platform::SetFaultPlan([&](std::string_view, std::string_view) {
          return stops() ? make_error_code(std::errc::io_error) : std::error_code();
        });
        try {
          return RenamePhotoFile(Photo, "new") ? 1 : 0;
        } catch (const CException&) {
          return 1;
        }
      };
      const bool renamed = (fault == Fault::Kill ? RunInChild(rename) : rename()) == 0;
      vfs.SetPlan({});
      platform::SetFaultPlan({});
      failed = fault == Fault::Kill ? !renamed : steps >= step;
      // After a single fault they agree at once, otherwise after the next start.
      const std::string name = renamed ? "new.jpg" : "boat.jpg";
      if (fault == Fault::Once) ExpectPhotoAt(name);
      Restart();
      ExpectPhotoAt(fault == Fault::Once ? name : Photo.GetFilename());
      EXPECT_EQ(NamesInFolder().size(), 1U);
      EXPECT_FALSE(RenamePhotoFile(Photo, "boat"));
    }
  }
  Catalog.Close();
}

TEST_F(RenamePhotoFileTest, AStartBringsTheFileToTheRowOrTheRowToTheFile) {
  using namespace std::string_literals;
  for (const auto& damaged : {""s, "1\0a"s, "x\0a\0b\0"s, "1\0a\0b\0c"s, "99\0a\0b\0"s, "1\0\0\0"s}) {
    WriteIntent(damaged);
    Restart();
    ExpectPhotoAt("boat.jpg");
  }
  WriteIntent(IntentTo("new.jpg"));
  fs::rename(InFolder("boat.jpg"), InFolder("new.jpg"));
  platform::SetFaultPlan([](std::string_view operation, std::string_view) {
    return operation == "rename" ? make_error_code(std::errc::io_error) : std::error_code();
  });
  {
    const CFileSizeLimit full(0);
    FinishInterruptedRename(Catalog);
  }
  EXPECT_TRUE(fs::exists(IntentPath) && Messages.Texts.size() == 1) << "neither can be done";
  Restart();
  ExpectPhotoAt("new.jpg");
  platform::SetFaultPlan({});
  // An intent that is older than the last rename moves no file that has come since.
  WriteIntent(IntentTo("new.jpg"));
  Scratch.Write("Pictures/boat.jpg", "another boat");
  Restart();
  EXPECT_EQ(ReadBytes(InFolder("boat.jpg")), "another boat");
  ExpectPhotoAt("new.jpg");
  // Nor the file of another photo that has come to where this one should be.
  fs::remove(InFolder("boat.jpg"));
  ASSERT_FALSE(RenamePhotoFile(Photo, "boat"));
  fs::remove(InFolder("boat.jpg"));
  WriteIntent(IntentTo("lake.jpg"));
  Catalog.AddAsset(Scratch.Write("Pictures/lake.jpg", "the lake"));
  Restart();
  EXPECT_EQ(ReadBytes(InFolder("lake.jpg")), "the lake");
}

}  // namespace
