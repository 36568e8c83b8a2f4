#include <functional>

#include "editing/EditingFixture.h"
#include "editing/SafeFiles.h"
#include "platform/WholeFiles.h"

using testing::ElementsAre;

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
  const std::string question = "The photo is read-only. Would you like to make it editable?";
  EXPECT_THAT(Messages.Texts,
              ElementsAre(question, "This photo is marked read-only, and cannot be edited.", question,
                          "The photo cannot be read. The photo file is either missing or not accessible."));
}

TEST_F(SafeFilesTest, TheOriginalCopyBringsBackTheFile) {
  const std::string path = Photo.GetPath();
  EXPECT_FALSE(HasOriginalCopy(Photo));
  EXPECT_TRUE(RestoreOriginalCopy(Photo));
  EXPECT_EQ(Now(), Original) << "without a copy nothing is done";
  EXPECT_TRUE(MakeOriginalCopy(Photo) && HasOriginalCopy(Photo));
  Scratch.Write("photos/boat.jpg", "corrected");
  EXPECT_TRUE(MakeOriginalCopy(Photo)) << "a copy that is there is left alone";
  EXPECT_EQ(ReadBytes(path + ".orig"), Original);
  EXPECT_FALSE(RestoreOriginalCopy(Photo));
  EXPECT_EQ(Now(), Original);

  // A photo behind a link is replaced where it lies.
  const std::string target = Scratch.File("elsewhere/real.jpg");
  fs::rename(path, target);
  fs::create_symlink(target, path);
  EXPECT_TRUE(MakeOriginalCopy(Photo));
  Scratch.Write("elsewhere/real.jpg", "corrected");
  EXPECT_FALSE(RestoreOriginalCopy(Photo));
  EXPECT_EQ(ReadBytes(target), Original);
  EXPECT_TRUE(fs::is_symlink(path));
}

TEST_F(SafeFilesTest, OnlyARegularFileIsAnOriginalCopy) {
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
  const std::string longName = std::string(247, 'x') + ".jpg";
  fs::rename(Photo.GetPath(), InFolder(longName));
  Photo.SetPath(InFolder(longName));
  EXPECT_FALSE(HasOriginalCopy(Photo) || MakeOriginalCopy(Photo)) << "there is no room for its name";
}

TEST_F(SafeFilesTest, ABackupTakesTheFirstFreeNumberAndOverwritesNothing) {
  const std::string path = Catalog.GetPath();
  Scratch.Write("data/vellumar.db.old[1]", "first");
  BackupFile(path);
  EXPECT_EQ(ReadBytes(path + ".old[1]"), "first");
  EXPECT_FALSE(fs::exists(path + ".old[3]"));
  Catalog.Close();
  Catalog.Open(path + ".old[2]");
  EXPECT_TRUE(Catalog.FindAssetByPath(InFolder("boat.jpg")).IsValid());
  BackupFile(InFolder("nosuch.db"));
  EXPECT_THAT(NamesInFolder(), ElementsAre("boat.jpg"));
}

}  // namespace
