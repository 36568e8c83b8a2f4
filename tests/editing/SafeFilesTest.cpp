#include <functional>

#include "editing/EditingFixture.h"
#include "editing/SafeFiles.h"
#include "platform/WholeFiles.h"

using testing::ElementsAre;
using testing::StartsWith;

namespace {

using SafeFilesTest = CEditingFixture;
namespace fs = std::filesystem;

TEST_F(SafeFilesTest, AReadOnlyPhotoIsAskedAboutAndAMissingOneTold) {
  EXPECT_TRUE(!IsReadOnly(Photo) && CheckPhotoWritable(Photo));
  SetMode(0444);
  EXPECT_TRUE(IsReadOnly(Photo));
  Messages.Answer = false;
  EXPECT_FALSE(CheckPhotoWritable(Photo));
  EXPECT_EQ(GetMode(), 0444U);
  platform::SetFaultPlan([](std::string_view operation, std::string_view) {
    return operation == "chmod" ? std::make_error_code(std::errc::read_only_file_system) : std::error_code();
  });
  EXPECT_FALSE(CheckPhotoWritable(Photo));
  platform::SetFaultPlan({});
  Messages.Answer = true;
  EXPECT_TRUE(CheckPhotoWritable(Photo));
  EXPECT_EQ(GetMode(), 0644U) << "it stays writable";
  fs::remove(Photo.GetPath());
  EXPECT_FALSE(IsReadOnly(Photo) || CheckPhotoWritable(Photo));
  EXPECT_THAT(Messages.Texts,
              ElementsAre(StartsWith("The photo is read-only."), StartsWith("This photo is marked read-only"),
                          StartsWith("The photo is read-only."), StartsWith("The photo cannot be read.")));
}

TEST_F(SafeFilesTest, TheOriginalCopyIsARegularFileThatBringsBackThePhoto) {
  const std::string path = Photo.GetPath();
  EXPECT_TRUE(MakeOriginalCopy(Photo) && HasOriginalCopy(Photo));
  Scratch.Write("Pictures/boat.jpg", "corrected");
  EXPECT_TRUE(MakeOriginalCopy(Photo)) << "a copy that is there is left alone";
  EXPECT_EQ(ReadBytes(path + ".orig"), Original);
  EXPECT_FALSE(RestoreOriginalCopy(Photo));
  EXPECT_EQ(Now(), Original);

  const std::string copy = OriginalCopyPath(Photo);
  const std::function<void()> makers[] = {
      [&] { fs::create_directory(copy); },
      [&] { fs::create_symlink(InFolder("nowhere"), copy); },
      [&] { fs::create_symlink(Scratch.Write("other.jpg", "another photo"), copy); },
  };
  for (const auto& make : makers) {
    make();
    EXPECT_FALSE(HasOriginalCopy(Photo) || MakeOriginalCopy(Photo));
    EXPECT_TRUE(RestoreOriginalCopy(Photo));
    EXPECT_EQ(Now(), Original);
    EXPECT_TRUE(fs::remove(copy)) << "it is left alone";
  }
}

TEST_F(SafeFilesTest, ABackupTakesTheFirstFreeNumberAndOverwritesNothing) {
  Scratch.Write("vellumar.db.old[1]", "first");
  BackupFile(CatalogPath);
  EXPECT_EQ(ReadBytes(CatalogPath + ".old[1]"), "first");
  Catalog.Close();
  Catalog.Open(CatalogPath + ".old[2]");
  EXPECT_TRUE(Catalog.FindAssetByPath(InFolder("boat.jpg")).IsValid());
  BackupFile(InFolder("nosuch.db"));
  EXPECT_THAT(NamesInFolder(), ElementsAre("boat.jpg"));
}

}  // namespace
