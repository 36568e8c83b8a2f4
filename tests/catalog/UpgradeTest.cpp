#include <gmock/gmock.h>
#include <stdlib.h>
#include <time.h>

#include <filesystem>

#include "base/Exceptions.h"
#include "catalog/CatalogFixture.h"
#include "support/FileSizeLimit.h"
#include "support/KilledChild.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// Catalogs of older versions, made as those versions left them, brought up by opening.
class UpgradeTest : public CCatalogFixture {
 protected:
  void SetUp() override {
    ::setenv("TZ", "UTC", 1);
    ::tzset();
    Catalog.Open(Path);  // for the schema; the versions differ in their rows
    Catalog.Close();
  }
  void TearDown() override {
    ::unsetenv("TZ");
    ::tzset();
  }

  void MakeOld(int version, const std::string& statements) {
    Sql("update Singletons set DBVersion = " + std::to_string(version) + ";" + statements);
  }

  std::string GuidInFile() const { return SqlOne("select hex(DBGUID) from Singletons"); }
};

TEST_F(UpgradeTest, AVersion0CatalogGetsIdsCachesPathsAndNewTexts) {
  MakeOld(0,
          "update String set RefCount = 0;"
          "insert into Asset (AssetID, LocationType, Location, ID) values (1, 0, '/p/Lakes/a.jpg', x'');"
          "insert into Asset (AssetID, LocationType, Location, Filename, ID, CachedRating, CachedDate)"
          " values (2, 1, '/p/', 'b.jpg', x'00112233445566778899aabbccddeeff', 2, 0);"
          "insert into Stamp (StampType, SortedString, AssetID, IndexInt) values"
          " (6, '20030809140000', 1, 7), (6, '19990101000000', 1, 7), (1, '00000004', 1, 4),"
          " (7, '20030809140000', 1, 0), (8, 'old', 1, 0), (8, 'old', 2, 0), (1, '00000001', 2, 1);");
  Open();
  EXPECT_THAT(Sql("select AssetID, LocationType, Location, Filename, length(ID), CachedRating, CachedDate"
                  " from Asset order by AssetID"),
              ElementsAre("1|1|/p/Lakes/|a.jpg|16|4|1060437600", "2|1|/p/|b.jpg|16|2|0"));
  EXPECT_THAT(Sql("select * from Stamp where StampType = 8"), IsEmpty());
  EXPECT_EQ("00112233445566778899AABBCCDDEEFF", SqlOne("select hex(ID) from Asset where AssetID = 2"));
  EXPECT_EQ("12", SqlOne("select count(*) from String where RefCount = 1"));
  EXPECT_EQ("10", SqlOne("select DBVersion from Singletons"));
}

TEST_F(UpgradeTest, AVersion0CatalogKeepsTextsThatAreCounted) {
  MakeOld(0, "insert into String values (5, 12, 'Party', 2); update Singletons set NextStringKey = 13;");
  Open();
  EXPECT_EQ("12|2", SqlOne("select Key, RefCount from String where String = 'Party'"));
}

TEST_F(UpgradeTest, AVersion1CatalogTakesItsDatesFromTheFiles) {
  // Written one day before the date that the catalog holds for the file; no camera date.
  const std::string photo = Scratch.Write("a.jpg", std::string(100, 'x'));
  const auto written = std::filesystem::file_time_type::clock::from_sys(
      std::chrono::sys_seconds(std::chrono::seconds(1060351200)));
  std::filesystem::last_write_time(photo, written);
  std::filesystem::last_write_time(Scratch.Write("undated.jpg", "x"), written);
  const std::string folder = Scratch.GetPath() + "/";
  MakeOld(1, "insert into Asset (AssetID, LocationType, Location, Filename) values (1, 1, '" + folder +
                 "', 'a.jpg'), (2, 1, '" + folder + "', 'gone.jpg'), (3, 1, '" + folder +
                 "', 'undated.jpg');"
                 "insert into Stamp (StampType, SortedString, AssetID, IndexInt) values"
                 " (7, '20030809140000', 1, 0), (6, '20010101000000', 1, 0), (8, 'x', 1, 0),"
                 " (7, '20020202020202', 2, 0);");
  Open();
  EXPECT_THAT(Sql("select AssetID, StampType, SortedString, IndexInt from Stamp order by AssetID, StampType"),
              ElementsAre("1|6|20030808140000|7", "1|7|20030808140000|0", "2|6|20020202020202|7",
                          "2|7|20020202020202|0", "3|6|20030808140000|7", "3|7|20030808140000|0"));
  EXPECT_EQ(1060351200, Catalog.FindAssetById(1).GetCachedDate());
}

TEST_F(UpgradeTest, AVersion4CatalogGetsTheUsersDateANewIdentityAndNoDuplicates) {
  const std::string both = Scratch.GetPath() + "/";
  Scratch.Write("Twin.jpg", "");
  Scratch.Write("twin.jpg", "");
  Scratch.Write("lake.jpg", "");
  MakeOld(4,
          "delete from StampStruct where StampType = 11;"
          "insert into Asset (AssetID, LocationType, Location, Filename) values (1, 1, '/p/', 'a.jpg'),"
          " (2, 1, '/p/', 'b.jpg'), (3, 1, '/P/', 'A.JPG'), (4, 1, '/p/', 'a.jpg'),"
          " (5, 1, '" +
              both + "', 'Twin.jpg'), (6, 1, '" + both + "', 'twin.jpg'), (7, 1, '" + both +
              "', 'Lake.jpg'), (8, 1, '" + both +
              "', 'lake.jpg');"
              "insert into Stamp (StampType, SortedString, AssetID, IndexInt) values (2, 'kept', 4, 0);");
  const std::string before = GuidInFile();
  Open();
  EXPECT_EQ("11|UserDate|1|0|1", SqlOne("select * from StampStruct where StampType = 11"));
  EXPECT_NE(before, GuidInFile());
  EXPECT_THAT(Sql("select AssetID from Asset order by rowid"), ElementsAre("1", "2", "3", "5", "6", "7"))
      << "the first row of a path, or of a former spelling, stays";
  EXPECT_EQ("4", SqlOne("select AssetID from Stamp")) << "stamps of a removed row stay";
}

TEST_F(UpgradeTest, Versions8And9KeepTheirIdentity) {
  const std::string photos =
      "insert into Asset (AssetID, LocationType, Location, Filename)"
      " values (1, 1, '/p/', 'a.jpg'), (2, 1, '/p/', 'a.jpg');";
  for (const auto& [version, photosLeft] : {std::pair{8, "1"}, {9, "2"}}) {
    MakeOld(version, "delete from Asset;" + photos);
    const std::string before = GuidInFile();
    Open();
    EXPECT_EQ(before, GuidInFile());
    EXPECT_EQ(photosLeft, SqlOne("select count(*) from Asset"));
    EXPECT_EQ("10", SqlOne("select DBVersion from Singletons"));
    Cache.Close();
    Catalog.Close();
  }
}

TEST_F(UpgradeTest, ThisVersionAndNewerOnesAreLeftAsTheyAre) {
  for (const int version : {10, 11}) {
    MakeOld(version, "");
    const std::string before = ReadBytes(Path);
    EXPECT_EQ(version, ReadDBVersion(Path));
    CCatalog catalog;
    catalog.Open(Path);
    catalog.Close();
    EXPECT_EQ(before, ReadBytes(Path));
  }
}

TEST_F(UpgradeTest, AVersionThatIsNoIntegerOf32BitsIsNewerThanAny) {
  for (const std::string value : {"'abc'", "8.5", "5000000000", "x'08'", "-5000000000"}) {
    Sql("update Singletons set DBVersion = " + value);
    EXPECT_GT(ReadDBVersion(Path), kCatalogVersion) << value;
  }
  Sql("delete from Singletons");
  EXPECT_EQ(0, ReadDBVersion(Path));
  EXPECT_EQ(0, ReadDBVersion(Scratch.File("none.db")));
}

TEST_F(UpgradeTest, ACatalogBehindALinkStaysThereWithItsRights) {
  MakeOld(9, "");
  const std::string real = Scratch.File("far/real.db");
  std::filesystem::rename(Path, real);
  std::filesystem::create_symlink("far/real.db", Path);
  std::filesystem::create_hard_link(real, Scratch.File("second name.db"));
  std::filesystem::permissions(real, std::filesystem::perms(0640));
  Open();
  EXPECT_TRUE(std::filesystem::is_symlink(Path));
  EXPECT_EQ(std::filesystem::perms(0640), std::filesystem::status(real).permissions());
  EXPECT_EQ(2U, std::filesystem::hard_link_count(real));
  EXPECT_EQ("10", SqlOne("select DBVersion from Singletons"));
}

TEST_F(UpgradeTest, AFullDiskOrAKillLeavesTheOldVersionOrTheNewOne) {
  std::string photos =
      "insert into Asset (AssetID, LocationType, Location, ID) values (0, 0, '/p/0.jpg', x'')";
  std::string stamps =
      "insert into Stamp (StampType, SortedString, AssetID, IndexInt) values (8, 'old', 0, 0)";
  for (int i = 1; i < 300; ++i) {
    const std::string id = std::to_string(i);
    photos += ",(" + id + ", 0, '/p/" + id + ".jpg', x'')";
    stamps += ",(8, 'old', " + id + ", 0)";
  }
  MakeOld(0, photos + ";" + stamps + ";");
  const std::string old = ReadBytes(Path);
  const auto expectOldOrNew = [this] {
    const std::string version = SqlOne("select DBVersion from Singletons");
    const bool isOld = version == "0";
    EXPECT_TRUE(isOld || version == "10");
    EXPECT_EQ(isOld ? "300" : "0", SqlOne("select count(*) from Stamp where StampType = 8"));
    EXPECT_EQ(isOld ? "300" : "0", SqlOne("select count(*) from Asset where LocationType = 0"));
  };
  {
    const CFileSizeLimit full(0);
    CCatalog catalog;
    EXPECT_THROW(catalog.Open(Path), CThrowable);
  }
  EXPECT_EQ(old, ReadBytes(Path));
  for (int kill = 0; kill < 12; ++kill) {
    Scratch.Write("vellumar.db", old);
    RunAndKill(
        [this](const CReport& report) {
          report.Send(0);
          CCatalog().Open(Path);
        },
        std::chrono::milliseconds(4 * kill));
    expectOldOrNew();
    CCatalog().Open(Path);
    EXPECT_EQ("10", SqlOne("select DBVersion from Singletons"));
    expectOldOrNew();
    std::filesystem::remove(Path + "-journal");
  }
}

}  // namespace
