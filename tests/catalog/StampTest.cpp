#include <gmock/gmock.h>

#include <functional>

#include "base/Exceptions.h"
#include "catalog/StringHistory.h"
#include "support/CatalogFixture.h"
#include "support/FaultSteps.h"

using testing::ElementsAre;

namespace {

class StampTest : public CCatalogFixture {
 protected:
  std::vector<std::string> StampsOf(const CAssetRecord& record) const {
    return Sql("select StampType, SortedString, IndexInt, PersonID from Stamp where AssetID = " +
               std::to_string(record.GetAssetID()) + " order by rowid");
  }
  std::string CountOf(const std::string& text) const {
    return SqlOne("select RefCount from String where String = '" + text + "'");
  }

  CAssetRecord Photo = AddRow("/photos/a.jpg");
  CAssetRecord Other = AddRow("/photos/b.jpg");
};

TEST_F(StampTest, ARatingIsStoredAsTextNumberAndCache) {
  CStampList ratings = Photo.GetStamps(StampId::Rating);
  EXPECT_TRUE(ratings.SetNumber(3, 0));
  EXPECT_THAT(StampsOf(Photo), ElementsAre("1|00000003|3|0"));
  EXPECT_FALSE(ratings.SetNumber(2, 1)) << "there is one stamp";
  EXPECT_FALSE(Photo.GetStamps(StampId::Note).SetNumber(3, 0));
  EXPECT_TRUE(ratings.SetNumber(4, 0));
  EXPECT_EQ(Photo.GetCachedRating(), 4);
  EXPECT_TRUE(ratings.Remove(0));
  EXPECT_EQ(Photo.GetCachedRating(), 0);
}

TEST_F(StampTest, ChangingTheDateInForceChangesTheDateItCameFrom) {
  constexpr std::int32_t kNewYear = 1041375600;  // 2003-01-01 00:00:00 in Berlin
  CStampList dates = Photo.GetStamps(StampId::Date);
  EXPECT_TRUE(dates.SetDate(kNewYear, 0, StampId::CameraDate));
  EXPECT_THAT(StampsOf(Photo), ElementsAre("6|20030101000000|9|0")) << "a first date touches no other";
  Photo.GetStamps(StampId::CameraDate).SetDate(kNewYear - 1, 0, StampId::None);
  EXPECT_TRUE(dates.SetDate(kNewYear + 61, 0, StampId::CameraDate));
  EXPECT_THAT(StampsOf(Photo), ElementsAre("6|20030101000101|9|0", "9|20030101000101|0|0"));
  EXPECT_EQ(Photo.GetCachedDate(), kNewYear + 61);
  EXPECT_EQ(dates.Get(0).GetText(), "Jan 1, 2003");
  EXPECT_TRUE(dates.Remove(0));
  EXPECT_EQ(Photo.GetCachedDate(), kNewYear + 61) << "the date stays where the photo is sorted";
}

TEST_F(StampTest, ASummerDateReadsBackOneHourLater) {
  constexpr std::int32_t kSummer = 1060430400;  // 2003-08-09 14:00:00 daylight saving time
  Photo.GetStamps(StampId::UserDate).SetDate(kSummer, 0, StampId::None);
  EXPECT_THAT(StampsOf(Photo), ElementsAre("11|20030809140000|0|0"));
  EXPECT_EQ(Photo.GetStamps(StampId::UserDate).Get(0).GetDate(), kSummer + 3600);
  Photo.GetStamps(StampId::Date).SetDate(kSummer + 3600, 0, StampId::UserDate);
  EXPECT_THAT(StampsOf(Photo), ElementsAre("11|20030809140000|0|0", "6|20030809140000|11|0"))
      << "a time that was read is written as it stands";
}

TEST_F(StampTest, PhotosShareOneSpellingOfAText) {
  CStampList mine = Photo.GetStamps(StampId::PersonalPlace), others = Other.GetStamps(StampId::PersonalPlace);
  EXPECT_TRUE(mine.SetText("Northern Lakes", 0));
  EXPECT_TRUE(others.SetText("NORTHERN lakes", 0));
  EXPECT_EQ(others.Get(0).GetText(), "Northern Lakes");
  EXPECT_EQ(SqlOne("select distinct SortedString from Stamp where StampType = 10"), "northern lakes");

  // Another case leaves the spelling while two photos use it; by its last user it gives a new entry.
  EXPECT_TRUE(others.SetText("northern LAKES", 0));
  EXPECT_EQ(CountOf("Northern Lakes"), "2");
  EXPECT_TRUE(mine.Remove(0));
  const std::string key = SqlOne("select Key from String where String = 'Northern Lakes'");
  EXPECT_TRUE(others.SetText("northern LAKES", 0));
  EXPECT_NE(SqlOne("select Key from String where String = 'northern LAKES'"), key);
  EXPECT_EQ(others.Get(0).GetText(), "northern LAKES");
}

TEST_F(StampTest, SeveralSubjectsKeepTheirOrderAndTheirCounts) {
  CStampList subjects = Photo.GetStamps(StampId::Thing);
  for (const char* text : {"boats", "Über", "lake"}) EXPECT_TRUE(subjects.Add(text));
  EXPECT_THAT(subjects.GetChoices(), ElementsAre("boats", "lake", "Über"));
  EXPECT_THAT(Sql("select SortedString from Stamp"), ElementsAre("boats", "über", "lake"));
  EXPECT_TRUE(subjects.SetText("river", 1));
  EXPECT_TRUE(subjects.Remove(0));
  EXPECT_THAT(subjects.GetChoices(), ElementsAre("lake", "river"));
  EXPECT_FALSE(subjects.SetText("x", 2));
  for (const char* text : {"Last", "First"}) EXPECT_TRUE(Photo.GetStamps(StampId::Note).SetText(text, 0));
  EXPECT_EQ(Photo.GetStamps(StampId::Note).Get(0).GetText(), "First");
  EXPECT_FALSE(Photo.GetStamps(StampId::Person).Add("Anna")) << "no operation writes persons";
}

TEST_F(StampTest, AnEditThatTheDiskRefusesChangesNothing) {
  CStampList places = Photo.GetStamps(StampId::PersonalPlace), ratings = Photo.GetStamps(StampId::Rating);
  for (CAssetRecord& record : {std::ref(Photo), std::ref(Other)}) {
    record.GetStamps(StampId::PersonalPlace).SetText("Lake", 0);
  }
  ratings.SetNumber(3, 0);
  const std::string before = ReadBytes(CatalogPath);
  {
    const CFileSizeLimit full(0);
    EXPECT_THROW(places.SetText("River", 0), CException);
    EXPECT_THROW(ratings.SetNumber(4, 0), CException);
    EXPECT_THROW(Catalog.DeleteAsset(1), CException);
  }
  EXPECT_EQ(places.Get(0).GetText(), "Lake");
  EXPECT_EQ(Photo.GetCachedRating(), 3);
  EXPECT_EQ(ReadBytes(CatalogPath), before);
  EXPECT_TRUE(places.SetText("River", 0));
  EXPECT_EQ(CountOf("Lake"), "1");
}

TEST_F(StampTest, EachOperationIsOneTransactionThatIsOnDiskWhenItReturns) {
  CStringHistory history(Catalog, "TextFilterHistory", 0, false);
  for (const char* text : {"one", "two", "three"}) history.Add(text);
  CStampList events = Photo.GetStamps(StampId::Event), dates = Photo.GetStamps(StampId::Date);
  const std::function<bool()> operations[] = {
      [&] { return events.Add("Party"); },
      [&] { return events.SetText("Lake", 0); },
      [&] { return events.Remove(0); },
      [&] { return Photo.GetStamps(StampId::Rating).SetNumber(3, 0); },
      [&] { return Photo.StampNewPhoto(1000000, 1000000, 2000000); },
      [&] { return dates.SetDate(3000000, 0, StampId::CameraDate); },
      [&] { return Photo.SetPath("/photos/new.jpg"); },
      [&] { return history.Promote(2); },
      [&] { return Catalog.AddAsset("/photos/c.jpg").IsValid(); },
      [&] { return Catalog.DeleteAsset(1); },
  };
  for (const auto& operation : operations) {
    const int before = CountCommits();
    EXPECT_TRUE(operation());
    EXPECT_EQ(CountCommits(), before + 1) << "operation " << &operation - operations;
  }
}

}  // namespace
