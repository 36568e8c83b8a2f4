#include "catalog/Properties.h"
#include "imaging/Image.h"
#include "support/CatalogFixture.h"

namespace {

using AssetTest = CCatalogFixture;

TEST_F(AssetTest, ANewPhotoBelongsToTheRollToCome) {
  const CAssetRecord record = Catalog.AddAsset("/photos/Lakes/boat.one.jpg");
  EXPECT_EQ(record.GetPath(), "/photos/Lakes/boat.one.jpg");
  EXPECT_EQ(record.GetFolder(), "/photos/Lakes/");
  EXPECT_EQ(record.GetTitle(), "boat.one");
  EXPECT_EQ(record.GetRollID(), 0);
  EXPECT_EQ(SqlOne("select AssetID, LocationType, Filename, length(ID), Missing, Tossed from Asset"),
            "1|1|boat.one.jpg|16|0|0");
  Catalog.AdvanceRoll();
  EXPECT_EQ(Catalog.AddAsset("/photos/noextension").GetRollID(), 1);
  EXPECT_EQ(Catalog.FindAssetById(2).GetTitle(), "noextension");
}

TEST_F(AssetTest, ANewPhotosDateIsThatOfItsCameraElseTheEarlierOneOfItsFile) {
  struct {
    std::int32_t Created, Written, Camera, Date;
    StampId Source;
  } const rows[] = {
      {1000000000, 884000000, 0, 884000000, StampId::FileCreateDate},
      {0, 884000000, 0, 884000000, StampId::FileCreateDate},
      {884000000, 1000000000, 800000000, 800000000, StampId::CameraDate},
  };
  for (const auto& row : rows) {
    CAssetRecord record = AddRow("/photos/a.jpg");
    EXPECT_TRUE(record.StampNewPhoto(row.Created, row.Written, row.Camera));
    StampId source = StampId::None;
    record.GetStamps(StampId::Date).Get(0).GetDate(&source);
    EXPECT_EQ(source, row.Source);
    EXPECT_EQ(record.GetCachedDate(), row.Date);
    EXPECT_EQ(record.GetStamps(StampId::FileCreateDate).Get(0).GetDate(), 884000000);
    EXPECT_EQ(record.GetStamps(StampId::CameraDate).Count(), row.Camera != 0 ? 1 : 0);
  }
}

TEST_F(AssetTest, APathIsFoundByItsBytesAndElseAsAFormerSpelling) {
  const std::string folder = Scratch.GetPath() + "/Photos/", renamed = Scratch.GetPath() + "/PHOTOS/";
  EXPECT_FALSE(Catalog.FindAssetByPath(folder + "b.jpg").IsValid());
  for (const char* name : {"b.jpg", "A.jpg", "ÉTÉ.jpg"}) Catalog.AddAsset(folder + name);
  EXPECT_FALSE(Catalog.FindAssetByPath(renamed + "a.JPG").IsValid()) << "a disk that is away tells nothing";
  Scratch.Write("PHOTOS/a.JPG", "");
  EXPECT_EQ(Catalog.FindAssetByPath(renamed + "a.JPG").GetAssetID(), 2) << "folder and file were renamed";
  EXPECT_FALSE(Catalog.FindAssetByPath(folder).IsValid());

  Scratch.Write("Photos/a.jpg", "");
  EXPECT_FALSE(Catalog.FindAssetByPath(renamed + "a.JPG").IsValid()) << "the former folder stands";
  EXPECT_EQ(Catalog.FindAssetByPath(folder + "a.jpg").GetPath(), folder + "A.jpg");
  EXPECT_EQ(Catalog.FindAssetByPath(Scratch.Write("Photos/été.jpg", "")).GetAssetID(), 3);
  std::filesystem::create_symlink("nowhere", folder + "A.jpg");
  EXPECT_FALSE(Catalog.FindAssetByPath(folder + "a.jpg").IsValid()) << "the name is taken, if by a link";
  Catalog.AddAsset(folder + "a.jpg");
  EXPECT_EQ(Catalog.FindAssetByPath(folder + "A.jpg").GetAssetID(), 2);
  EXPECT_EQ(Catalog.FindAssetByPath(folder + "a.jpg").GetAssetID(), 4);
  Catalog.FindAssetById(1).SetPath(folder + "Ж.jpg");
  EXPECT_EQ(Catalog.FindAssetByPath(Scratch.Write("Photos/ж.jpg", "")).GetAssetID(), 1);
}

TEST_F(AssetTest, DeletingTakesTheRowAndItsStampsAndItsNumberIsNotGivenOutAgain) {
  const CAssetRecord gone = AddRow("/photos/a.jpg", 0, 4);
  CAssetRecord kept = AddRow("/photos/b.jpg");
  for (const CAssetRecord& record : {gone, kept}) record.GetStamps(StampId::Event).SetText("Party", 0);
  EXPECT_TRUE(Catalog.DeleteAsset(1));
  EXPECT_FALSE(Catalog.DeleteAsset(1));
  EXPECT_FALSE(gone.IsValid());
  kept.SetFlag(PhotoFlag::Tossed, true);
  EXPECT_EQ(SqlOne("select AssetID, Tossed from Asset"), "2|1");
  EXPECT_EQ(SqlOne("select AssetID, StampType from Stamp"), "2|5");
  EXPECT_EQ(SqlOne("select RefCount from String where String = 'Party'"), "2") << "deleting releases no text";
  EXPECT_EQ(Catalog.AddAsset("/photos/c.jpg").GetAssetID(), 3);
}

TEST_F(AssetTest, FlagsAndPathsAreWrittenThroughAnyView) {
  for (const char* path : {"/photos/a.jpg", "/photos/b.jpg"}) Catalog.AddAsset(path);
  const c4_View inPlace = Catalog.GetAssets().Select(props::Missing[0]);
  CAssetRecord record(&Catalog, inPlace[1]);
  record.SetFlag(PhotoFlag::ToEmail, true);
  record.SetMissing(MissingState::FolderRemoved);
  EXPECT_EQ(inPlace.GetSize(), 1);
  EXPECT_TRUE(record.SetPath("/elsewhere/new.jpeg"));
  EXPECT_EQ(
      SqlOne("select Location, Filename, LocationType, Missing, Tossed, ToEmail, ToRemotePrint from Asset"
             " where AssetID = 2"),
      "/elsewhere/|new.jpeg|1|2|0|1|0");
  EXPECT_EQ(Catalog.FindAssetByPath("/elsewhere/new.jpeg").GetAssetID(), 2);

  const std::string before = ReadBytes(CatalogPath);
  record.SetFlag(PhotoFlag::ToEmail, true);
  record.SetMissing(MissingState::FolderRemoved);
  EXPECT_EQ(ReadBytes(CatalogPath), before) << "an unchanged value is not committed";

  CAssetRecord none;
  none.SetFlag(PhotoFlag::Tossed, true);
  EXPECT_FALSE(none.SetPath("/photos/x.jpg"));
  EXPECT_FALSE(none.StampNewPhoto(1, 1, 1));
  EXPECT_EQ(none.LoadThumbnail(), nullptr);
}

}  // namespace
