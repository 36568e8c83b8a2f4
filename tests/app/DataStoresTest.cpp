#include "app/DataStores.h"
#include "app/SessionFixture.h"
#include "base/Exceptions.h"
#include "catalog/Catalog.h"
#include "catalog/ThumbnailCache.h"
#include "support/FileSizeLimit.h"

namespace {

class DataStores : public CSessionFixture {
 protected:
  bool Open() {
    CCatalog catalog;
    CThumbnailCache cache;
    const bool opened = OpenDataStores(catalog, cache);
    if (opened) {
      EXPECT_EQ(catalog.GetDBVersion(), kCatalogVersion);
      Guid = catalog.GetDBGUID().ToString();
    }
    return opened;
  }

  /// Makes a catalog file that says it is of that version.
  void MakeCatalog(const std::string& path, int version) {
    {
      CCatalog catalog;
      catalog.Open(path);
      Guid = catalog.GetDBGUID().ToString();
    }
    Execute(path, "update Singletons set DBVersion = " + std::to_string(version));
  }

  /// Expects that the stores don't open, that the text names the file, and that not a byte of it changes.
  void ExpectRefused(const std::string& path) {
    const std::string before = ReadBytes(path);
    try {
      Open();
      FAIL() << "the file should have been refused";
    } catch (const CError& error) {
      EXPECT_NE(error.GetMessage().find(path), std::string::npos) << error.GetMessage();
    }
    EXPECT_EQ(ReadBytes(path), before);
  }

  std::string Guid;
};

}  // namespace

TEST_F(DataStores, FirstRunMakesBothInTheDataFolderWithoutABackup) {
  EXPECT_TRUE(Open());
  EXPECT_TRUE(FileExists(CatalogPath(), false));
  EXPECT_TRUE(FileExists(CachePath(), false));
  EXPECT_FALSE(FileExists(CatalogPath() + ".old[1]", false));
  const std::string first = Guid;
  EXPECT_TRUE(Open());
  EXPECT_EQ(Guid, first);
  EXPECT_FALSE(FileExists(CatalogPath() + ".old[1]", false));
}

TEST_F(DataStores, OlderCatalogIsBackedUpUnderTheFirstFreeNumber) {
  MakeCatalog(CatalogPath(), 9);
  Scratch.Write("taken", "an earlier backup");
  std::filesystem::rename(Scratch.File("taken"), CatalogPath() + ".old[1]");
  EXPECT_TRUE(Open());
  EXPECT_EQ(ReadBytes(CatalogPath() + ".old[1]"), "an earlier backup");
  EXPECT_EQ(ReadNumber(CatalogPath() + ".old[2]", "select DBVersion from Singletons"), 9);
  EXPECT_EQ(ReadNumber(CatalogPath(), "select DBVersion from Singletons"), 10);
}

TEST_F(DataStores, NewerCatalogIsLeftAlone) {
  MakeCatalog(CatalogPath(), 11);
  const std::string before = ReadBytes(CatalogPath());
  EXPECT_FALSE(Open());
  EXPECT_EQ(ReadBytes(CatalogPath()), before);
  EXPECT_FALSE(FileExists(CatalogPath() + ".old[1]", false));
  EXPECT_FALSE(FileExists(CachePath(), false));
  ASSERT_EQ(Messages.Shown.size(), 1U);
  EXPECT_EQ(
      Messages.Shown[0].Text,
      "This is an older version of Vellumar Photo Organizer that cannot read your photo information.\n\n"
      "Please upgrade to the latest version.");
  EXPECT_EQ(Messages.Shown[0].Parent, MessageParent::ProgressWindow);
}

TEST_F(DataStores, FilesMoveFromThePicturesFolder) {
  MakeCatalog(PicturesFolder() + "/vellumar.db", 10);
  const std::string moved = Guid;
  EXPECT_TRUE(Open());
  EXPECT_EQ(Guid, moved);
  EXPECT_FALSE(FileExists(PicturesFolder() + "/vellumar.db", false));

  MakeCatalog(PicturesFolder() + "/vellumar.db", 10);
  EXPECT_TRUE(Open());
  EXPECT_EQ(Guid, moved) << "the one in the data folder wins";
  EXPECT_TRUE(FileExists(PicturesFolder() + "/vellumar.db", false));
}

TEST_F(DataStores, OldCatalogThatCannotBeBroughtIsNamedAndNoneIsMadeInItsPlace) {
  const std::string old = PicturesFolder() + "/vellumar.db";
  MakeCatalog(old, 10);
  const std::string guid = Guid;
  const std::string whole = ReadBytes(old);
  const auto put = [&](const std::string& bytes) { std::ofstream(old, std::ios::binary) << bytes; };
  const auto expectRefused = [&] {
    ExpectRefused(old);
    EXPECT_TRUE(std::filesystem::is_empty(DataFolder()));
  };
  put(whole.substr(0, whole.size() / 2));
  expectRefused();
  put("no catalog");
  expectRefused();
  put(whole);
  {
    const CFileSizeLimit full(4096);
    expectRefused();
  }
  const std::string real = Scratch.File("far/real.db");
  std::filesystem::rename(old, real);
  std::filesystem::create_symlink("../away/real.db", old);
  expectRefused();
  std::filesystem::rename(Scratch.GetPath() + "/far", Scratch.GetPath() + "/away");

  EXPECT_TRUE(Open());
  EXPECT_EQ(Guid, guid);
  EXPECT_FALSE(std::filesystem::is_symlink(old));
  EXPECT_EQ(std::filesystem::canonical(CatalogPath()), Scratch.GetPath() + "/away/real.db");
  EXPECT_TRUE(Open());
}

TEST_F(DataStores, WhatIsNoCatalogIsRefusedAndKept) {
  const std::string path = CatalogPath();
  const auto put = [&](const std::string& bytes) { std::ofstream(path, std::ios::binary) << bytes; };
  put("This is a letter to my aunt, not a catalog. It is longer than the header of a database is.");
  ExpectRefused(path);
  put("");
  ExpectRefused(path);

  MakeCatalog(Scratch.GetPath() + "/whole.db", 10);
  const std::string whole = ReadBytes(Scratch.GetPath() + "/whole.db");
  put(whole.substr(0, whole.size() / 2));
  ExpectRefused(path);

  std::filesystem::remove(path);
  Execute(path, "create table Invoices (Number integer, Amount real)");
  ExpectRefused(path);
}

TEST_F(DataStores, AFolderInPlaceOfTheCatalogIsRefused) {
  std::filesystem::create_directory(CatalogPath());
  EXPECT_THROW(Open(), CError);
  EXPECT_TRUE(std::filesystem::is_directory(CatalogPath()));
}

TEST_F(DataStores, DamagedThumbnailsAreSetAsideAndRemade) {
  ASSERT_TRUE(Open());
  std::ofstream(CachePath(), std::ios::binary) << "no thumbnails, whatever the name says";
  EXPECT_TRUE(Open());
  EXPECT_EQ(ReadNumber(CachePath(), "select count(*) from Cache"), 0);
}
