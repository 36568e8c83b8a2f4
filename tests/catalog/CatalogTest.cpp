#include <gmock/gmock.h>

#include "base/Exceptions.h"
#include "catalog/Catalog.h"
#include "catalog/CatalogFixture.h"
#include "catalog/Properties.h"
#include "catalog/StringHistory.h"

using testing::ElementsAre;

namespace {

using CatalogTest = CCatalogFixture;

TEST_F(CatalogTest, NewCatalogHasItsFirstRowsOnDiskAndKeepsThem) {
  EXPECT_EQ(0, ReadDBVersion(Path));
  for (int opening = 0; opening < 2; ++opening) {
    Open();
    EXPECT_FALSE(Catalog.Open(Path));
    EXPECT_EQ("1|2|1|12|10|-1|16|",
              SqlOne("select NextAssetID, NextPersonID, CurrentPersonID, NextStringKey, DBVersion,"
                     " CurrentRollID, length(DBGUID), CurrentPhotoFolder from Singletons"));
    EXPECT_EQ("1|16|Vellumar User|", SqlOne("select PersonID, length(ID), Fullname, Email from People"));
    EXPECT_THAT(Sql("select * from StampStruct order by rowid"),
                ElementsAre("1|Rating|1|1|4", "2|Note|0|0|0", "3|Person|1|2|2", "4|Thing|1|2|3",
                            "5|Event|1|2|3", "6|Date|1|0|5", "7|FileCreateDate|1|0|1", "9|CameraDate|1|0|1",
                            "10|PersonalPlace|1|2|3", "11|UserDate|1|0|1"));
    EXPECT_THAT(Sql("select Category, Key, String, RefCount from String order by rowid"),
                ElementsAre("0|0|Category|1", "0|1|Rating|1", "0|2|Note|1", "0|3|Person|1", "0|4|Thing|1",
                            "0|5|Event|1", "0|6|Date|1", "0|7|FileCreateDate|1", "0|8|<dummy>|1",
                            "0|9|CameraDate|1", "0|10|PersonalPlace|1", "0|11|UserDate|1"));
    Cache.Close();
    Catalog.Close();
    EXPECT_EQ(10, ReadDBVersion(Path));
  }
}

TEST_F(CatalogTest, AStampTypeChangedByHandStopsEachStartAndChangesNothing) {
  Open();
  Catalog.Close();
  Sql("update StampStruct set StampName = 'Sound' where StampType = 4");
  const std::string before = ReadBytes(Path);
  for (int start = 0; start < 2; ++start) {
    CCatalog catalog;
    try {
      catalog.Open(Path);
      FAIL() << "opened";
    } catch (const CError& error) {
      EXPECT_EQ("There is a configuration problem with the database.", error.GetMessage());
    }
  }
  EXPECT_EQ(before, ReadBytes(Path));
}

TEST_F(CatalogTest, EachChangeIsOnDiskWhenItReturnsUnlessPaused) {
  Open();
  EXPECT_EQ(1, Catalog.AllocAssetID());
  EXPECT_EQ("2", SqlOne("select NextAssetID from Singletons"));
  {
    CAutoCommitPause outer(Catalog);
    {
      CAutoCommitPause inner(Catalog);
      Catalog.SetCurrentPhotoFolder("/photos/");
      inner.Commit();
    }
    EXPECT_EQ("", SqlOne("select CurrentPhotoFolder from Singletons"));
    outer.Commit();
  }
  EXPECT_EQ("/photos/", SqlOne("select CurrentPhotoFolder from Singletons"));
  {
    CAutoCommitPause dropped(Catalog);
    Catalog.SetCurrentPhotoFolder("/elsewhere/");
    Catalog.AddAsset("/photos/a.jpg");
  }
  EXPECT_TRUE(Catalog.GetAutoCommit());
  EXPECT_EQ("/photos/", Catalog.GetCurrentPhotoFolder());
  EXPECT_TRUE(Catalog.GetAssets().IsEmpty());
}

TEST_F(CatalogTest, DefragmentKeepsEveryRowAndGivesBackTheSpace) {
  Open();
  {
    CAutoCommitPause pause(Catalog);
    for (int i = 0; i < 2000; ++i) Catalog.AddAsset("/photos/" + std::to_string(i) + ".jpg");
    for (int i = 1; i <= 1990; ++i) Catalog.DeleteAsset(i);
    pause.Commit();
  }
  const std::size_t before = ReadBytes(Path).size();
  Scratch.Write("vellumar.db.defragged", "left by an earlier run");
  const CGuid guid = Catalog.GetDBGUID();

  Catalog.Defragment();

  EXPECT_LT(ReadBytes(Path).size(), before / 2);
  EXPECT_FALSE(std::filesystem::exists(Path + ".defragged"));
  EXPECT_EQ(guid, Catalog.GetDBGUID());
  EXPECT_EQ("/photos/1995.jpg", Catalog.FindAssetById(1996).GetPath());
  EXPECT_EQ(2001, Catalog.AddAsset("/photos/new.jpg").GetAssetID());
  EXPECT_EQ("11", SqlOne("select count(*) from Asset"));
}

TEST_F(CatalogTest, SharedTextsAreCounted) {
  Open();
  const std::int32_t places = Catalog.GetCategory("Places");
  EXPECT_EQ(places, Catalog.GetCategory("places"));
  EXPECT_EQ("1", SqlOne("select RefCount from String where String = 'Places'"));

  const std::int32_t key = Catalog.AddString(places, "Lake");
  EXPECT_EQ(key, Catalog.AddString(places, "LAKE"));
  EXPECT_EQ(-1, Catalog.FindStringKey(places + 1, "Lake"));
  EXPECT_FALSE(Catalog.ReplaceString(key, "Pond", false)) << "it is used twice";
  EXPECT_EQ("Lake", Catalog.GetString(key));
  Catalog.ReleaseString(key);
  EXPECT_TRUE(Catalog.ReplaceString(key, "Pond", false));
  Catalog.ReleaseString(key);
  EXPECT_EQ("", Catalog.GetString(key));
  EXPECT_FALSE(Catalog.ReplaceString(key, "Sea", true));
  EXPECT_NE(key, Catalog.AddString(places, "Lake")) << "keys are not given out again";

  Catalog.AddString(places, "brook");
  std::vector<std::string> list;
  Catalog.ListStrings(places, list, true);
  EXPECT_THAT(list, ElementsAre("brook", "Lake"));
  Catalog.ListStrings(places, list, false);
  EXPECT_THAT(list, ElementsAre("Lake", "brook"));
  EXPECT_EQ(-1, Catalog.GetStringKeyAt(places, 2, true));

  const std::int32_t zofie = Catalog.AddString(places, "Žofie");
  EXPECT_EQ(zofie, Catalog.AddString(places, "žOFIE"));
  EXPECT_EQ(zofie, Catalog.AddString(places, "z\xcc\x8cofie"));
  const std::int32_t eger = Catalog.AddString(places, "Éger");
  Catalog.ListStrings(places, list, true);
  EXPECT_THAT(list, ElementsAre("brook", "Éger", "Lake", "Žofie"));
  EXPECT_EQ(eger, Catalog.GetStringKeyAt(places, 1, true));
  EXPECT_EQ(1, Catalog.GetStringIndex(places, eger, true));
}

TEST_F(CatalogTest, AHistoryWithALimitOverwritesItsLastEntry) {
  Open();
  CStringHistory history(Catalog, "TextFilterHistory", 8, false);
  for (int i = 1; i <= 8; ++i) EXPECT_EQ(i - 1, history.Add("text " + std::to_string(i)));
  EXPECT_EQ(2, history.Add("TEXT 3"));
  EXPECT_EQ(7, history.Add("ninth"));
  EXPECT_EQ(8, history.Count());
  EXPECT_EQ("ninth", history.Get(7));
  EXPECT_FALSE(history.Contains("text 8"));

  EXPECT_TRUE(history.Promote(0));
  EXPECT_FALSE(history.Promote(8));
  EXPECT_FALSE(history.Promote(-1));
  EXPECT_TRUE(history.Promote(2));
  std::vector<std::string> texts;
  for (int i = 0; i < 4; ++i) texts.push_back(history.Get(i));
  EXPECT_THAT(texts, ElementsAre("text 3", "text 1", "text 2", "text 4"));
  EXPECT_TRUE(Catalog.GetAutoCommit());

  EXPECT_TRUE(history.Remove("text 1"));
  EXPECT_FALSE(history.Remove("text 1"));
  EXPECT_TRUE(history.RemoveAt(6));
  EXPECT_EQ(6, history.Count());
  EXPECT_EQ("", history.Get(6));
}

}  // namespace
