#include <gmock/gmock.h>

#include "catalog/CatalogFixture.h"
#include "catalog/Properties.h"
#include "imaging/Image.h"

namespace {

class AssetTest : public CCatalogFixture {
 protected:
  void SetUp() override { Open(); }
};

TEST_F(AssetTest, ANewPhotoBelongsToTheRollToCome) {
  const CAssetRecord record = Catalog.AddAsset("/photos/Lakes/boat.one.jpg");
  EXPECT_EQ(1, record.GetAssetID());
  EXPECT_EQ(0, record.GetRollID());
  EXPECT_EQ("/photos/Lakes/", record.GetFolder());
  EXPECT_EQ("boat.one.jpg", record.GetFilename());
  EXPECT_EQ("boat.one", record.GetTitle());
  EXPECT_EQ("/photos/Lakes/boat.one.jpg", record.GetPath());
  EXPECT_EQ("1|1|16|0|0|0|0|0|0",
            SqlOne("select AssetID, LocationType, length(ID), CachedRating, CachedDate, Missing, Tossed,"
                   " ToEmail, ToRemotePrint from Asset"));
  Catalog.AdvanceRoll();
  EXPECT_EQ(0, Catalog.GetCurrentRollID());
  EXPECT_EQ(1, Catalog.AddAsset("/photos/noextension").GetRollID());
  EXPECT_EQ("noextension", Catalog.FindAssetById(2).GetTitle());
}

TEST_F(AssetTest, APathIsFoundByItsBytesAndElseAsAFormerSpelling) {
  EXPECT_FALSE(Catalog.FindAssetByPath("/photos/a.jpg").IsValid());
  const std::string folder = Scratch.GetPath() + "/Photos/", renamed = Scratch.GetPath() + "/PHOTOS/";
  for (const char* name : {"b.jpg", "A.jpg", "ÉTÉ.jpg"}) Catalog.AddAsset(folder + name);
  EXPECT_FALSE(Catalog.FindAssetByPath(renamed + "a.JPG").IsValid()) << "a disk that is away tells nothing";
  Scratch.Write("PHOTOS/a.JPG", "");
  EXPECT_EQ(2, Catalog.FindAssetByPath(renamed + "a.JPG").GetAssetID()) << "folder and file were renamed";
  EXPECT_FALSE(Catalog.FindAssetByPath(folder).IsValid());
  EXPECT_FALSE(Catalog.FindAssetByPath(renamed + "c.jpg").IsValid());

  Scratch.Write("Photos/a.jpg", "");
  EXPECT_FALSE(Catalog.FindAssetByPath(renamed + "a.JPG").IsValid()) << "the former folder stands";
  EXPECT_EQ(folder + "A.jpg", Catalog.FindAssetByPath(folder + "a.jpg").GetPath());
  EXPECT_EQ(3, Catalog.FindAssetByPath(Scratch.Write("Photos/été.jpg", "")).GetAssetID());
  std::filesystem::create_symlink("nowhere", folder + "A.jpg");
  EXPECT_FALSE(Catalog.FindAssetByPath(folder + "a.jpg").IsValid()) << "the name is taken, if by a link";
  Catalog.AddAsset(folder + "a.jpg");
  EXPECT_EQ(2, Catalog.FindAssetByPath(folder + "A.jpg").GetAssetID());
  EXPECT_EQ(4, Catalog.FindAssetByPath(folder + "a.jpg").GetAssetID());
  Catalog.FindAssetById(1).SetPath(folder + "Ж.jpg");
  EXPECT_EQ(1, Catalog.FindAssetByPath(Scratch.Write("Photos/ж.jpg", "")).GetAssetID());
}

TEST_F(AssetTest, NumbersOfDeletedPhotosAreNotGivenOutAgain) {
  CAssetRecord kept = Catalog.AddAsset("/photos/a.jpg");
  CAssetRecord gone = Catalog.AddAsset("/photos/b.jpg");
  gone.GetStamps(StampId::Event).SetText("Party", 0);
  gone.GetStamps(StampId::Rating).SetNumber(4, 0);
  kept.GetStamps(StampId::Event).SetText("Party", 0);

  EXPECT_TRUE(Catalog.DeleteAsset(2));
  EXPECT_FALSE(Catalog.DeleteAsset(2));
  EXPECT_FALSE(gone.IsValid());
  EXPECT_EQ("1|5", SqlOne("select AssetID, StampType from Stamp"));
  EXPECT_EQ("2", SqlOne("select RefCount from String where String = 'Party'")) << "deleting releases no text";
  EXPECT_EQ(3, Catalog.AddAsset("/photos/c.jpg").GetAssetID());
}

TEST_F(AssetTest, FlagsAndPathsAreWrittenThroughAnyView) {
  Catalog.AddAsset("/photos/a.jpg");
  Catalog.AddAsset("/photos/b.jpg");
  const c4_View inPlace = Catalog.GetAssets().Select(props::Missing[0]);
  CAssetRecord record(&Catalog, inPlace[1]);

  record.SetFlag(PhotoFlag::ToEmail, true);
  record.SetMissing(MissingState::FolderRemoved);
  EXPECT_EQ(1, inPlace.GetSize());
  EXPECT_TRUE(record.SetPath("/elsewhere/new.jpeg"));
  EXPECT_EQ("2|/elsewhere/|new.jpeg|1|2|0|1",
            SqlOne("select AssetID, Location, Filename, LocationType, Missing, Tossed, ToEmail from Asset"
                   " where AssetID = 2"));
  EXPECT_EQ(2, Catalog.FindAssetByPath("/elsewhere/new.jpeg").GetAssetID());

  const std::string before = ReadBytes(Path);
  record.SetFlag(PhotoFlag::ToEmail, true);
  record.SetMissing(MissingState::FolderRemoved);
  EXPECT_EQ(before, ReadBytes(Path)) << "an unchanged value is not committed";

  CAssetRecord none;
  none.SetFlag(PhotoFlag::Tossed, true);
  EXPECT_FALSE(none.SetPath("/photos/x.jpg"));
  EXPECT_FALSE(none.StampNewPhoto(1, 1));
  EXPECT_EQ(nullptr, none.LoadThumbnail());
}

TEST_F(AssetTest, ARecordOutlivesTheRowsBeforeIt) {
  Catalog.AddAsset("/photos/a.jpg");
  CAssetRecord record = Catalog.AddAsset("/photos/b.jpg");
  Catalog.DeleteAsset(1);
  record.SetFlag(PhotoFlag::Tossed, true);
  EXPECT_EQ("2|1", SqlOne("select AssetID, Tossed from Asset"));
}

TEST_F(AssetTest, AFileThatCannotBeReadGetsItsFileDateAndAnEmptyThumbnail) {
  CAssetRecord record = Catalog.AddAsset(Scratch.Write("rubbish.jpg", "no picture"));
  EXPECT_TRUE(record.StampNewPhoto(1000000000, 900000000));
  EXPECT_EQ(900000000, record.GetCachedDate());
  StampId source = StampId::None;
  record.GetStamps(StampId::Date).Get(0).GetDate(&source);
  EXPECT_EQ(StampId::FileCreateDate, source);
  EXPECT_EQ(0, record.GetStamps(StampId::CameraDate).Count());
  EXPECT_TRUE(Cache.Has(record.GetAssetID()));
  EXPECT_EQ(nullptr, record.LoadThumbnail());
}

}  // namespace
