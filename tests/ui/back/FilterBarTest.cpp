#include <gmock/gmock.h>

#include "base/Settings.h"
#include "support/FileSizeLimit.h"
#include "ui/back/FilterBarFixture.h"
#include "ui/back/FilterBarLayout.h"
#include "ui/kit/DropList.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using FilterBar = CFilterBarFixture;

/// Three photos with one, three and four stars.
class RatedPhotos : public CFilterBarFixture {
 protected:
  RatedPhotos() {
    for (const char* name : {"Pictures/ash.jpg", "Pictures/birch.jpg", "Pictures/cedar.jpg"}) AddPhoto(name);
    Start();
    Rate("Pictures/ash.jpg", 1);
    Rate("Pictures/birch.jpg", 3);
    Rate("Pictures/cedar.jpg", 4);
  }

  void PickRating(RatingFilterCode code) { Pick(Bar->GetRatingControl(), static_cast<int>(code)); }
  void PickSort(SortId id) { Pick(Bar->GetSortControl(), static_cast<int>(id)); }
  std::string GetShownText() const { return Bar->GetFindControl().GetModel().GetText(); }
};

}  // namespace

TEST(FilterBarLayout, RowsStandBelowEachOther) {
  const FilterBarLayout layout = LayOutFilterBar(48, 22);
  EXPECT_EQ(GetFilterBarHeight(22), 104);
  EXPECT_EQ(layout.Controls[0], QRect(68, 8, 179, 22));
  EXPECT_EQ(layout.Controls[3], QRect(68, 77, 179, 22));
  EXPECT_EQ(layout.Labels[1].topLeft(), QPoint(10, 33));
  EXPECT_EQ(layout.Labels[1].width(), 48);
}

TEST_F(RatedPhotos, RatingNarrowsTheSet) {
  PickRating(RatingFilterCode::ThreeOrBetter);
  EXPECT_THAT(Names(), ElementsAre("birch.jpg", "cedar.jpg"));
  EXPECT_THAT(Host->Refreshed, ElementsAre(StripPosition::KeepPhoto));
  PickRating(RatingFilterCode::NoRating);
  EXPECT_THAT(Names(), IsEmpty());
  Set->SetGuest(1);
  PickRating(RatingFilterCode::Any);
  EXPECT_EQ(Set->GetGuest(), -1);
  EXPECT_EQ(Set->GetCount(), 3);
  EXPECT_EQ(Host->Prepared, 0) << "nothing is searched";
}

TEST_F(RatedPhotos, TypedTextNarrowsTheSetAndIsRemembered) {
  Find("birch ash");
  EXPECT_THAT(Names(), ElementsAre("ash.jpg", "birch.jpg"));
  EXPECT_TRUE(Window.hasFocus());
  Find("cedar");
  EXPECT_THAT(Names(), ElementsAre("cedar.jpg"));
  Pick(Bar->GetFindControl(), static_cast<int>(FindItem::FirstHistory) + 1);
  EXPECT_EQ(GetShownText(), "birch ash");
  EXPECT_THAT(Names(), ElementsAre("ash.jpg", "birch.jpg")) << "an earlier text, picked";
  const CStringHistory texts(Catalog, "TextFilterHistory", 8, false);
  EXPECT_EQ(texts.Get(0), "birch ash");
  EXPECT_EQ(texts.Get(1), "cedar");
  Pick(Bar->GetFindControl(), static_cast<int>(FindItem::Anything));
  EXPECT_EQ(Set->GetCount(), 3);
  for (const char* text : {"1", "2", "3", "4", "5", "6", "7"}) Find(text);
  EXPECT_EQ(CStringHistory(Catalog, "TextFilterHistory", 0, false).Count(), 8) << "no more are kept";
}

TEST_F(RatedPhotos, TypedTextNarrowsTheSetAlsoIfItCannotBeRemembered) {
  const std::size_t all = Names().size();
  {
    const CFileSizeLimit fullDisk(0);
    Find("nothing is called so");
  }
  EXPECT_EQ(Messages.Shown.size(), 1U);
  EXPECT_TRUE(Names().empty()) << "the strip shows what the control says";
  Bar->ClearTextFilter();
  Set->Rebuild();
  EXPECT_EQ(Names().size(), all);
}

TEST_F(RatedPhotos, EscapeForgetsWhatWasTyped) {
  Find("cedar");
  Forget();
  QTest::keyClicks(OpenFind(), "ash");
  EXPECT_TRUE(Bar->IsEditing());
  Bar->CancelEdit();
  EXPECT_FALSE(Bar->IsEditing());
  EXPECT_TRUE(Window.hasFocus());
  EXPECT_EQ(GetShownText(), "cedar");
  EXPECT_THAT(Names(), ElementsAre("cedar.jpg"));
  EXPECT_THAT(Host->Refreshed, IsEmpty());
  Find("birch");
  EXPECT_THAT(Names(), ElementsAre("birch.jpg")) << "the next edit counts again";
}

TEST_F(RatedPhotos, SortsByThePickedOrderAndStoresIt) {
  PickSort(SortId::Rating);
  EXPECT_THAT(Names(), ElementsAre("cedar.jpg", "birch.jpg", "ash.jpg")) << "four stars first";
  EXPECT_EQ(GetSettings()->GetInt("Sort"), 221);
  EXPECT_THAT(Host->Refreshed, ElementsAre(StripPosition::KeepPhoto));
  PickSort(SortId::Title);
  EXPECT_THAT(Names(), ElementsAre("ash.jpg", "birch.jpg", "cedar.jpg"));
  EXPECT_EQ(Set->GetSortKind(), SortKind::Title);
  EXPECT_FALSE(Set->IsDescending());
  Forget();
  Bar->SelectSort(SortId::Folder, true);
  EXPECT_EQ(SelectedSort(), 232);
  EXPECT_THAT(Host->Refreshed, ElementsAre(StripPosition::StartOfSet));
  Bar->SelectSort(static_cast<SortId>(999), true);
  EXPECT_EQ(SelectedSort(), 232) << "an unknown one sorts as before";
  EXPECT_EQ(GetSettings()->GetInt("Sort"), 999);
}

TEST_F(RatedPhotos, NewestRollShowsWithoutTextAndRating) {
  AddPhoto("Pictures/more/dogwood.jpg");
  AddPhoto("Pictures/more/elm.jpg");
  Search.SearchFolder(Pictures(), true);
  ASSERT_EQ(Catalog.GetCurrentRollID(), 1);
  Find("ash");
  PickRating(RatingFilterCode::FourStars);
  Forget();
  PickSort(SortId::Roll);
  EXPECT_EQ(SelectedSort(), 234);
  EXPECT_EQ(GetSettings()->GetInt("Sort"), 234);
  EXPECT_EQ(Set->GetCount(), 5);
  EXPECT_EQ(GetShownText(), "");
  EXPECT_EQ(Host->MovedTo, 3) << "the first photo of the last roll";
  EXPECT_EQ(Bar->GetRatingControl().GetModel().GetSelectedId(), static_cast<int>(RatingFilterCode::Any));
  PickSort(SortId::Month);
  QTest::keyClicks(OpenFind(), "ash");
  PickSort(SortId::Roll);
  EXPECT_FALSE(Bar->IsEditing());
  EXPECT_EQ(Set->GetCount(), 5) << "a text that is being typed goes too";
}

TEST_F(FilterBar, FirstOrderDependsOnTheRolls) {
  Start();
  EXPECT_EQ(Catalog.GetCurrentRollID(), -1);
  EXPECT_EQ(SelectedSort(), 234);
  EXPECT_EQ(Set->GetSortKind(), SortKind::Roll);
  EXPECT_EQ(Host->MovedTo, -1) << "there is no photo to go to";
  AddPhoto("Pictures/a.jpg");
  Search.SearchFolder(Pictures(), true);
  Start();
  EXPECT_EQ(Catalog.GetCurrentRollID(), 0);
  EXPECT_EQ(SelectedSort(), 226);
  EXPECT_EQ(Set->GetSortKind(), SortKind::Month);
  AddPhoto("Pictures/b.jpg");
  Search.SearchFolder(Pictures(), true);
  Start();
  EXPECT_EQ(SelectedSort(), 234);
}

TEST_F(FilterBar, StoredOrderComesBack) {
  AddPhoto("Pictures/a.jpg");
  Search.SearchFolder(Pictures(), true);
  GetSettings()->SetInt("Sort", 233);
  Start();
  EXPECT_EQ(SelectedSort(), 233);
  EXPECT_EQ(Set->GetSortKind(), SortKind::Title);
  GetSettings()->SetInt("Sort", 234);
  Start();
  EXPECT_EQ(SelectedSort(), 234);
}

TEST_F(FilterBar, FirstFolderShowsByItselfOnce) {
  AddPhoto("Pictures/a.jpg");
  AddPhoto("Other/b.jpg");
  Search.SearchFolder(Pictures(), true);
  Search.SearchFolder(Other("Other"), true);
  Catalog.SetCurrentPhotoFolder("/nowhere");
  Set.emplace(&Catalog, SetKind::Available);
  Host.emplace(Catalog, *Set, Window);
  {
    CFilterBar bar(*Host, &Panel, std::make_unique<CScriptedChooser>());
    bar.SelectFolder("/nowhere");
    EXPECT_THAT(Host->Refreshed, IsEmpty()) << "the control has no such folder";
    QCoreApplication::processEvents();
    EXPECT_THAT(Names(), ElementsAre("a.jpg")) << "the pictures folder";
    EXPECT_EQ(Catalog.GetCurrentPhotoFolder(), Pictures());
  }
  Forget();
  CFilterBar bar(*Host, &Panel, std::make_unique<CScriptedChooser>());
  bar.SelectFolder("");
  EXPECT_EQ(Set->GetCount(), 2);
  QCoreApplication::processEvents();
  EXPECT_EQ(Host->Refreshed.size(), 1u) << "not again";
}

TEST_F(FilterBar, PaintsItsLabelsAndControls) {
  Start();
  const QImage image = Painted(*Bar);
  EXPECT_EQ(image.pixelColor(40, 4), QColor(231, 233, 235));
  const FilterBarLayout layout = LayOutFilterBar(Bar->GetSortControl().x() - 20, CDropControl::GetHeight());
  for (const QRect& label : layout.Labels) EXPECT_TRUE(HoldsInk(image, label, QColor(231, 233, 235)));
  EXPECT_EQ(Bar->GetFindControl().accessibleName(), "Find");
  EXPECT_EQ(Bar->GetFolderControl().accessibleDescription(), "My Pictures");
}
