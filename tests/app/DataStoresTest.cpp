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
    RunSql(path, "update Singletons set DBVersion = " + std::to_string(version));
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

TEST_F(DataStores, OlderCatalogIsBackedUpUnderTheFirstFreeNumber) {
  EXPECT_TRUE(Open());
  const std::string first = Guid;
  EXPECT_TRUE(Open());
  EXPECT_EQ(Guid, first);
  EXPECT_FALSE(FileExists(CatalogPath() + ".old[1]", false)) << "a catalog of this version needs no backup";
  RunSql(CatalogPath(), "update Singletons set DBVersion = 9");
  std::ofstream(CatalogPath() + ".old[1]") << "an earlier backup";
  EXPECT_TRUE(Open());
  EXPECT_EQ(ReadBytes(CatalogPath() + ".old[1]"), "an earlier backup");
  EXPECT_EQ(ReadNumber(CatalogPath() + ".old[2]", "select DBVersion from Singletons"), 9);
  EXPECT_EQ(ReadNumber(CatalogPath(), "select DBVersion from Singletons"), 10);
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
  const auto expectRefused = [&] {
    ExpectRefused(old);
    EXPECT_TRUE(std::filesystem::is_empty(DataFolder()));
  };
  for (const std::string& bytes : {whole.substr(0, whole.size() / 2), std::string("no catalog"), whole}) {
    std::ofstream(old, std::ios::binary) << bytes;
    std::optional<CFileSizeLimit> full;
    if (bytes == whole) full.emplace(4096);
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
  MakeCatalog(path, 10);
  const std::string whole = ReadBytes(path);
  for (const std::string& bytes : {std::string(200, 'x'), std::string(), whole.substr(0, whole.size() / 2)}) {
    std::ofstream(path, std::ios::binary) << bytes;
    ExpectRefused(path);
  }
  std::filesystem::remove(path);
  RunSql(path, "create table Invoices (Number integer, Amount real)");
  ExpectRefused(path);
  std::filesystem::remove(path);
  std::filesystem::create_directory(path);
  EXPECT_THROW(Open(), CError);
}
