#include "catalog/Properties.h"
#include "support/CatalogFixture.h"

namespace {

using AssetTest = CCatalogFixture;

TEST_F(AssetTest, ANewPhotosDateIsThatOfItsCameraElseTheEarlierOneOfItsFile) {
  // When the file was made and written, the camera's date, the date in force, and the stamps.
  const std::tuple<std::int32_t, std::int32_t, std::int32_t, std::int32_t, const char*> rows[] = {
      {1000000000, 884000000, 0, 884000000, "7|0,6|7"},
      {0, 884000000, 0, 884000000, "7|0,6|7"},
      {884000000, 1000000000, 800000000, 800000000, "7|0,9|0,6|9"},
  };
  for (const auto& [created, written, camera, date, stamps] : rows) {
    CAssetRecord record = Catalog.AddAsset("/photos/a.jpg");
    EXPECT_TRUE(record.StampNewPhoto(created, written, camera));
    EXPECT_EQ(record.GetCachedDate(), date);
    EXPECT_EQ(record.GetStamps(StampId::FileCreateDate).Get(0).GetDate(), 884000000);
    EXPECT_EQ(SqlOne("select group_concat(StampType || '|' || IndexInt) from Stamp where AssetID = " +
                     std::to_string(record.GetAssetID())),
              stamps);
  }
}

TEST_F(AssetTest, APathIsFoundByItsBytesAndElseAsAFormerSpelling) {
  const std::string folder = Scratch.GetPath() + "/Photos/", renamed = Scratch.GetPath() + "/PHOTOS/";
  const auto find = [this](const std::string& path) { return Catalog.FindAssetByPath(path).GetAssetID(); };
  for (const char* name : {"b.jpg", "A.jpg", "ÉTÉ.jpg"}) Catalog.AddAsset(folder + name);
  EXPECT_EQ(find(renamed + "a.JPG"), 0) << "a disk that is away tells nothing";
  Scratch.Write("PHOTOS/a.JPG", "");
  EXPECT_EQ(find(renamed + "a.JPG"), 2) << "folder and file were renamed";
  Scratch.Write("Photos/a.jpg", "");
  EXPECT_EQ(find(renamed + "a.JPG"), 0) << "the former folder stands";
  EXPECT_EQ(find(folder + "a.jpg"), 2);
  EXPECT_EQ(find(Scratch.Write("Photos/été.jpg", "")), 3);
  std::filesystem::create_symlink("nowhere", folder + "A.jpg");
  EXPECT_EQ(find(folder + "a.jpg"), 0) << "the name is taken, if by a link";
  Catalog.AddAsset(folder + "a.jpg");
  EXPECT_EQ(find(folder + "A.jpg"), 2);
  EXPECT_EQ(find(folder + "a.jpg"), 4);
  EXPECT_TRUE(Catalog.FindAssetById(1).SetPath(folder + "Ж.jpg"));
  EXPECT_EQ(find(Scratch.Write("Photos/ж.jpg", "")), 1);
}

TEST_F(AssetTest, DeletingTakesTheRowAndItsStampsAndItsNumberIsNotGivenOutAgain) {
  const CAssetRecord gone = AddRow("/photos/a.jpg", 0, 4);
  CAssetRecord kept = AddRow("/photos/b.jpg");
  for (const CAssetRecord& record : {gone, kept}) record.GetStamps(StampId::Event).SetText("Party", 0);
  EXPECT_TRUE(Catalog.DeleteAsset(1));
  EXPECT_FALSE(gone.IsValid());
  kept.SetFlag(PhotoFlag::Tossed, true);
  EXPECT_EQ(SqlOne("select Asset.AssetID, Tossed, StampType from Asset, Stamp"), "2|1|5");
  EXPECT_EQ(SqlOne("select RefCount from String where String = 'Party'"), "2") << "deleting releases no text";
  EXPECT_EQ(Catalog.AddAsset("/photos/c.jpg").GetAssetID(), 3);
}

TEST_F(AssetTest, FlagsAndPathsAreWrittenThroughAnyView) {
  Catalog.AdvanceRoll();
  for (const char* path : {"/photos/a", "/photos/b.c.jpg"}) Catalog.AddAsset(path);
  EXPECT_EQ(Catalog.FindAssetById(1).GetTitle(), "a");
  EXPECT_EQ(Catalog.FindAssetById(2).GetTitle(), "b.c");
  CAssetRecord record(&Catalog, Catalog.GetAssets().Select(props::Missing[0])[1]);
  std::string before;
  for (int time = 0; time < 2; ++time) {
    before = ReadBytes(CatalogPath);
    record.SetFlag(PhotoFlag::ToEmail, true);
    record.SetMissing(MissingState::FolderRemoved);
  }
  EXPECT_EQ(ReadBytes(CatalogPath), before) << "an unchanged value is not committed";
  EXPECT_TRUE(record.SetPath("/elsewhere/new.jpeg"));
  EXPECT_EQ(
      SqlOne("select * from Asset where ToEmail"),
      SqlOne("select 2, 1, '/elsewhere/', 'new.jpeg', 1, ID, 0, 0, 2, 0, 1, 0 from Asset where ToEmail"));
  EXPECT_EQ(Catalog.FindAssetByPath("/elsewhere/new.jpeg").GetAssetID(), 2);
  CAssetRecord none;
  none.SetFlag(PhotoFlag::Tossed, true);
  EXPECT_FALSE(none.StampNewPhoto(1, 1, 1));
}

}  // namespace
