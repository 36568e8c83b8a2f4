#include <gmock/gmock.h>

#include "base/Exceptions.h"
#include "catalog/StringHistory.h"
#include "support/CatalogFixture.h"

using testing::ElementsAre;

namespace {

class CatalogTest : public CCatalogFixture {
 protected:
  std::vector<std::string> TextsOf(std::int32_t category, bool byText) const {
    std::vector<std::string> list;
    Catalog.ListStrings(category, list, byText);
    return list;
  }
};

TEST_F(CatalogTest, NewCatalogHasItsFirstRowsOnDiskAndKeepsThem) {
  EXPECT_FALSE(Catalog.Open(CatalogPath)) << "it is open";
  for (int opening = 0; opening < 2; ++opening) {
    EXPECT_EQ(SqlOne("select * from Singletons"),
              SqlOne("select 1, 2, 1, 12, 10, -1, DBGUID, '' from Singletons"));
    EXPECT_EQ(SqlOne("select length(DBGUID) from Singletons"), "16");
    EXPECT_EQ(SqlOne("select PersonID, length(ID), Fullname, Email from People"), "1|16|Vellumar User|");
    EXPECT_THAT(Sql("select * from StampStruct order by rowid"),
                ElementsAre("1|Rating|1|1|4", "2|Note|0|0|0", "3|Person|1|2|2", "4|Thing|1|2|3",
                            "5|Event|1|2|3", "6|Date|1|0|5", "7|FileCreateDate|1|0|1", "9|CameraDate|1|0|1",
                            "10|PersonalPlace|1|2|3", "11|UserDate|1|0|1"));
    EXPECT_EQ(SqlOne("select group_concat(Key || String) from String where Category = 0 and RefCount = 1"),
              "0Category,1Rating,2Note,3Person,4Thing,5Event,6Date,7FileCreateDate,8<dummy>,9CameraDate,"
              "10PersonalPlace,11UserDate");
    CloseStores();
    OpenStores();
  }
}

TEST_F(CatalogTest, AStampTypeChangedByHandStopsEachStartAndChangesNothing) {
  Catalog.Close();
  Sql("update StampStruct set StampName = 'Sound' where StampType = 4");
  const std::string before = ReadBytes(CatalogPath);
  for (int start = 0; start < 2; ++start) {
    EXPECT_THROW(CCatalog().Open(CatalogPath), CError);
    EXPECT_EQ(ReadBytes(CatalogPath), before);
  }
}

TEST_F(CatalogTest, EachChangeIsOnDiskWhenItReturnsUnlessPaused) {
  EXPECT_EQ(Catalog.AllocAssetID(), 1);
  EXPECT_EQ(SqlOne("select NextAssetID from Singletons"), "2");
  {
    CAutoCommitPause outer(Catalog);
    {
      CAutoCommitPause inner(Catalog);
      Catalog.SetCurrentPhotoFolder("/photos/");
      inner.Commit();
    }
    EXPECT_EQ(SqlOne("select CurrentPhotoFolder from Singletons"), "");
    outer.Commit();
  }
  EXPECT_EQ(SqlOne("select CurrentPhotoFolder from Singletons"), "/photos/");
  {
    CAutoCommitPause dropped(Catalog);
    Catalog.SetCurrentPhotoFolder("/elsewhere/");
    Catalog.AddAsset("/photos/a.jpg");
  }
  EXPECT_TRUE(Catalog.GetAutoCommit());
  EXPECT_EQ(Catalog.GetCurrentPhotoFolder(), "/photos/");
  EXPECT_TRUE(Catalog.GetAssets().IsEmpty());
}

TEST_F(CatalogTest, DefragmentKeepsEveryRowAndGivesBackTheSpace) {
  {
    CAutoCommitPause pause(Catalog);
    for (int i = 0; i < 2000; ++i) Catalog.AddAsset("/photos/" + std::to_string(i) + ".jpg");
    for (int i = 1; i <= 1990; ++i) Catalog.DeleteAsset(i);
    pause.Commit();
  }
  const std::size_t before = ReadBytes(CatalogPath).size();
  Scratch.Write("vellumar.db.defragged", "left by an earlier run");
  const CGuid guid = Catalog.GetDBGUID();
  Catalog.Defragment();
  EXPECT_LT(ReadBytes(CatalogPath).size(), before / 2);
  EXPECT_FALSE(std::filesystem::exists(CatalogPath + ".defragged"));
  EXPECT_EQ(Catalog.GetDBGUID(), guid);
  EXPECT_EQ(Catalog.FindAssetById(1996).GetPath(), "/photos/1995.jpg");
  EXPECT_EQ(Catalog.AddAsset("/photos/new.jpg").GetAssetID(), 2001);
  EXPECT_EQ(SqlOne("select count(*) from Asset"), "11");
}

TEST_F(CatalogTest, SharedTextsAreCountedAndComparedByTheirLetters) {
  const std::int32_t places = Catalog.GetCategory("Places");
  EXPECT_EQ(Catalog.GetCategory("places"), places);
  EXPECT_EQ(SqlOne("select RefCount from String where String = 'Places'"), "1");

  const std::int32_t key = Catalog.AddString(places, "Lake");
  EXPECT_EQ(Catalog.AddString(places, "LAKE"), key);
  EXPECT_EQ(Catalog.FindStringKey(places + 1, "Lake"), -1);
  EXPECT_FALSE(Catalog.ReplaceString(key, "Pond", false)) << "it is used twice";
  Catalog.ReleaseString(key);
  EXPECT_EQ(Catalog.GetString(key), "Lake");
  EXPECT_TRUE(Catalog.ReplaceString(key, "Pond", false));
  Catalog.ReleaseString(key);
  EXPECT_EQ(Catalog.GetString(key), "");
  EXPECT_FALSE(Catalog.ReplaceString(key, "Sea", true));
  EXPECT_NE(Catalog.AddString(places, "Lake"), key) << "keys are not given out again";

  Catalog.AddString(places, "brook");
  const std::int32_t zofie = Catalog.AddString(places, "Žofie");
  EXPECT_EQ(Catalog.AddString(places, "z\xcc\x8cOFIE"), zofie);
  const std::int32_t eger = Catalog.AddString(places, "Éger");
  EXPECT_THAT(TextsOf(places, true), ElementsAre("brook", "Éger", "Lake", "Žofie"));
  EXPECT_THAT(TextsOf(places, false), ElementsAre("Lake", "brook", "Žofie", "Éger"));
  EXPECT_EQ(Catalog.GetStringKeyAt(places, 1, true), eger);
  EXPECT_EQ(Catalog.GetStringIndex(places, eger, true), 1);
  EXPECT_EQ(Catalog.GetStringKeyAt(places, 4, true), -1);
}

TEST_F(CatalogTest, AHistoryWithALimitOverwritesItsLastEntry) {
  CStringHistory history(Catalog, "TextFilterHistory", 8, false);
  for (int i = 1; i <= 8; ++i) EXPECT_EQ(history.Add("text " + std::to_string(i)), i - 1);
  EXPECT_EQ(history.Add("TEXT 3"), 2);
  EXPECT_EQ(history.Add("ninth"), 7);
  EXPECT_EQ(history.Count(), 8);
  EXPECT_EQ(history.Get(7), "ninth");
  EXPECT_TRUE(history.Promote(0));
  EXPECT_FALSE(history.Promote(8));
  EXPECT_TRUE(history.Promote(2));
  EXPECT_THAT(TextsOf(Catalog.FindCategory("TextFilterHistory"), false),
              ElementsAre("text 3", "text 1", "text 2", "text 4", "text 5", "text 6", "text 7", "ninth"));
  EXPECT_TRUE(history.Remove("text 1"));
  EXPECT_FALSE(history.Contains("text 1"));
  EXPECT_TRUE(history.RemoveAt(6));
  EXPECT_FALSE(history.RemoveAt(6));
}

}  // namespace
