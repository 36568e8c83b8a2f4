#include "sets/ListPhotoSet.h"
#include "sets/QuerySet.h"
#include "support/CatalogFixture.h"
#include "support/TestJpeg.h"

namespace {

using Ids = std::vector<std::int32_t>;

/// A catalog of some years: nested folders, photos of one moment, months that repeat, three rolls.
class PhotoSetTest : public CCatalogFixture {
 protected:
  PhotoSetTest() {
    // The photos 1 to 10.
    Add("Photos/2002/sunset.jpg", "2002-08-31 23", 3);
    Add("Photos/2002/Beach.jpg", "2002-09-01 00", 0);
    Add("Photos/2002/beach2.jpg", "2002-09-01 00", 4);
    Catalog.AdvanceRoll();
    Add("Photos/Über/Zug.jpg", "2003-08-09 14", 4);
    Add("Photos/Über/ähre.jpg", "2003-08-09 14", 4);
    Add("Photos2/party.jpg", "2003-08-30 09", 1);
    Catalog.AdvanceRoll();
    Add("Photos/2002/Sub/anna.jpg", "2002-09-30 23", 3);
    Add("Photos/fl\xfcgel.jpg", "2001-01-01 00", 0);  // a name in another encoding
    Add("Photos/zebra.jpg", "2002-09-30 23", 2);
    Add("aaa.jpg", "2003-12-31 23", 0);
  }

  void Add(const std::string& name, const char* localTime, std::int32_t rating) {
    std::tm local{};
    ::strptime(localTime, "%Y-%m-%d %H", &local);
    local.tm_isdst = -1;
    AddRow(Root + name, static_cast<std::int32_t>(std::mktime(&local)), rating);
  }

  static Ids IdsOf(const CPhotoSet& set) {
    Ids ids;
    for (int i = 0; i < set.GetCount(); ++i) ids.push_back(set.GetAssetId(i));
    return ids;
  }
  static Ids Rebuilt(CPhotoSet& set) {
    set.Rebuild();
    return IdsOf(set);
  }

  Ids Sorted(SortKind kind) {
    EXPECT_TRUE(Set.SetSort(kind, kind == SortKind::Rating));
    return Rebuilt(Set);
  }

  /// The first photo of each group, as the set stands.
  Ids Starts() const {
    Ids starts;
    for (int i = 0; i < Set.GetCount(); ++i) {
      if (Set.IsGroupStart(i)) starts.push_back(Set.GetAssetId(i));
    }
    return starts;
  }

  const std::string Root = Scratch.GetPath() + "/";
  CQuerySet Set{&Catalog, SetKind::Available};
};

TEST_F(PhotoSetTest, EachKindPicksItsPhotos) {
  Catalog.FindAssetById(2).SetMissing(MissingState::Gone);
  Catalog.FindAssetById(3).SetMissing(MissingState::FolderRemoved);
  for (const std::int32_t id : {2, 4}) Catalog.FindAssetById(id).SetFlag(PhotoFlag::Tossed, true);
  for (const std::int32_t id : {3, 5}) Catalog.FindAssetById(id).SetFlag(PhotoFlag::ToEmail, true);
  for (const std::int32_t id : {2, 4, 6}) Catalog.FindAssetById(id).SetFlag(PhotoFlag::ToRemotePrint, true);
  EXPECT_EQ(Rebuilt(Set), (Ids{1, 5, 6, 7, 8, 9, 10}));
  EXPECT_EQ(IdsOf(CQuerySet(&Catalog, SetKind::All)).size(), 10U);
  EXPECT_EQ(IdsOf(CQuerySet(&Catalog, SetKind::ToEmail)), (Ids{5}));
  EXPECT_EQ(IdsOf(CQuerySet(&Catalog, SetKind::ToRemotePrint)), (Ids{4, 6})) << "one is in the trash too";
  EXPECT_EQ(IdsOf(CQuerySet(&Catalog, SetKind::Deleted)), (Ids{2, 4})) << "one is missing";
  EXPECT_EQ(CQuerySet(nullptr, SetKind::All).GetAssetId(0), -1);
}

TEST_F(PhotoSetTest, SortsRunUpwardsWithTiesInTheOrderOfImportAndGroupsAreRunsOfEqualKeys) {
  const std::tuple<SortKind, Ids, Ids> rows[] = {
      {SortKind::None, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10}, {}},
      {SortKind::Month, {8, 1, 2, 3, 9, 7, 4, 5, 6, 10}, {8, 1, 2, 4, 10}},
      {SortKind::Folder, {10, 8, 9, 1, 2, 3, 7, 4, 5, 6}, {10, 8, 1, 7, 4, 6}},
      {SortKind::Title, {10, 7, 5, 2, 3, 8, 6, 1, 9, 4}, {10, 5, 2, 8, 6, 1, 9}},
      {SortKind::Roll, {1, 2, 3, 4, 5, 6, 8, 7, 9, 10}, {1, 4, 8}},
      // From four stars down, within a rating from the newest photo back.
      {SortKind::Rating, {4, 5, 3, 7, 1, 9, 6, 10, 2, 8}, {4, 7, 9, 6, 10}},
  };
  for (const auto& [kind, photos, starts] : rows) {
    EXPECT_EQ(Sorted(kind), photos);
    EXPECT_EQ(Starts(), starts);
  }
  Catalog.FindAssetById(4).GetStamps(StampId::Rating).SetNumber(1, 0);
  Set.Rebuild();
  EXPECT_EQ(Starts(), (Ids{5, 7, 9, 6, 10})) << "a new rating regroups";

  Add("photos2/early.jpg", "2001-01-01 00", 0);
  Add("Photos2/late.jpg", "2004-01-01 00", 0);
  EXPECT_EQ(Sorted(SortKind::Folder), (Ids{10, 8, 9, 1, 2, 3, 7, 4, 5, 6, 12, 11}))
      << "folders that differ in case are two";
}

TEST_F(PhotoSetTest, TheWayFromGroupToGroup) {
  EXPECT_EQ(Set.GetPreviousGroupStart(3), -1) << "not grouped";
  Sorted(SortKind::Month);  // 8 | 1 | 2 3 9 7 | 4 5 6 | 10
  const Ids next{1, 2, 6, 6, 6, 6, 9, 9, 9, 9}, previous{0, 0, 1, 2, 2, 2, 2, 6, 6, 6};
  for (int i = 0; i < 10; ++i) {
    EXPECT_EQ(Set.GetNextGroupStart(i), next[static_cast<std::size_t>(i)]) << i;
    EXPECT_EQ(Set.GetPreviousGroupStart(i), previous[static_cast<std::size_t>(i)]) << i;
    EXPECT_EQ(Set.IsGroupEnd(i), i == 0 || i == 1 || i == 5 || i >= 8) << i;
  }
  // The guest is shown, but is in no group.
  Set.SetGuest(1);
  EXPECT_EQ(Rebuilt(Set).back(), 1);
  EXPECT_EQ(Set.IndexOf(1), 10);
  EXPECT_EQ(Set.GetNextGroupStart(10), 9);
  for (const int index : {10, 0, 99}) Set.RemoveAt(index);
  EXPECT_EQ(IdsOf(Set), (Ids{1, 2, 3, 9, 7, 4, 5, 6, 10}));
}

TEST_F(PhotoSetTest, AListKeepsTheUsersOrderItsThumbnailsAndWhatItsFiltersHide) {
  Cache.StoreBytes(3, MakeJpeg({.Width = 30, .Height = 8}));
  CListPhotoSet list(true);
  for (const std::int32_t id : {3, 1, 2, 7}) list.Add(id);
  list.Rebuild();
  list.InsertBefore(9, 1);
  EXPECT_EQ(Rebuilt(list), (Ids{3, 9, 1, 2, 7}));
  list.Move(0, 3);
  EXPECT_EQ(Rebuilt(list), (Ids{9, 1, 3, 2, 7}));
  EXPECT_NE(list.GetThumbnail(2), nullptr);
  list.Add(3);  // a list takes a photo twice
  list.SetRatingFilter(RatingFilterCode::FourStars);
  EXPECT_EQ(Rebuilt(list), (Ids{3, 3}));
  list.RemoveAt(1);
  list.SetRatingFilter(RatingFilterCode::Any);
  EXPECT_EQ(Rebuilt(list), (Ids{9, 1, 3, 2, 7})) << "the second entry is gone, the first has its place";
  Catalog.DeleteAsset(3);
  EXPECT_EQ(list.GetPaths().size(), 4U);
}

TEST_F(PhotoSetTest, FiltersByRatingAndRoll) {
  const std::pair<RatingFilterCode, Ids> rows[] = {
      {RatingFilterCode::FourStars, {3, 4, 5}},
      {RatingFilterCode::NoRating, {2, 8, 10}},
      {RatingFilterCode::ThreeOrBetter, {1, 3, 4, 5, 7}},
      {RatingFilterCode::TwoOrBetter, {1, 3, 4, 5, 7, 9}},
      {RatingFilterCode::OneOrBetter, {1, 3, 4, 5, 6, 7, 9}},
  };
  for (const auto& [code, photos] : rows) {
    Set.SetRatingFilter(code);
    EXPECT_EQ(Rebuilt(Set), photos) << GetRatingFilterText(code);
  }
  Set.SetRollFilter(1, 1);
  EXPECT_EQ(Rebuilt(Set), (Ids{4, 5, 6}));
  Set.SetRollFilter(-1, 0);
  Set.SetRatingFilter(RatingFilterCode::FourStars);
  EXPECT_EQ(Rebuilt(Set), (Ids{3})) << "a photo must pass every filter";
}

TEST_F(PhotoSetTest, FiltersByFolderKnowWholeNamesAndAskTheDiskAboutCase) {
  const auto inFolder = [this](const char* folder) {
    Set.SetFolderFilter(Root + folder);
    return Rebuilt(Set);
  };
  EXPECT_EQ(inFolder("Photos"), (Ids{1, 2, 3, 4, 5, 7, 8, 9}));
  EXPECT_EQ(inFolder("PHOTOS/2002"), (Ids{})) << "a disk that is away tells nothing";
  Scratch.File("PHOTOS/2002/x");
  EXPECT_EQ(inFolder("PHOTOS/2002/"), (Ids{1, 2, 3, 7})) << "renamed";
  Scratch.File("Photos/2002/x");
  EXPECT_EQ(inFolder("PHOTOS/2002"), (Ids{})) << "the disk holds both";
}

TEST_F(PhotoSetTest, AnyWordInNameOrAnnotationFindsAPhoto) {
  Catalog.FindAssetById(8).GetStamps(StampId::Event).Add("Beach day");
  Catalog.FindAssetById(9).GetStamps(StampId::Note).Add("At the PARTY, über alles");
  for (const char* text : {"boats", "Lake"}) Catalog.FindAssetById(10).GetStamps(StampId::Thing).Add(text);
  const std::pair<const char*, Ids> rows[] = {
      {"sun  beach", {1, 2, 3, 8}},
      {" art ", {6, 9}},
      {"ÜBER", {9}},          // folders are not searched
      {"2002", {}},           // nor are dates
      {"\"beach day\"", {}},  // quotes mean nothing
      {"gel", {8}},
      {"   ", {1, 2, 3, 4, 5, 6, 7, 8, 9, 10}},
      {"boats", {10}},
  };
  for (const auto& [text, photos] : rows) {
    Set.SetTextFilter(text);
    EXPECT_EQ(Rebuilt(Set), photos) << text;
  }
  Catalog.FindAssetById(1).GetStamps(StampId::PersonalPlace).Add("where the Boats are");
  EXPECT_EQ(Rebuilt(Set), (Ids{1, 10})) << "each rebuild reads the annotations anew";

  EXPECT_FALSE(CTextMatcher("\xbc").TextHits("Gr\xc3\xbc")) << "the second byte of a letter";
  EXPECT_TRUE(CTextMatcher("zürich").TextHits("Zu\xcc\x88rich")) << "in decomposed letters";
}

}  // namespace
