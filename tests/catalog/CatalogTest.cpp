#include <gmock/gmock.h>

#include "base/Exceptions.h"
#include "catalog/StringHistory.h"
#include "support/CatalogFixture.h"

using testing::ElementsAre;

namespace {

using CatalogTest = CCatalogFixture;

TEST_F(CatalogTest, NewCatalogHasItsFirstRowsOnDiskAndKeepsThem) {
  for (int opening = 0; opening < 2; ++opening) {
    EXPECT_EQ(SqlOne("select length(DBGUID), * from Singletons"),
              SqlOne("select 16, 1, 2, 1, 12, 10, -1, DBGUID, '' from Singletons"));
    EXPECT_EQ(SqlOne("select PersonID, length(ID), Fullname, Email from People"), "1|16|Vellumar User|");
    EXPECT_THAT(Sql("select * from StampStruct order by rowid"),
                ElementsAre("1|Rating|1|1|4", "2|Note|0|0|0", "3|Person|1|2|2", "4|Thing|1|2|3",
                            "5|Event|1|2|3", "6|Date|1|0|5", "7|FileCreateDate|1|0|1", "9|CameraDate|1|0|1",
                            "10|PersonalPlace|1|2|3", "11|UserDate|1|0|1"));
    EXPECT_EQ(SqlOne("select group_concat(Key || String) from String where Category = 0 and RefCount = 1"),
              "0Category,1Rating,2Note,3Person,4Thing,5Event,6Date,7FileCreateDate,8<dummy>,9CameraDate,"
              "10PersonalPlace,11UserDate");
    EXPECT_FALSE(Catalog.Open(CatalogPath)) << "it is open";
    CloseStores();
    OpenStores();
  }
  Catalog.Close();
  Sql("update StampStruct set StampName = 'Sound' where StampType = 4");
  const std::string before = ReadBytes(CatalogPath);
  EXPECT_THROW(CCatalog().Open(CatalogPath), CError);
  EXPECT_EQ(ReadBytes(CatalogPath), before);
}

TEST_F(CatalogTest, APauseMakesSeveralChangesOneOrNone) {
  {
    CAutoCommitPause pause(Catalog);
    Catalog.AddAsset("/photos/a.jpg");  // within a pause of its own
    EXPECT_EQ(SqlOne("select count(*) from Asset"), "0");
    pause.Commit();
  }
  EXPECT_EQ(SqlOne("select count(*) from Asset"), "1");
  {
    CAutoCommitPause dropped(Catalog);
    Catalog.SetCurrentPhotoFolder("/elsewhere/");
    Catalog.AddAsset("/photos/b.jpg");
  }
  EXPECT_EQ(Catalog.GetCurrentPhotoFolder(), "");
  EXPECT_EQ(Catalog.GetAssets().GetSize(), 1);
}

TEST_F(CatalogTest, SharedTextsAreCountedAndComparedByTheirLetters) {
  const std::int32_t places = Catalog.GetCategory("Places");
  EXPECT_EQ(Catalog.GetCategory("places"), places);
  const std::int32_t key = Catalog.AddString(places, "Lake");
  EXPECT_EQ(Catalog.AddString(places, "LAKE"), key);
  EXPECT_EQ(Catalog.FindStringKey(places + 1, "Lake"), -1);
  EXPECT_FALSE(Catalog.ReplaceString(key, "Pond", false)) << "it is used twice";
  Catalog.ReleaseString(key);
  EXPECT_EQ(Catalog.GetString(key), "Lake");
  EXPECT_TRUE(Catalog.ReplaceString(key, "Pond", false));
  Catalog.ReleaseString(key);
  EXPECT_NE(Catalog.AddString(places, "Lake"), key) << "keys are not given out again";

  const std::int32_t zofie = Catalog.AddString(places, "Žofie");
  EXPECT_EQ(Catalog.AddString(places, "z\xcc\x8cOFIE"), zofie);
  for (const char* text : {"brook", "Éger"}) Catalog.AddString(places, text);
  std::vector<std::string> texts;
  Catalog.ListStrings(places, texts, true);
  EXPECT_THAT(texts, ElementsAre("brook", "Éger", "Lake", "Žofie"));
}

TEST_F(CatalogTest, AHistoryWithALimitOverwritesItsLastEntry) {
  CStringHistory history(Catalog, "TextFilterHistory", 4, false);
  for (const char* text : {"one", "two", "three", "four"}) history.Add(text);
  EXPECT_EQ(history.Add("THREE"), 2);
  EXPECT_EQ(history.Add("five"), 3);
  EXPECT_TRUE(history.Promote(0));
  EXPECT_FALSE(history.Promote(4));
  EXPECT_TRUE(history.Promote(2));
  EXPECT_THAT(Sql("select String from String where Key > 12 order by Key"),
              ElementsAre("three", "one", "two", "five"));
  EXPECT_TRUE(history.Remove("one"));
  EXPECT_FALSE(history.Contains("one"));
  EXPECT_TRUE(history.RemoveAt(2));
}

}  // namespace
