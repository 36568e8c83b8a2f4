#include <gtest/gtest.h>

#include "catalog/Catalog.h"
#include "editing/BackupFile.h"
#include "support/ScratchFolder.h"

namespace {

TEST(BackupFileTest, TakesTheFirstFreeNumberAndOverwritesNothing) {
  CScratchFolder scratch;
  const std::string path = scratch.File("vellumar.db");
  {
    CCatalog catalog;
    catalog.Open(path);
    catalog.AddAsset("/p/a.jpg");
  }
  scratch.Write("vellumar.db.old[1]", "first");
  scratch.Write("vellumar.db.old[2]", "second");
  const std::string before = ReadBytes(path);

  BackupFile(path);

  EXPECT_EQ("first", ReadBytes(path + ".old[1]"));
  EXPECT_EQ("second", ReadBytes(path + ".old[2]"));
  EXPECT_EQ(10, ReadDBVersion(path + ".old[3]"));
  EXPECT_FALSE(std::filesystem::exists(path + ".old[4]"));
  EXPECT_EQ(before, ReadBytes(path));
  CCatalog copy;
  copy.Open(path + ".old[3]");
  EXPECT_TRUE(copy.FindAssetByPath("/p/a.jpg").IsValid());

  BackupFile(scratch.File("nosuch.db"));
  EXPECT_FALSE(std::filesystem::exists(scratch.GetPath() + "/nosuch.db.old[1]"));
}

}  // namespace
