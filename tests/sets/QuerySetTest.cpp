#include "sets/GroupKey.h"
#include "sets/QuerySet.h"
#include "sets/SetFixture.h"

namespace {

using QuerySetTest = CSetFixture;

TEST_F(QuerySetTest, EachKindPicksItsPhotosAndFollowsThemWithARebuild) {
  CQuerySet available(&Catalog, SetKind::Available), all(&Catalog, SetKind::All);
  CQuerySet toEmail(&Catalog, SetKind::ToEmail), toPrint(&Catalog, SetKind::ToRemotePrint);
  CQuerySet deleted(&Catalog, SetKind::Deleted);
  Catalog.FindAssetById(2).SetMissing(MissingState::Gone);
  Catalog.FindAssetById(3).SetMissing(MissingState::FolderRemoved);
  for (const std::int32_t id : {2, 4}) Catalog.FindAssetById(id).SetFlag(PhotoFlag::Tossed, true);
  for (const std::int32_t id : {3, 5}) Catalog.FindAssetById(id).SetFlag(PhotoFlag::ToEmail, true);
  for (const std::int32_t id : {2, 4, 6}) Catalog.FindAssetById(id).SetFlag(PhotoFlag::ToRemotePrint, true);
  EXPECT_EQ(10, available.GetCount()) << "a set changes when it is rebuilt";
  for (CQuerySet* set : {&available, &all, &toEmail, &toPrint, &deleted}) set->Rebuild();
  EXPECT_EQ((Ids{1, 5, 6, 7, 8, 9, 10}), IdsOf(available));
  EXPECT_EQ((Ids{1, 2, 3, 4, 5, 6, 7, 8, 9, 10}), IdsOf(all));
  EXPECT_EQ((Ids{5}), IdsOf(toEmail));
  EXPECT_EQ((Ids{4, 6}), IdsOf(toPrint)) << "a photo in the trash can still be in a work list";
  EXPECT_EQ((Ids{2, 4}), IdsOf(deleted)) << "a missing photo stays in the trash";

  EXPECT_EQ("Available photos", available.GetName());
  EXPECT_EQ("Unknown set of photos", toPrint.GetName());
  available.SetName("Mine");
  EXPECT_EQ("Mine", available.GetName());
}

TEST_F(QuerySetTest, AnInvalidSetAnswersNothing) {
  CQuerySet withoutCatalog(nullptr, SetKind::All), withoutKind(&Catalog, SetKind::Invalid);
  for (CQuerySet* set : {&withoutCatalog, &withoutKind}) {
    set->Rebuild();
    EXPECT_FALSE(set->IsValid());
    EXPECT_EQ(0, set->GetCount());
    EXPECT_EQ(-1, set->IndexOf(1));
    EXPECT_FALSE(set->SetSort(SortKind::Month, false));
    EXPECT_EQ(-1, set->GetNextGroupStart(0));
    EXPECT_EQ("Invalid set", set->GetName());
    set->SetGuest(4);
    EXPECT_EQ(1, set->GetCount());
    EXPECT_EQ(-1, set->GetAssetId(0));
  }
}

TEST_F(QuerySetTest, SortsRunUpwardsWithTiesInTheOrderOfImport) {
  EXPECT_EQ((Ids{1, 2, 3, 4, 5, 6, 7, 8, 9, 10}), Sorted(SortKind::None));
  // By date, within a moment by rating.
  EXPECT_EQ((Ids{8, 1, 2, 3, 9, 7, 4, 5, 6, 10}), Sorted(SortKind::Month));
  EXPECT_EQ((Ids{10, 8, 9, 1, 2, 3, 7, 4, 5, 6}), Sorted(SortKind::Folder));
  EXPECT_EQ((Ids{10, 7, 5, 2, 3, 8, 6, 1, 9, 4}), Sorted(SortKind::Title));
  EXPECT_EQ((Ids{1, 2, 3, 4, 5, 6, 8, 7, 9, 10}), Sorted(SortKind::Roll));
  // From four stars down, within a rating from the newest photo back.
  EXPECT_EQ((Ids{4, 5, 3, 7, 1, 9, 6, 10, 2, 8}), Sorted(SortKind::Rating, true));
  CQuerySet set(&Catalog, SetKind::Available);
  EXPECT_FALSE(set.SetSort(static_cast<SortKind>(6), false));
  EXPECT_EQ(SortKind::None, set.GetSortKind());
  Add("photos2/early.jpg", Day(2001, 1, 1, 0), 0);
  Add("Photos2/late.jpg", Day(2004, 1, 1, 0), 0);
  EXPECT_EQ((Ids{10, 8, 9, 1, 2, 3, 7, 4, 5, 6, 12, 11}), Sorted(SortKind::Folder))
      << "folders that differ in case are two";
}

TEST_F(QuerySetTest, GroupsAreRunsOfEqualKeys) {
  CQuerySet set(&Catalog, SetKind::Available);
  EXPECT_FALSE(set.IsGrouped());
  EXPECT_FALSE(set.IsGroupStart(0));
  EXPECT_EQ(-1, set.GetPreviousGroupStart(3));

  const auto startsBy = [&set](SortKind kind, bool descending) {
    set.SetSort(kind, descending);
    set.Rebuild();
    return StartsOf(set);
  };
  // The last second of August and the first of September are two groups, so is a month a year later.
  EXPECT_EQ((Ids{8, 1, 2, 4, 10}), startsBy(SortKind::Month, false));
  EXPECT_EQ((Ids{10, 8, 1, 7, 4, 6}), startsBy(SortKind::Folder, false));
  EXPECT_EQ((Ids{10, 5, 2, 6, 1, 9}), startsBy(SortKind::Title, false));
  EXPECT_EQ((Ids{4, 7, 9, 6, 10}), startsBy(SortKind::Rating, true));
  EXPECT_EQ((Ids{1, 4, 8}), startsBy(SortKind::Roll, false));

  // Back in months: 8 | 1 | 2 3 9 7 | 4 5 6 | 10.
  startsBy(SortKind::Month, false);
  const Ids next{1, 2, 6, 6, 6, 6, 9, 9, 9, 9}, previous{0, 0, 1, 2, 2, 2, 2, 6, 6, 6};
  for (int i = 0; i < 10; ++i) {
    EXPECT_EQ(next[static_cast<std::size_t>(i)], set.GetNextGroupStart(i)) << i;
    EXPECT_EQ(previous[static_cast<std::size_t>(i)], set.GetPreviousGroupStart(i)) << i;
  }
  EXPECT_EQ(0, set.GetNextGroupStart(-1));
  EXPECT_EQ(0, set.GetPreviousGroupStart(-1));
  EXPECT_TRUE(set.IsGroupEnd(5));
  EXPECT_FALSE(set.IsGroupEnd(6));
  EXPECT_TRUE(set.IsGroupEnd(9));

  // The guest is shown, but is in no group.
  set.SetGuest(1);
  EXPECT_EQ(11, set.GetCount());
  EXPECT_EQ(1, set.GetAssetId(10));
  EXPECT_EQ(10, set.IndexOf(1));
  EXPECT_EQ(9, set.GetNextGroupStart(8));
  EXPECT_EQ(9, set.GetNextGroupStart(10));
  EXPECT_TRUE(set.IsGroupEnd(10));
  set.Rebuild();
  EXPECT_EQ(1, set.GetGuest());
  set.RemoveAt(10);
  EXPECT_EQ(10, set.GetCount());
  set.RemoveAt(0);
  set.RemoveAt(99);
  EXPECT_EQ((Ids{1, 2, 3, 9, 7, 4, 5, 6, 10}), IdsOf(set));
  EXPECT_TRUE(Catalog.FindAssetById(8).IsValid());

  // A new rating regroups with the next rebuild.
  startsBy(SortKind::Rating, true);
  Catalog.FindAssetById(4).GetStamps(StampId::Rating).SetNumber(1, 0);
  EXPECT_EQ((Ids{4, 7, 9, 6, 10}), StartsOf(set));
  set.Rebuild();
  EXPECT_EQ((Ids{5, 7, 9, 6, 10}), StartsOf(set));

  set.SetRatingFilter(RatingFilterCode::TwoStars);
  set.Rebuild();
  EXPECT_EQ(0, set.GetNextGroupStart(0)) << "one member";
  set.SetTextFilter("no such photo");
  set.Rebuild();
  EXPECT_EQ(-1, set.GetNextGroupStart(-1));
}

TEST_F(QuerySetTest, TitlesAreOrderedAndGroupedByTheSameLetters) {
  for (const char* name : {"Äpfel", "echo", "Éclair", "A\xCC\x88sop", "äpfel 2"}) {
    Add("Photos/fr/" + std::string(name) + ".jpg", Day(2004, 1, 1, 0), 0);
  }
  const Ids titles{10, 7, 5, 15, 11, 14, 2, 3, 8, 12, 13, 6, 1, 9, 4};
  EXPECT_EQ(titles, Sorted(SortKind::Title));
  EXPECT_EQ(Ids(titles.rbegin(), titles.rend()), Sorted(SortKind::Title, true));
  CQuerySet set(&Catalog, SetKind::Available);
  set.SetSort(SortKind::Title, false);
  set.Rebuild();
  EXPECT_EQ((Ids{10, 5, 2, 12, 13, 6, 1, 9}), StartsOf(set));
}

TEST_F(QuerySetTest, GroupKeysTellMonthsFoldersAndInitialsApart) {
  EXPECT_EQ(102 * 12 + 7, GetMonthNumber(Day(2002, 8, 31, 23)));
  EXPECT_EQ(102 * 12 + 8, GetMonthNumber(Day(2002, 9, 1, 0)));
  CGroupKeyFinder finder(SortKind::Month);
  for (int i = 1; i <= Catalog.GetAssets().GetSize(); ++i) {
    const CAssetRecord record = Catalog.FindAssetById(i);
    EXPECT_EQ(GetMonthNumber(record.GetCachedDate()), finder.Find(record));
  }
  EXPECT_EQ(~0xcbf43926U, GetCrc32("123456789")) << "the check value, without the final inversion";
  EXPECT_EQ(GetInitial("Über.jpg"), GetInitial("übel"));
  EXPECT_NE(GetInitial("Über.jpg"), GetInitial("Uhr"));
  EXPECT_EQ(GetInitial("\xfc"), GetInitial("\xfc\xff"));
  EXPECT_EQ(0, GetInitial(""));
}

}  // namespace
