#include "app/DataStores.h"
#include "app/SessionFixture.h"
#include "base/Exceptions.h"
#include "catalog/Catalog.h"
#include "catalog/ThumbnailCache.h"
#include "support/FaultSteps.h"

namespace {

class DataStores : public CSessionFixture {
 protected:
  /// Returns the identity of the catalog that is opened.
  static std::string Open() {
    CCatalog catalog;
    CThumbnailCache cache;
    EXPECT_TRUE(OpenDataStores(catalog, cache));
    EXPECT_EQ(catalog.GetDBVersion(), kCatalogVersion);
    return catalog.GetDBGUID().ToString();
  }
  static std::string MakeCatalog(const std::string& path) {
    CCatalog catalog;
    catalog.Open(path);
    return catalog.GetDBGUID().ToString();
  }

  /// Expects that the stores don't open, that the text names the file, and that not a byte of it changes.
  static void ExpectRefused(const std::string& path) {
    const std::string before = ReadBytes(path);
    try {
      Open();
      FAIL() << "the file should have been refused";
    } catch (const CError& error) {
      EXPECT_NE(error.GetMessage().find(path), std::string::npos) << error.GetMessage();
    }
    EXPECT_EQ(ReadBytes(path), before);
  }
};

}  // namespace

TEST_F(DataStores, OlderCatalogIsBackedUpAndWhatIsNoCatalogIsRefused) {
  const std::string path = CatalogPath();
  const std::string guid = MakeCatalog(path);
  EXPECT_EQ(Open(), guid);
  EXPECT_FALSE(FileExists(path + ".old[1]", false)) << "a catalog of this version needs no backup";
  RunSql(path, "update Singletons set DBVersion = 9");
  Open();
  EXPECT_EQ(RunSqlForOne(path + ".old[1]", "select DBVersion from Singletons"), "9");

  const std::string whole = ReadBytes(path);
  for (const std::string& bytes : {std::string(200, 'x'), std::string(), whole.substr(0, whole.size() / 2)}) {
    std::ofstream(path, std::ios::binary) << bytes;
    ExpectRefused(path);
  }
}

TEST_F(DataStores, OldCatalogIsMovedOrElseNamedAndNoneIsMadeInItsPlace) {
  const std::string old = PicturesFolder() + "/vellumar.db";
  const std::string linked = MakeCatalog(old);
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
  std::filesystem::rename(old, Scratch.File("far/real.db"));
  std::filesystem::create_symlink("../away/real.db", old);
  expectRefused();
  std::filesystem::rename(Scratch.GetPath() + "/far", Scratch.GetPath() + "/away");

  EXPECT_EQ(Open(), linked);
  EXPECT_FALSE(std::filesystem::is_symlink(old));
  EXPECT_EQ(std::filesystem::canonical(CatalogPath()), Scratch.GetPath() + "/away/real.db");
  std::filesystem::remove(CatalogPath());
  const std::string moved = MakeCatalog(old);
  EXPECT_EQ(Open(), moved);
  EXPECT_FALSE(FileExists(old, false));
  MakeCatalog(old);
  EXPECT_EQ(Open(), moved) << "the one in the data folder wins";
  EXPECT_TRUE(FileExists(old, false));
}
