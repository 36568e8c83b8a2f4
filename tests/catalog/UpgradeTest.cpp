#include <gmock/gmock.h>

#include "base/Exceptions.h"
#include "support/CatalogFixture.h"
#include "support/FaultSteps.h"
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
  const std::string old = ReadBytes(CatalogPath);
  {
    const CFileSizeLimit full(0);
    EXPECT_THROW(CCatalog().Open(CatalogPath), CThrowable);
  }
  EXPECT_EQ(ReadBytes(CatalogPath), old);
  const int before = CountCommits();
  OpenStores();
  EXPECT_EQ(CountCommits(), before + 2) << "the whole upgrade, and the compacted file";
  EXPECT_THAT(Sql("select AssetID, LocationType, Location, Filename, CachedRating, CachedDate from Asset"),
              ElementsAre("1|1|/p/Lakes/|a.jpg|4|1044367200", "2|1|/p/|b.jpg|2|0"));
  EXPECT_THAT(Sql("select length(ID), hex(ID) like '0011223344556677%FF' from Asset"),
              ElementsAre("16|0", "16|1"));
  EXPECT_EQ(SqlOne("select count(*) from String where RefCount = 1"), "12");

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

TEST_F(UpgradeTest, NewerVersionsChangeLessAndThisOneNothing) {
  for (const auto& [version, photosLeft] : {std::pair(8, "1"), {9, "2"}, {10, "2"}, {11, "2"}}) {
    MakeOld(version, R"(delete from Asset; insert into Asset (AssetID, LocationType, Location, Filename)
                        values (1, 1, '/p/', 'a.jpg'), (2, 1, '/p/', 'a.jpg');)");
    const std::string before = ReadBytes(CatalogPath), guid = GuidInFile();
    EXPECT_EQ(ReadDBVersion(CatalogPath), version);
    CCatalog().Open(CatalogPath);
    EXPECT_EQ(SqlOne("select count(*) from Asset"), photosLeft);
    EXPECT_EQ(GuidInFile(), guid);
    EXPECT_EQ(ReadDBVersion(CatalogPath), std::max(version, kCatalogVersion));
    EXPECT_EQ(ReadBytes(CatalogPath) == before, version >= kCatalogVersion);
  }
  for (const std::string value : {"'abc'", "8.5", "5000000000", "x'08'", "-5000000000"}) {
    Sql("update Singletons set DBVersion = " + value);
    EXPECT_GT(ReadDBVersion(CatalogPath), kCatalogVersion) << "no integer of 32 bits: " << value;
  }
  Sql("delete from Singletons");
  EXPECT_EQ(ReadDBVersion(CatalogPath), 0);
  EXPECT_EQ(ReadDBVersion(Scratch.File("none.db")), 0);
}

}  // namespace
