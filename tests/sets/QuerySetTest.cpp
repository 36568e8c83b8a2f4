#include <gtest/gtest.h>

#include "catalog/Catalog.h"
#include "sets/QuerySet.h"
#include "support/ScratchFolder.h"

namespace {

class QuerySetTest : public testing::Test {
 protected:
  void SetUp() override { Catalog.Open(Scratch.File("vellumar.db")); }

  std::vector<std::int32_t> Ids(const CPhotoSet& set) const {
    std::vector<std::int32_t> ids;
    for (int i = 0; i < set.GetCount(); ++i) ids.push_back(set.GetAssetId(i));
    return ids;
  }

  using List = std::vector<std::int32_t>;
  CScratchFolder Scratch;
  CCatalog Catalog;
};

TEST_F(QuerySetTest, AvailablePhotosAreInPlaceAndNotInTheTrash) {
  for (const char* name : {"a", "b", "c", "d"}) Catalog.AddAsset(std::string("/p/") + name + ".jpg");
  CQuerySet available(&Catalog, SetKind::Available);
  Catalog.FindAssetById(2).SetMissing(MissingState::Gone);
  Catalog.FindAssetById(3).SetFlag(PhotoFlag::Tossed, true);
  EXPECT_EQ((List{1, 2, 3, 4}), Ids(available)) << "a set changes when it is rebuilt";
  available.Rebuild();
  EXPECT_EQ((List{1, 4}), Ids(available));
  EXPECT_EQ("/p/d.jpg", available.GetAsset(1).GetPath());
  EXPECT_EQ(1, available.IndexOf(4));
  EXPECT_EQ(-1, available.IndexOf(2));
  EXPECT_EQ(-1, available.GetAssetId(2));
  EXPECT_FALSE(available.GetAsset(-1).IsValid());
  EXPECT_EQ((List{1, 2, 3, 4}), Ids(CQuerySet(&Catalog, SetKind::All)));

  CQuerySet invalid(nullptr, SetKind::All);
  EXPECT_FALSE(invalid.IsValid());
  EXPECT_EQ(0, invalid.GetCount());
  EXPECT_EQ(-1, invalid.IndexOf(1));
}

TEST_F(QuerySetTest, AFolderFilterKnowsFoldersByWholeNamesAndCaseByTheDisk) {
  const std::string root = Scratch.GetPath() + "/";
  for (const char* path : {"Photos/a.jpg", "Photos/2002/b.jpg", "Photos2/c.jpg", "PHOTOS/d.jpg"}) {
    Catalog.AddAsset(root + path);
  }
  CQuerySet set(&Catalog, SetKind::All);
  set.SetFolderFilter(root + "Photos");
  set.Rebuild();
  EXPECT_EQ((List{1, 2, 4}), Ids(set));

  Scratch.File("PHOTOS/x");
  set.Rebuild();
  EXPECT_EQ((List{1, 2}), Ids(set)) << "the disk holds both spellings";
  set.SetFolderFilter("");
  set.Rebuild();
  EXPECT_EQ(4, set.GetCount());
}

}  // namespace
