#include <gmock/gmock.h>

#include "base/Exceptions.h"
#include "catalog/StampList.h"
#include "editing/EditingFixture.h"
#include "editing/RenameIntent.h"
#include "editing/RenamePhotoFile.h"
#include "support/FaultSteps.h"
#include "support/FaultyVfs.h"

using testing::ElementsAre;
using testing::Optional;

namespace {

namespace fs = std::filesystem;

class RenamePhotoFileTest : public CEditingFixture {
 protected:
  /// File and row agree on one of the names, and the photo is whole.
  void ExpectPhotoAt(const std::string& name) const {
    EXPECT_EQ(InFolder(name), Photo.GetPath());
    EXPECT_EQ("the photo", ReadBytes(InFolder(name)));
  }
  bool HasIntent() const { return fs::exists(Catalog.GetPath() + ".rename"); }
};

TEST_F(RenamePhotoFileTest, FileAndRowGoTogether) {
  EXPECT_FALSE(RenamePhotoFile(Photo, "Boat at dusk"));
  ExpectPhotoAt("Boat at dusk.jpg");
  EXPECT_FALSE(RenamePhotoFile(Photo, "Boat at dusk.jpg"));
  EXPECT_FALSE(RenamePhotoFile(Photo, "Boat.JPEG"));
  ExpectPhotoAt("Boat.JPEG");
  EXPECT_FALSE(RenamePhotoFile(Photo, "boat.jpeg")) << "upper and lower case are different names";
  ExpectPhotoAt("boat.jpeg");
  EXPECT_FALSE(RenamePhotoFile(Photo, "b\xf6ot\n.jpg"));
  ExpectPhotoAt("b\xf6ot\n.jpg");
  EXPECT_EQ(1U, NamesInFolder().size());
  EXPECT_FALSE(HasIntent());
}

TEST_F(RenamePhotoFileTest, NothingIsOverwrittenAndARefusalChangesNothing) {
  Scratch.Write("photos/taken.jpg", "another photo");
  Scratch.Write("photos/boat.jpg.orig", "the original");
  Scratch.Write("photos/kept.jpg.orig", "the original of another photo");
  EXPECT_EQ(std::errc::file_exists, RenamePhotoFile(Photo, "taken"));
  EXPECT_EQ(std::errc::file_exists, RenamePhotoFile(Photo, "kept"));
  for (const char* name : {"", "a/b", "..", "../up.jpg"}) {
    EXPECT_EQ(std::errc::invalid_argument, RenamePhotoFile(Photo, name)) << name;
  }
  EXPECT_EQ(std::errc::filename_too_long, RenamePhotoFile(Photo, std::string(300, 'x')));
  ExpectPhotoAt("boat.jpg");
  EXPECT_EQ("another photo", ReadBytes(InFolder("taken.jpg")));

  // A folder that the user can't change.
  fs::permissions(Scratch.GetPath(), fs::perms::all);
  fs::permissions(Scratch.GetPath() + "/data", fs::perms::all);
  fs::permissions(InFolder(""), fs::perms::owner_read | fs::perms::owner_exec | fs::perms::others_exec);
  EXPECT_TRUE(RunAsNobody([&] { return RenamePhotoFile(Photo, "new") == std::errc::permission_denied; }));
  fs::permissions(InFolder(""), fs::perms::owner_all);
  ExpectPhotoAt("boat.jpg");
  EXPECT_FALSE(RenamePhotoFile(Photo, "new"));
  EXPECT_THAT(NamesInFolder(), ElementsAre("boat.jpg.orig", "kept.jpg.orig", "new.jpg", "taken.jpg"));
}

TEST_F(RenamePhotoFileTest, AFullDiskLeavesFileAndRowAsTheyWere) {
  {
    const CFileSizeLimit full(0);
    EXPECT_TRUE(RenamePhotoFile(Photo, "new")) << "no room to say what is about to happen";
  }
  ExpectPhotoAt("boat.jpg");
  {
    const CFileSizeLimit full(300);  // room for the intent, none for the catalog's journal
    EXPECT_THROW(RenamePhotoFile(Photo, "new"), CException);
  }
  ExpectPhotoAt("boat.jpg");
  EXPECT_FALSE(HasIntent());
}

TEST_F(RenamePhotoFileTest, WhateverStepTheDiskRefusesFileAndRowAgree) {
  const std::string catalogPath = Catalog.GetPath();
  CFaultyVfs vfs;
  const auto restart = [&] {
    Catalog.Close();
    Catalog.Open(catalogPath);
    FinishInterruptedRename(Catalog);
    Photo = Catalog.FindAssetById(1);
  };
  for (const bool allAfter : {false, true}) {
    bool failed = true;
    for (int step = 1; failed; ++step) {
      restart();
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
      // A fault that goes is made good at once, one that stays by the next start.
      if (!allAfter) ExpectPhotoAt(renamed ? "new.jpg" : "boat.jpg");
      restart();
      if (!allAfter) ExpectPhotoAt(renamed ? "new.jpg" : "boat.jpg");
      ExpectPhotoAt(Photo.GetFilename());
      EXPECT_FALSE(HasIntent());
      EXPECT_FALSE(RenamePhotoFile(Photo, "boat"));
    }
  }
  Catalog.Close();
}

TEST_F(RenamePhotoFileTest, AKillAtAnyStepIsFinishedOrUndoneAtTheNextStart) {
  Photo.GetStamps(StampId::Rating).SetNumber(4, 0);
  const std::string catalogPath = Catalog.GetPath();
  Catalog.Close();
  for (int step = 1, killed = 1; killed; ++step) {
    killed = RunAndKillAtStep(step, [&] {
      CCatalog catalog;
      catalog.Open(catalogPath);
      static_cast<void>(RenamePhotoFile(catalog.FindAssetById(1), "new"));
      ::_exit(0);  // as if killed before the program ends in order
    });

    CCatalog catalog;
    catalog.Open(catalogPath);
    FinishInterruptedRename(catalog);
    Photo = catalog.FindAssetById(1);
    EXPECT_TRUE(Photo.GetPath() == InFolder("boat.jpg") || Photo.GetPath() == InFolder("new.jpg"));
    EXPECT_EQ("the photo", ReadBytes(Photo.GetPath())) << "step " << step;
    EXPECT_EQ(4, Photo.GetCachedRating());
    EXPECT_EQ(1U, NamesInFolder().size());
    EXPECT_FALSE(HasIntent());
    fs::rename(Photo.GetPath(), InFolder("boat.jpg"));
    Photo.SetPath(InFolder("boat.jpg"));
  }
}

TEST_F(RenamePhotoFileTest, AStartBringsTheFileToTheRowOrTheRowToTheFile) {
  const CRenameIntent intent(Catalog);
  const auto interrupt = [&] {
    ASSERT_FALSE(intent.Write({1, InFolder("boat.jpg"), InFolder("new.jpg")}));
    fs::rename(InFolder("boat.jpg"), InFolder("new.jpg"));
  };
  interrupt();
  FinishInterruptedRename(Catalog);
  ExpectPhotoAt("boat.jpg");
  EXPECT_FALSE(HasIntent());

  interrupt();
  platform::SetFaultPlan([](std::string_view operation, std::string_view) {
    return operation == "rename" ? make_error_code(std::errc::read_only_file_system) : std::error_code();
  });
  {
    const CFileSizeLimit full(0);
    FinishInterruptedRename(Catalog);
  }
  EXPECT_EQ(1U, Messages.Texts.size()) << "neither can be done";
  EXPECT_TRUE(HasIntent());
  FinishInterruptedRename(Catalog);
  ExpectPhotoAt("new.jpg");
  EXPECT_FALSE(HasIntent());

  // An intent that outlived its rename moves no other file that has come since.
  platform::SetFaultPlan({});
  ASSERT_FALSE(intent.Write({1, InFolder("boat.jpg"), InFolder("new.jpg")}));
  fs::rename(InFolder("new.jpg"), InFolder("kept.jpg"));
  Scratch.Write("photos/boat.jpg", "another boat");
  FinishInterruptedRename(Catalog);
  EXPECT_EQ("another boat", ReadBytes(InFolder("boat.jpg")));
  fs::remove(InFolder("boat.jpg"));
  fs::rename(InFolder("kept.jpg"), InFolder("new.jpg"));

  // Another photo has come to where the file should be.
  ASSERT_FALSE(intent.Write({1, InFolder("new.jpg"), InFolder("lake.jpg")}));
  fs::remove(InFolder("new.jpg"));
  Catalog.AddAsset(Scratch.Write("photos/lake.jpg", "the lake"));
  FinishInterruptedRename(Catalog);
  EXPECT_EQ("the lake", ReadBytes(InFolder("lake.jpg")));
}

TEST_F(RenamePhotoFileTest, AnIntentThatTellsNothingIsDropped) {
  const std::string file = Catalog.GetPath() + ".rename";
  const auto write = [&file](const std::string& bytes) { std::ofstream(file, std::ios::binary) << bytes; };
  using namespace std::string_literals;
  for (const std::string& damaged :
       {""s, "1"s, "1\0a"s, "x\0a\0b\0"s, "1\0a\0b\0c"s, "99\0a\0b\0"s, "1\0\0\0"s}) {
    write(damaged);
    FinishInterruptedRename(Catalog);
    EXPECT_FALSE(fs::exists(file));
    ExpectPhotoAt("boat.jpg");
  }
  const PhotoRename rename{1, InFolder("boat.jpg"), InFolder("new\nname.jpg")};
  const CRenameIntent intent(Catalog);
  EXPECT_FALSE(intent.Write(rename));
  EXPECT_THAT(intent.Read(), Optional(rename));
}

}  // namespace
