#include <gmock/gmock.h>
#include <stdlib.h>
#include <time.h>

#include "base/Exceptions.h"
#include "catalog/CatalogFixture.h"
#include "support/FileSizeLimit.h"

using testing::ElementsAre;

namespace {

class StampTest : public CCatalogFixture {
 protected:
  void SetUp() override {
    ::setenv("TZ", "Europe/Berlin", 1);
    ::tzset();
    Open();
    Photo = Catalog.AddAsset("/photos/a.jpg");
    Other = Catalog.AddAsset("/photos/b.jpg");
  }
  void TearDown() override {
    ::unsetenv("TZ");
    ::tzset();
  }

  std::vector<std::string> StampsOf(const CAssetRecord& record) const {
    return Sql("select StampType, SortedString, IndexInt, PersonID from Stamp where AssetID = " +
               std::to_string(record.GetAssetID()) + " order by rowid");
  }
  std::string CountOf(const std::string& text) const {
    return SqlOne("select RefCount from String where String = '" + text + "'");
  }

  CAssetRecord Photo, Other;
};

TEST_F(StampTest, ARatingIsStoredAsTextNumberAndCache) {
  EXPECT_TRUE(Photo.GetStamps(StampId::Rating).SetNumber(3, 0));
  EXPECT_THAT(StampsOf(Photo), ElementsAre("1|00000003|3|0"));
  EXPECT_EQ("3", SqlOne("select CachedRating from Asset where AssetID = 1"));
  EXPECT_TRUE(Photo.GetStamps(StampId::Rating).SetNumber(0, 0));
  EXPECT_THAT(StampsOf(Photo), ElementsAre("1|00000000|0|0"));
  EXPECT_FALSE(Photo.GetStamps(StampId::Rating).SetNumber(2, 1)) << "there is one stamp";
  EXPECT_FALSE(Photo.GetStamps(StampId::Rating).SetText("3", 0));
  EXPECT_FALSE(Photo.GetStamps(StampId::Note).SetNumber(3, 0));
  EXPECT_TRUE(Photo.GetStamps(StampId::Rating).SetNumber(4, 0));
  EXPECT_TRUE(Photo.GetStamps(StampId::Rating).Remove(0));
  EXPECT_FALSE(Photo.GetStamps(StampId::Rating).Remove(0));
  EXPECT_EQ(0, Photo.GetCachedRating());
  EXPECT_THAT(StampsOf(Photo), ElementsAre());
}

TEST_F(StampTest, ChangingTheDateInForceChangesTheDateItCameFrom) {
  constexpr std::int32_t kNewYear = 1041375600;  // 2003-01-01 00:00:00 in Berlin
  EXPECT_TRUE(Photo.GetStamps(StampId::Date).SetDate(kNewYear, 0, StampId::CameraDate));
  EXPECT_THAT(StampsOf(Photo), ElementsAre("6|20030101000000|9|0")) << "a first date touches no other";
  Photo.GetStamps(StampId::CameraDate).SetDate(kNewYear - 1, 0, StampId::None);
  EXPECT_EQ(kNewYear, Photo.GetCachedDate());

  EXPECT_TRUE(Photo.GetStamps(StampId::Date).SetDate(kNewYear + 61, 0, StampId::CameraDate));
  EXPECT_THAT(StampsOf(Photo), ElementsAre("6|20030101000101|9|0", "9|20030101000101|0|0"));
  EXPECT_EQ(kNewYear + 61, Photo.GetCachedDate());
  StampId source = StampId::None;
  EXPECT_EQ(kNewYear + 61, Photo.GetStamps(StampId::Date).Get(0).GetDate(&source));
  EXPECT_EQ(StampId::CameraDate, source);
  EXPECT_EQ("Jan 1, 2003", Photo.GetStamps(StampId::Date).Get(0).GetText());

  EXPECT_TRUE(Photo.GetStamps(StampId::FileCreateDate).SetDate(1, 0, StampId::None));
  EXPECT_EQ(kNewYear + 61, Photo.GetCachedDate());
  EXPECT_TRUE(Photo.GetStamps(StampId::Date).Remove(0));
  EXPECT_EQ(kNewYear + 61, Photo.GetCachedDate()) << "the date stays where the photo is sorted";
  EXPECT_FALSE(Photo.GetStamps(StampId::Date).SetDate(kNewYear, 1, StampId::None));
  EXPECT_FALSE(Photo.GetStamps(StampId::Note).SetDate(kNewYear, 0, StampId::None));
}

TEST_F(StampTest, ASummerDateReadsBackOneHourLater) {
  constexpr std::int32_t kSummer = 1060430400;  // 2003-08-09 14:00:00 daylight saving time
  Photo.GetStamps(StampId::UserDate).SetDate(kSummer, 0, StampId::None);
  EXPECT_THAT(StampsOf(Photo), ElementsAre("11|20030809140000|0|0"));
  EXPECT_EQ(kSummer + 3600, Photo.GetStamps(StampId::UserDate).Get(0).GetDate());

  Photo.GetStamps(StampId::Date).SetDate(kSummer + 3600, 0, StampId::UserDate);
  EXPECT_THAT(StampsOf(Photo), ElementsAre("11|20030809140000|0|0", "6|20030809140000|11|0"))
      << "a time that was read doesn't wander when it is chosen";
}

TEST_F(StampTest, PhotosShareOneSpellingOfAText) {
  EXPECT_TRUE(Photo.GetStamps(StampId::PersonalPlace).SetText("Northern Lakes", 0));
  EXPECT_TRUE(Other.GetStamps(StampId::PersonalPlace).SetText("NORTHERN lakes", 0));
  EXPECT_EQ("2", CountOf("Northern Lakes"));
  EXPECT_EQ("Northern Lakes", Other.GetStamps(StampId::PersonalPlace).Get(0).GetText());
  EXPECT_EQ("northern lakes", SqlOne("select distinct SortedString from Stamp where StampType = 10"));

  // Another case while two photos use it leaves the spelling; by its last user it gives a new entry.
  EXPECT_TRUE(Other.GetStamps(StampId::PersonalPlace).SetText("northern LAKES", 0));
  EXPECT_EQ("2", CountOf("Northern Lakes"));
  EXPECT_TRUE(Photo.GetStamps(StampId::PersonalPlace).Remove(0));
  const std::string key = SqlOne("select Key from String where String = 'Northern Lakes'");
  EXPECT_TRUE(Other.GetStamps(StampId::PersonalPlace).SetText("northern LAKES", 0));
  EXPECT_NE(key, SqlOne("select Key from String where String = 'northern LAKES'"));
  EXPECT_EQ("northern LAKES", Other.GetStamps(StampId::PersonalPlace).Get(0).GetText());
}

TEST_F(StampTest, SeveralSubjectsKeepTheirOrderAndTheirCounts) {
  CStampList subjects = Photo.GetStamps(StampId::Thing);
  for (const char* text : {"boats", "Über", "lake"}) EXPECT_TRUE(subjects.Add(text));
  CStampList same = Photo.GetStamps(StampId::Thing);
  EXPECT_EQ(3, same.Count()) << "lists follow the catalog";
  EXPECT_THAT(subjects.GetChoices(), ElementsAre("boats", "lake", "Über"));
  EXPECT_EQ("über", SqlOne("select SortedString from Stamp where IndexInt ="
                           " (select Key from String where String = 'Über')"));

  EXPECT_TRUE(subjects.SetText("river", 1));
  EXPECT_TRUE(subjects.Remove(0));
  EXPECT_THAT(subjects.GetChoices(), ElementsAre("lake", "river"));
  EXPECT_EQ("river", subjects.Get(0).GetText());
  EXPECT_FALSE(subjects.Get(2).IsValid());
  EXPECT_EQ("", subjects.Get(-1).GetText());
  EXPECT_FALSE(subjects.SetText("x", 2));

  EXPECT_TRUE(Photo.GetStamps(StampId::Note).SetText("Last light", 0));
  EXPECT_TRUE(Photo.GetStamps(StampId::Note).SetText("First light", 0));
  EXPECT_EQ("First light", Photo.GetStamps(StampId::Note).Get(0).GetText());
  EXPECT_TRUE(Photo.GetStamps(StampId::Note).GetChoices().empty());
}

TEST_F(StampTest, AnEditThatTheDiskRefusesChangesNothing) {
  Photo.GetStamps(StampId::PersonalPlace).SetText("Lake", 0);
  Other.GetStamps(StampId::PersonalPlace).SetText("Lake", 0);
  Photo.GetStamps(StampId::Rating).SetNumber(3, 0);
  const std::string before = ReadBytes(Path);
  {
    const CFileSizeLimit full(0);
    EXPECT_THROW(Photo.GetStamps(StampId::PersonalPlace).SetText("River", 0), CException);
    EXPECT_THROW(Photo.GetStamps(StampId::Rating).SetNumber(4, 0), CException);
    EXPECT_THROW(Catalog.DeleteAsset(1), CException);
  }
  EXPECT_TRUE(Catalog.GetAutoCommit());
  EXPECT_EQ("Lake", Photo.GetStamps(StampId::PersonalPlace).Get(0).GetText());
  EXPECT_EQ(3, Photo.GetCachedRating());
  EXPECT_EQ(-1, Catalog.FindStringKey(10, "River"));
  EXPECT_EQ(before, ReadBytes(Path));
  EXPECT_TRUE(Photo.GetStamps(StampId::PersonalPlace).SetText("River", 0));
  EXPECT_EQ("1", CountOf("Lake"));
}

TEST_F(StampTest, UnknownTypesAndPhotosGiveListsThatTakeNothing) {
  EXPECT_FALSE(Photo.GetStamps(StampId::Obsolete).IsValid());
  EXPECT_FALSE(Photo.GetStamps(StampId::Obsolete).Add("x"));
  EXPECT_FALSE(CAssetRecord().GetStamps(StampId::Note).Add("x"));
  EXPECT_EQ("Invalid Type", Catalog.GetStampType(StampId::Obsolete).Name);
  CStampList persons = Photo.GetStamps(StampId::Person);
  EXPECT_TRUE(persons.IsValid());
  EXPECT_FALSE(persons.Add("Anna")) << "no operation writes persons";
}

}  // namespace
