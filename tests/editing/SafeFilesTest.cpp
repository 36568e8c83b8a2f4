#include <sys/xattr.h>

#include <functional>

#include "editing/EditingFixture.h"
#include "editing/SafeFiles.h"
#include "platform/Files.h"
#include "platform/WholeFiles.h"

using testing::ElementsAre;

namespace {

using SafeFilesTest = CEditingFixture;
namespace fs = std::filesystem;

void Overwrite(const CAssetRecord& photo, const std::string& bytes) {
  ASSERT_FALSE(platform::WriteFileAtomically(photo.GetPath(), bytes.data(), bytes.size()));
}

TEST_F(SafeFilesTest, AReadOnlyPhotoIsAskedAboutAndAMissingOneTold) {
  EXPECT_TRUE(!IsReadOnly(Photo) && CheckPhotoWritable(Photo));
  EXPECT_TRUE(Messages.Texts.empty());
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
              ElementsAre("The photo is read-only. Would you like to make it editable?",
                          "This photo is marked read-only, and cannot be edited.",
                          "The photo is read-only. Would you like to make it editable?",
                          "The photo cannot be read. The photo file is either missing or not accessible."));
}

TEST_F(SafeFilesTest, TheOriginalCopyBringsBackBytesModeTimesAndAttributes) {
  const std::string path = Photo.GetPath();
  SetMode(0640);
  const auto written = fs::last_write_time(path) - std::chrono::hours(1000);
  fs::last_write_time(path, written);
  const bool hasAttributes = ::setxattr(path.c_str(), "user.comment", "lake", 4, 0) == 0;
  EXPECT_FALSE(HasOriginalCopy(Photo));
  EXPECT_TRUE(RestoreOriginalCopy(Photo));
  EXPECT_EQ(Now(), Original) << "without a copy nothing is done";
  EXPECT_TRUE(MakeOriginalCopy(Photo) && HasOriginalCopy(Photo));
  EXPECT_EQ(OriginalCopyPath(Photo), path + ".orig");
  Overwrite(Photo, "corrected");
  EXPECT_TRUE(MakeOriginalCopy(Photo)) << "a copy that is there is left alone";
  EXPECT_EQ(ReadBytes(path + ".orig"), Original);

  EXPECT_FALSE(RestoreOriginalCopy(Photo));
  EXPECT_EQ(Now(), Original);
  EXPECT_EQ(GetMode(), 0640U);
  EXPECT_EQ(fs::last_write_time(path), written);
  char value[8] = {};
  if (hasAttributes) {
    EXPECT_EQ(::getxattr(path.c_str(), "user.comment", value, sizeof value), 4);
  }
  EXPECT_THAT(NamesInFolder(), ElementsAre("boat.jpg"));

  // A photo behind a link is replaced where it lies.
  const std::string target = Scratch.Write("elsewhere/real.jpg", "the photo");
  fs::remove(path);
  fs::create_symlink(target, path);
  EXPECT_TRUE(MakeOriginalCopy(Photo));
  Overwrite(Photo, "corrected");
  EXPECT_FALSE(RestoreOriginalCopy(Photo));
  EXPECT_EQ(ReadBytes(target), "the photo");
  EXPECT_TRUE(fs::is_symlink(path));
}

TEST_F(SafeFilesTest, OnlyARegularFileIsAnOriginalCopy) {
  const std::string copy = OriginalCopyPath(Photo);
  const std::function<void()> makers[] = {
      [&] { fs::create_directory(copy); },
      [&] { fs::create_symlink(InFolder("nowhere"), copy); },
      [&] { fs::create_symlink(Scratch.Write("other.jpg", "another photo"), copy); },
      [&] { ASSERT_EQ(::mkfifo(copy.c_str(), 0600), 0); },
  };
  for (const auto& make : makers) {
    make();
    const fs::file_type type = fs::symlink_status(copy).type();
    EXPECT_FALSE(HasOriginalCopy(Photo) || MakeOriginalCopy(Photo));
    EXPECT_TRUE(RestoreOriginalCopy(Photo));
    EXPECT_EQ(Now(), Original);
    EXPECT_EQ(fs::symlink_status(copy).type(), type);
    fs::remove(copy);
  }
  const std::string longName = std::string(247, 'x') + ".jpg";
  fs::rename(Photo.GetPath(), InFolder(longName));
  Photo.SetPath(InFolder(longName));
  EXPECT_FALSE(HasOriginalCopy(Photo) || MakeOriginalCopy(Photo)) << "there is no room for its name";
  fs::remove(Photo.GetPath());
  EXPECT_FALSE(MakeOriginalCopy(Photo));
  EXPECT_THAT(NamesInFolder(), ElementsAre());
}

TEST_F(SafeFilesTest, ABackupTakesTheFirstFreeNumberAndOverwritesNothing) {
  const std::string path = Catalog.GetPath();
  Scratch.Write("data/vellumar.db.old[1]", "first");
  Scratch.Write("data/vellumar.db.old[2]", "second");
  BackupFile(path);
  EXPECT_EQ(ReadBytes(path + ".old[1]"), "first");
  EXPECT_EQ(ReadBytes(path + ".old[2]"), "second");
  EXPECT_FALSE(fs::exists(path + ".old[4]"));
  Catalog.Close();
  Catalog.Open(path + ".old[3]");
  EXPECT_TRUE(Catalog.FindAssetByPath(InFolder("boat.jpg")).IsValid());
  BackupFile(InFolder("nosuch.db"));
  EXPECT_THAT(NamesInFolder(), ElementsAre("boat.jpg"));
}

}  // namespace
