#include "imaging/JpegImage.h"
#include "sets/ListPhotoSet.h"
#include "sets/SetFixture.h"
#include "support/TestJpeg.h"

namespace {

class ListPhotoSetTest : public CSetFixture {
 protected:
  void SetUp() override {
    for (const std::int32_t id : {1, 2, 3}) StoreThumbnail(id, static_cast<unsigned>(id) * 10);
    for (const std::int32_t id : {3, 1, 2}) List.Add(id);
    List.Rebuild();
  }

  void StoreThumbnail(std::int32_t id, unsigned width) {
    const std::string jpeg = MakeJpeg(width, 8, 1, 2, 3);
    Cache.StoreBytes(id, std::vector<std::uint8_t>(jpeg.begin(), jpeg.end()));
  }

  Ids Rebuilt() {
    List.Rebuild();
    return IdsOf(List);
  }

  int WidthAt(int index) const {
    CImage* const thumbnail = List.GetThumbnail(index);
    return thumbnail != nullptr ? thumbnail->GetNaturalSize().Width : -1;
  }

  CListPhotoSet List{true};
};

TEST_F(ListPhotoSetTest, KeepsTheUsersOrderAndItsThumbnails) {
  EXPECT_EQ((Ids{3, 1, 2}), IdsOf(List));
  EXPECT_EQ(30, WidthAt(0));
  List.Add(7);
  EXPECT_EQ(3, List.GetCount()) << "a list changes when it is rebuilt";
  EXPECT_EQ((Ids{3, 1, 2, 7}), Rebuilt());
  EXPECT_EQ(-1, WidthAt(3)) << "no thumbnail";
  List.InsertBefore(9, 1);
  List.InsertBefore(9, 8);
  EXPECT_EQ((Ids{3, 9, 1, 2, 7}), Rebuilt());
  List.Move(0, 3);
  EXPECT_EQ((Ids{9, 1, 3, 2, 7}), Rebuilt());
  EXPECT_EQ(30, WidthAt(2));
  List.Move(4, 0);
  EXPECT_EQ((Ids{7, 9, 1, 3, 2}), Rebuilt());
  List.Move(1, 5);
  List.Move(2, 2);
  EXPECT_EQ((Ids{7, 9, 1, 3, 2}), Rebuilt());
  List.RemoveAt(2);
  EXPECT_EQ((Ids{7, 9, 3, 2}), IdsOf(List));
  EXPECT_EQ((Ids{7, 9, 3, 2}), Rebuilt()) << "removed for good";

  StoreThumbnail(2, 77);
  EXPECT_EQ(20, WidthAt(3)) << "held, not read";
  List.RefreshThumbnail(2);
  EXPECT_EQ(77, WidthAt(3));
  EXPECT_FALSE(List.SetSort(SortKind::Month, false));
  EXPECT_FALSE(List.IsGrouped());
}

TEST_F(ListPhotoSetTest, FiltersHideEntriesAndKeepThem) {
  List.Add(3);  // a list takes a photo twice
  List.SetRatingFilter(RatingFilterCode::ThreeOrBetter);
  EXPECT_EQ((Ids{3, 1, 3}), Rebuilt());
  List.RemoveAt(2);
  List.Move(1, 0);
  List.SetRatingFilter(RatingFilterCode::Any);
  EXPECT_EQ((Ids{1, 3, 2}), Rebuilt()) << "the second entry of photo 3 is gone, the first has its place";

  List.SetGuest(9);
  EXPECT_EQ(9, List.GetAssetId(3));
  EXPECT_EQ(-1, WidthAt(3));
  List.RemoveAt(3);
  EXPECT_EQ((Ids{1, 3, 2}), IdsOf(List));
  EXPECT_EQ((std::vector<std::string>{Root + "Photos/2002/sunset.jpg", Root + "Photos/2002/beach2.jpg",
                                      Root + "Photos/2002/Beach.jpg"}),
            List.GetPaths());
  Catalog.DeleteAsset(3);
  EXPECT_EQ(2U, List.GetPaths().size());
  EXPECT_FALSE(List.GetAsset(1).IsValid());
  List.SetGuest(9);
  List.Clear();
  EXPECT_EQ(0, List.GetCount());

  CListPhotoSet plain(false);
  plain.AddAll(CQuerySet(&Catalog, SetKind::Available));
  plain.Rebuild();
  EXPECT_EQ(9, plain.GetCount());
  EXPECT_EQ(nullptr, plain.GetThumbnail(0));
  EXPECT_EQ("Unnamed set", plain.GetName());
}

}  // namespace
