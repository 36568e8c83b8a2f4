#include "FilmstripFixture.h"
#include "ui/kit/Colours.h"

namespace {

class CFilmstripSet : public CFilmstripFixture {
 protected:
  void Sort(SortKind kind, bool descending = false) {
    ASSERT_TRUE(Set->SetSort(kind, descending));
    Set->Rebuild();
  }

  bool IsAsEmpty() {
    for (const char* name :
         {"Strip", "LensTop", "LensLeft", "LensRight", "LensBottom", "PushBarLeft", "PushBarRight"}) {
      if (!Find(name).isHidden()) return false;
    }
    return HoldsInk(Painted(Window), {400, 50, 200, 50}, colours::kWindow);
  }
};

}  // namespace

TEST_F(CFilmstripSet, NewSetStartsAtItsFirstPhotoByMonthAtItsLast) {
  AddPhotos(9);
  Set = std::make_unique<CQuerySet>(&Catalog, SetKind::Available);
  Strip.SetPhotoSet(Set.get());
  EXPECT_EQ(Strip.GetCurrentIndex(), 0);
  EXPECT_EQ(Host.Shown, std::vector{IdAt(0)});
  Strip.SetPhotoSet(nullptr);
  EXPECT_EQ(Strip.GetCurrentRecord(), nullptr);
  Sort(SortKind::Month);
  Strip.SetPhotoSet(Set.get());
  EXPECT_EQ(Strip.GetCurrentIndex(), 8);
}

TEST_F(CFilmstripSet, RefreshKeepsThePhotoOrGoesWhereItIsTold) {
  Begin(20, 7);
  const std::int32_t photo = IdAt(7);
  Sort(SortKind::Rating, true);
  Strip.Refresh(CFilmstrip::kKeepPhoto);
  EXPECT_EQ(IdAt(Strip.GetCurrentIndex()), photo);
  EXPECT_EQ(Host.Shown, std::vector{photo}) << "told even so, for all around it may have changed";

  Strip.Refresh(12);
  EXPECT_EQ(Strip.GetCurrentIndex(), 12);
  Strip.Refresh(CFilmstrip::kStartOfSet);
  EXPECT_EQ(Strip.GetCurrentIndex(), 0);
  Sort(SortKind::Month);
  Strip.Refresh(CFilmstrip::kStartOfSet);
  EXPECT_EQ(Strip.GetCurrentIndex(), 19);

  // A photo that has left the set is no longer kept, nor is a position that it no longer has.
  Sort(SortKind::None);
  Strip.Refresh(10);
  Set->RemoveAt(10);
  Strip.Refresh(CFilmstrip::kKeepPhoto);
  EXPECT_EQ(Strip.GetCurrentIndex(), 0);
  Strip.Refresh(500);
  EXPECT_EQ(Strip.GetCurrentIndex(), 0);
}

TEST_F(CFilmstripSet, RefreshRightAfterAMoveKeepsThePhotoMovedTo) {
  Begin(20, 7);
  Strip.MoveBy(1);  // still sliding
  const std::int32_t photo = IdAt(8);
  Set->RemoveAt(0);
  Strip.Refresh(CFilmstrip::kKeepPhoto);
  EXPECT_EQ(Strip.GetCurrentIndex(), 7);
  EXPECT_EQ(Host.Shown, std::vector{photo});
}

TEST_F(CFilmstripSet, RemovingThePhotoGoesToItsNeighbour) {
  Begin(3, 1);
  const std::int32_t last = IdAt(2);
  const std::int32_t first = IdAt(0);
  Strip.RemoveCurrent();
  EXPECT_EQ(Host.Shown.back(), last);
  Strip.RemoveCurrent();
  EXPECT_EQ(Host.Shown.back(), first) << "the one before the last";
  EXPECT_FALSE(IsAsEmpty());
  Strip.RemoveCurrent();
  EXPECT_EQ(Host.Shown.back(), -1);
  EXPECT_TRUE(IsAsEmpty());
  Strip.RemoveCurrent();
  EXPECT_EQ(Host.Shown.size(), 3u);
}

TEST_F(CFilmstripSet, RemovedGuestIsNoGuestAnyMore) {
  Begin(5);
  Set->RemoveAt(4);
  Set->SetGuest(Catalog.FindAssetByPath("/nowhere/IMG_4.jpg").GetAssetID());
  Strip.Refresh(4);
  Strip.RemoveCurrent();
  EXPECT_EQ(Set->GetGuest(), -1);
  EXPECT_EQ(Strip.GetCurrentIndex(), 3);
}

TEST_F(CFilmstripSet, EmptySetSaysSoAndComesBack) {
  Begin(5, 2);
  Strip.StartSlideShow();
  Strip.MoveBy(1);
  Set->SetTextFilter("no such text");
  Set->Rebuild();
  Strip.Refresh(CFilmstrip::kKeepPhoto);
  EXPECT_EQ(Host.Shown.back(), -1);
  EXPECT_EQ(Strip.GetCurrentRecord(), nullptr);
  EXPECT_TRUE(IsAsEmpty());
  EXPECT_FALSE(Strip.IsSlideShowRunning());
  EXPECT_FALSE(Strip.StartSlideShow());
  QTest::qWait(250);
  EXPECT_EQ(Host.Shown.back(), -1);

  Set->ClearTextFilter();
  Set->Rebuild();
  Strip.Refresh(CFilmstrip::kKeepPhoto);
  EXPECT_FALSE(IsAsEmpty());
  EXPECT_EQ(Host.Shown.back(), IdAt(0));
}

TEST_F(CFilmstripSet, ChangedPhotoIsPaintedAnewWhenTheStripIsTold) {
  Begin(5, 2);
  const auto centre = [&] { return Painted(Strip).pixelColor(CellPoint(0)); };
  const std::string jpeg = MakePhoto(140, 105, Qt::white);
  Thumbnails.StoreBytes(IdAt(2), std::vector<std::uint8_t>(jpeg.begin(), jpeg.end()));
  EXPECT_GT(centre().saturation(), 200);
  Strip.RedrawCurrentThumbnail();
  EXPECT_LT(centre().saturation(), 10);

  const QRect marks = Strip.GetLayout().GetMetrics().MarksAt(Strip.GetLayout().GetCellLeft(4));
  const auto paintedMarks = [&] { return Painted(Strip).copy(marks); };
  const QImage off = paintedMarks();
  Set->GetAsset(3).SetFlag(PhotoFlag::ToEmail, true);
  EXPECT_EQ(paintedMarks(), off);
  Strip.RedrawBand(3, 1);
  EXPECT_NE(paintedMarks(), off);

  Sort(SortKind::Rating);
  Strip.Refresh(CFilmstrip::kKeepPhoto);
  const auto label = [&] {
    return Painted(Strip).copy(Strip.GetLayout().GetMetrics().BandLabelAt(Strip.GetLayout().GetCellLeft(3)));
  };
  const QImage twoStars = label();
  Strip.GetCurrentRecord()->GetStamps(StampId::Rating).SetNumber(0, 0);
  const std::int32_t photo = Strip.GetCurrentRecord()->GetAssetID();
  Strip.StampChanged(StampId::Date, photo);
  EXPECT_EQ(label(), twoStars);
  Strip.StampChanged(StampId::Rating, photo);
  EXPECT_NE(label(), twoStars);
}

TEST_F(CFilmstripSet, AssistiveToolsReadThePhotoAndItsPlace) {
  Begin(5, 2);
  EXPECT_EQ(Strip.accessibleDescription(), "3 of 5, IMG_2.jpg");
  EXPECT_EQ(Find("ScrollPosLabel").accessibleName(), "3 of 5");
}
