#include "FilmstripFixture.h"
#include "ui/kit/Colours.h"
#include "ui/kit/DevicePainter.h"
#include "ui/strip/CellPainter.h"
#include "ui/strip/StripCache.h"

namespace {

class CCellPainting : public CFilmstripFixture {
 protected:
  /// Paints the cells around the photo at `base` as the strip does.
  void Fill(double ratio, int base) {
    Metrics = StripMetrics(ratio);
    Painter.SetPhotoSet(Set.get());
    Painter.SetMetrics(Metrics);
    Cache.SetForm(Metrics, 3);
    const auto paint = [&](CDevicePainter& painter, int slotLeft, int distance) {
      Painter.PaintCell(painter, slotLeft + Metrics.SeparatorWidth, base + distance, -1);
    };
    Cache.Extend(2, CacheSide::Before, paint);
    Cache.Extend(3, CacheSide::After, paint);
    Cache.Extend(1, CacheSide::Before, paint);
  }
  int LeftOf(int distance) const {
    return Cache.GetRun().FindSlot(distance) * Metrics.Pitch + Metrics.SeparatorWidth;
  }
  QColor At(int x, int y) const { return Cache.GetImage().pixelColor(x, y); }
  QImage Slot(int distance) const {
    return Cache.GetImage().copy(LeftOf(distance) - Metrics.SeparatorWidth, 0,
                                 Metrics.Pitch + Metrics.SeparatorWidth, Metrics.Height);
  }

  StripMetrics Metrics;
  CCellPainter Painter{[](const std::string& folder) { return folder; }};
  CStripCache Cache;
};

bool IsHue(QColor colour, QColor wanted) {
  return colour.saturation() > 200 && std::abs(colour.hue() - wanted.hue()) < 6;
}

}  // namespace

TEST_F(CCellPainting, EdgesAndPicturesFallOnWholePixelsAtAnyRatio) {
  Begin(9);
  for (const double ratio : {1.0, 1.5, 2.0}) {
    Fill(ratio, 4);
    for (int distance = -3; distance < 3; ++distance) {
      const int left = LeftOf(distance);
      const int middle = left + Metrics.FrameWidth / 2;
      EXPECT_EQ(At(middle, 0), QColor(222, 222, 222));
      EXPECT_EQ(At(middle, Metrics.Scaled(2) - 1), QColor(222, 222, 222));
      EXPECT_EQ(At(middle, Metrics.Scaled(2)), QColor(205, 205, 205));
      EXPECT_EQ(At(middle, Metrics.FrameTop), colours::kCell);
      EXPECT_EQ(At(middle, Metrics.FrameBottom - 1), colours::kCell);
      EXPECT_EQ(At(middle, Metrics.FrameBottom), QColor(132, 132, 132));
      EXPECT_EQ(At(middle, Metrics.Height - 1), QColor(60, 60, 60));

      const QRect box = Metrics.ThumbnailBoxAt(left);
      const QColor hue = HueOf(4 + distance);
      EXPECT_TRUE(IsHue(At(box.left(), box.center().y()), hue)) << ratio;
      EXPECT_TRUE(IsHue(At(box.right(), box.center().y()), hue)) << ratio;
      EXPECT_FALSE(IsHue(At(box.right() + 1, box.center().y()), hue)) << "the shadow";
      EXPECT_EQ(At(box.left() - 1, box.center().y()), colours::kCell);
    }
  }
}

TEST_F(CCellPainting, CellIsTheSameWhereverAndWhenItIsPainted) {
  Begin(9);
  Set->SetSort(SortKind::Month, false);
  Set->Rebuild();
  Fill(1.5, 4);
  const QImage here = Slot(-1);
  Fill(1.5, 2);
  EXPECT_EQ(Slot(1), here) << "one is painted first and moved, the other painted last";
}

TEST_F(CCellPainting, SeparatorsTellGroupsAndTheSetsEnds) {
  Begin(9);
  Set->SetSort(SortKind::Month, false);  // three months of three photos
  Set->Rebuild();
  Fill(1.0, 3);
  const auto separator = [&](int distance) {
    return Cache.GetImage().copy(LeftOf(distance) - Metrics.SeparatorWidth, 0, Metrics.SeparatorWidth,
                                 Metrics.Height);
  };
  EXPECT_EQ(separator(-1), separator(1));
  EXPECT_EQ(separator(2), separator(-2));
  EXPECT_NE(separator(0), separator(1)) << "a month begins";
  EXPECT_NE(separator(-3), separator(-2)) << "the set begins";
  EXPECT_NE(separator(-3), separator(0));

  // Beside the film there is nothing of it.
  Fill(1.0, 0);
  EXPECT_FALSE(HoldsInk(Cache.GetImage(), {0, 0, LeftOf(0) - Metrics.SeparatorWidth, Metrics.Height},
                        colours::kWindow));
  Fill(1.0, 8);
  const int end = LeftOf(1);
  EXPECT_TRUE(HoldsInk(Cache.GetImage(),
                       {end - Metrics.SeparatorWidth, 0, Metrics.SeparatorWidth, Metrics.Height},
                       colours::kWindow));
  EXPECT_FALSE(HoldsInk(Cache.GetImage(), {end, 0, Metrics.Pitch, Metrics.Height}, colours::kWindow));
}

TEST_F(CCellPainting, PhotoWithoutAThumbnailShowsItsNameInstead) {
  Begin(5);
  Thumbnails.StoreBytes(IdAt(0), {});
  const std::vector<std::uint8_t> damaged(500, 0xAA);
  Thumbnails.StoreBytes(IdAt(1), damaged);
  Thumbnails.Remove(IdAt(2));
  Fill(1.5, 2);
  for (int distance = -2; distance <= 0; ++distance) {
    const QRect box = Metrics.ThumbnailBoxAt(LeftOf(distance));
    EXPECT_TRUE(
        HoldsInk(Cache.GetImage(), QRect(box.x(), box.center().y() - 9, box.width(), 18), colours::kCell));
    EXPECT_TRUE(
        HoldsInk(Cache.GetImage(), QRect(box.x(), box.center().y() + 9, box.width(), 18), colours::kCell));
    EXPECT_FALSE(HoldsInk(Cache.GetImage(), QRect(box.x(), box.y(), box.width(), 40), colours::kCell));
  }
}

TEST_F(CCellPainting, LabelsNameThePlaceInTheOrder) {
  Begin(2);
  AddPhotos(0);
  Catalog.AdvanceRoll();
  for (int i = 0; i < 24; ++i) Catalog.AddAsset("/roll/R" + std::to_string(100 + i) + ".b.jpg");
  Catalog.AdvanceRoll();
  Catalog.AddAsset("/roll/Z.jpg");
  const auto label = [&](SortKind kind, int index, bool descending = false) {
    Set->SetSort(kind, descending);
    Set->Rebuild();
    return GetGroupLabel(*Set, index, [](const std::string& folder) { return "in " + folder; });
  };
  EXPECT_EQ(label(SortKind::None, 0), "");
  EXPECT_EQ(label(SortKind::Month, 26), "Jan 2, 2003");
  EXPECT_EQ(label(SortKind::Folder, 0), "in /nowhere/");
  EXPECT_EQ(label(SortKind::Title, 2), "R100.b");
  EXPECT_EQ(label(SortKind::Rating, 0), "Not rated");
  EXPECT_EQ(label(SortKind::Rating, 0, true), "1 star");
  Set->GetAsset(0).GetStamps(StampId::Rating).SetNumber(3, 0);
  EXPECT_EQ(label(SortKind::Rating, 0, true), "3 stars");
  EXPECT_EQ(label(SortKind::Roll, 99), "");

  // The rolls' photos have numbers from 0 on.
  const std::string roll = "Roll " + std::to_string(Set->GetAsset(5).GetRollID() + 1);
  EXPECT_EQ(label(SortKind::Roll, 2), roll + " - 1 of 24");
  EXPECT_EQ(label(SortKind::Roll, 4), roll + " - 3 of 24");
  EXPECT_EQ(label(SortKind::Roll, 25), roll + " - 24 of 24");
  EXPECT_TRUE(label(SortKind::Roll, 26).ends_with(" - 1 of 1"));
  Set->RemoveAt(26);
  EXPECT_EQ(GetGroupLabel(*Set, 4, {}), roll + " - 3 of 24") << "in the last roll, too";
}
