#include <gmock/gmock.h>

#include <set>

#include "base/Exceptions.h"
#include "support/CatalogFixture.h"
#include "support/FileSizeLimit.h"
#include "support/KilledChild.h"
#include "support/TestJpeg.h"

using testing::ElementsAre;

namespace {

constexpr std::int32_t kWritten = 1044367200;  // 2003-02-04 15:00:00 in Berlin

/// Catalogs of older versions, made as those versions left them, brought up by opening.
class UpgradeTest : public CCatalogFixture {
 protected:
  UpgradeTest() { CloseStores(); }  // the versions differ in their rows alone

  void MakeOld(int version, const std::string& statements) const {
    Sql("update Singletons set DBVersion = " + std::to_string(version) + ";" + statements);
  }

  std::string VersionInFile() const { return SqlOne("select DBVersion from Singletons"); }
  std::string GuidInFile() const { return SqlOne("select hex(DBGUID) from Singletons"); }
};

TEST_F(UpgradeTest, AVersion0CatalogGetsIdsCachesPathsAndNewTexts) {
  MakeOld(0, R"(update String set RefCount = 0;
      insert into Asset (AssetID, LocationType, Location, Filename, ID, CachedRating, CachedDate) values
      (1, 0, '/p/Lakes/a.jpg', '', x'', 0, 0),
      (2, 1, '/p/', 'b.jpg', x'00112233445566778899aabbccddeeff', 2, 0);
      insert into Stamp (StampType, SortedString, AssetID, IndexInt) values
      (6, '20030204150000', 1, 7), (6, '19990101000000', 1, 7), (1, '00000004', 1, 4),
      (7, '20030204150000', 1, 0), (8, 'old', 1, 0), (8, 'old', 2, 0), (1, '00000001', 2, 1);)");
  OpenStores();
  EXPECT_THAT(Sql("select AssetID, LocationType, Location, Filename, CachedRating, CachedDate from Asset"),
              ElementsAre("1|1|/p/Lakes/|a.jpg|4|1044367200", "2|1|/p/|b.jpg|2|0"));
  EXPECT_EQ(SqlOne("select count(*) from Stamp where StampType = 8"), "0");
  EXPECT_EQ(SqlOne("select length(ID) from Asset where AssetID = 1"), "16");
  EXPECT_EQ(SqlOne("select hex(ID) from Asset where AssetID = 2"), "00112233445566778899AABBCCDDEEFF");
  EXPECT_EQ(SqlOne("select count(*) from String where RefCount = 1"), "12");
  EXPECT_EQ(VersionInFile(), "10");

  CloseStores();
  MakeOld(0, "insert into String values (5, 12, 'Party', 2); update Singletons set NextStringKey = 13;");
  OpenStores();
  EXPECT_EQ(SqlOne("select Key, RefCount from String where String = 'Party'"), "12|2")
      << "counted texts stay";
}

TEST_F(UpgradeTest, AVersion1CatalogTakesItsDatesFromTheFiles) {
  const auto written = std::filesystem::file_time_type::clock::from_sys(
      std::chrono::sys_seconds(std::chrono::seconds(kWritten)));
  Scratch.Write("camera.jpg", MakeJpeg(8, 8, 1, 2, 3, "2002:12:24 18:00:00"));
  for (const char* name : {"older.jpg", "undated.jpg"}) {
    std::filesystem::last_write_time(Scratch.Write(name, "x"), written);
  }
  MakeOld(1, R"(insert into Asset (AssetID, LocationType, Filename) values
      (1, 1, 'older.jpg'), (2, 1, 'gone.jpg'), (3, 1, 'undated.jpg'), (4, 1, 'camera.jpg');
      insert into Stamp (StampType, SortedString, AssetID, IndexInt) values
      (7, '20030205150000', 1, 0), (6, '20010101000000', 1, 0), (8, 'x', 1, 0),
      (7, '20020202020202', 2, 0), (7, '20020202020202', 4, 0);
      update Asset set Location = ')" +
                 Scratch.GetPath() + "/'");
  OpenStores();
  EXPECT_THAT(Sql("select AssetID, StampType, SortedString, IndexInt from Stamp order by AssetID, StampType"),
              ElementsAre("1|6|20030204150000|7", "1|7|20030204150000|0", "2|6|20020202020202|7",
                          "2|7|20020202020202|0", "3|6|20030204150000|7", "3|7|20030204150000|0",
                          "4|6|20021224180000|9", "4|7|20020202020202|0", "4|9|20021224180000|0"));
  EXPECT_EQ(Catalog.FindAssetById(1).GetCachedDate(), kWritten);
}

TEST_F(UpgradeTest, AVersion4CatalogGetsTheUsersDateANewIdentityAndNoDuplicates) {
  for (const char* name : {"Twin.jpg", "twin.jpg", "lake.jpg"}) Scratch.Write(name, "");
  MakeOld(4, R"(delete from StampStruct where StampType = 11;
      insert into Asset (AssetID, LocationType, Location, Filename) values
      (1, 1, '/p/', 'a.jpg'), (2, 1, '/p/', 'b.jpg'), (3, 1, '/P/', 'A.JPG'), (4, 1, '/p/', 'a.jpg'),
      (5, 1, '?', 'Twin.jpg'), (6, 1, '?', 'twin.jpg'), (7, 1, '?', 'Lake.jpg'), (8, 1, '?', 'lake.jpg');
      insert into Stamp (StampType, SortedString, AssetID, IndexInt) values (2, 'kept', 4, 0);
      update Asset set Location = ')" +
                 Scratch.GetPath() + "/' where Location = '?'");
  const std::string before = GuidInFile();
  OpenStores();
  EXPECT_EQ(SqlOne("select * from StampStruct where StampType = 11"), "11|UserDate|1|0|1");
  EXPECT_NE(GuidInFile(), before);
  EXPECT_THAT(Sql("select AssetID from Asset order by rowid"), ElementsAre("1", "2", "3", "5", "6", "7"))
      << "the first row of a path, or of a former spelling, stays";
  EXPECT_EQ(SqlOne("select AssetID from Stamp"), "4") << "stamps of a removed row stay";
}

TEST_F(UpgradeTest, FromVersion8OnTheIdentityStaysAndFromVersion9TheRowsToo) {
  for (const auto& [version, photosLeft] : {std::pair{8, "1"}, {9, "2"}}) {
    MakeOld(version, R"(delete from Asset; insert into Asset (AssetID, LocationType, Location, Filename)
                        values (1, 1, '/p/', 'a.jpg'), (2, 1, '/p/', 'a.jpg');)");
    const std::string before = GuidInFile();
    OpenStores();
    EXPECT_EQ(GuidInFile(), before);
    EXPECT_EQ(SqlOne("select count(*) from Asset"), photosLeft);
    EXPECT_EQ(VersionInFile(), "10");
    CloseStores();
  }
  for (const int version : {10, 11}) {
    MakeOld(version, "");
    const std::string before = ReadBytes(CatalogPath);
    EXPECT_EQ(ReadDBVersion(CatalogPath), version);
    CCatalog().Open(CatalogPath);
    EXPECT_EQ(ReadBytes(CatalogPath), before);
  }
}

TEST_F(UpgradeTest, AVersionThatIsNoIntegerOf32BitsIsNewerThanAny) {
  for (const std::string value : {"'abc'", "8.5", "5000000000", "x'08'", "-5000000000"}) {
    Sql("update Singletons set DBVersion = " + value);
    EXPECT_GT(ReadDBVersion(CatalogPath), kCatalogVersion) << value;
  }
  Sql("delete from Singletons");
  EXPECT_EQ(ReadDBVersion(CatalogPath), 0);
  EXPECT_EQ(ReadDBVersion(Scratch.File("none.db")), 0);
}

TEST_F(UpgradeTest, ACatalogBehindALinkStaysThereWithItsRights) {
  MakeOld(9, "");
  const std::string real = Scratch.File("far/real.db");
  std::filesystem::rename(CatalogPath, real);
  std::filesystem::create_symlink("far/real.db", CatalogPath);
  std::filesystem::create_hard_link(real, Scratch.File("second name.db"));
  std::filesystem::permissions(real, std::filesystem::perms(0640));
  OpenStores();
  EXPECT_TRUE(std::filesystem::is_symlink(CatalogPath));
  EXPECT_EQ(std::filesystem::status(real).permissions(), std::filesystem::perms(0640));
  EXPECT_EQ(std::filesystem::hard_link_count(real), 2U);
  EXPECT_EQ(VersionInFile(), "10");
}

TEST_F(UpgradeTest, AFullDiskOrAKillLeavesTheOldVersionOrTheNewOne) {
  MakeOld(0, R"(with recursive Number(n) as (select 0 union all select n + 1 from Number where n < 299)
      insert into Asset (AssetID, LocationType, Location, ID) select n, 0, '/p/' || n || '.jpg', x'' from Number;
      insert into Stamp (StampType, SortedString, AssetID, IndexInt) select 8, 'old', AssetID, 0 from Asset;)");
  const std::string old = ReadBytes(CatalogPath);
  const auto expectOneOf = [this](const std::set<std::string>& versions) {
    const std::string version = VersionInFile(), rows = version == "0" ? "300|300" : "0|0";
    EXPECT_TRUE(versions.contains(version)) << version;
    EXPECT_EQ(SqlOne("select count(*), (select count(*) from Asset where LocationType = 0) from Stamp"
                     " where StampType = 8"),
              rows);
  };
  {
    const CFileSizeLimit full(0);
    EXPECT_THROW(CCatalog().Open(CatalogPath), CThrowable);
  }
  EXPECT_EQ(ReadBytes(CatalogPath), old);
  for (int kill = 0; kill < 10; ++kill) {
    Scratch.Write("vellumar.db", old);
    RunAndKill(
        [this](const CReport& report) {
          report.Send(0);
          CCatalog().Open(CatalogPath);
        },
        std::chrono::milliseconds(4 * kill));
    expectOneOf({"0", "10"});
    CCatalog().Open(CatalogPath);
    expectOneOf({"10"});
    std::filesystem::remove(CatalogPath + "-journal");
  }
}

}  // namespace
