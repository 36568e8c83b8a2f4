#include <gmock/gmock.h>
#include <sys/xattr.h>

#include <functional>

#include "editing/EditingFixture.h"
#include "editing/OriginalCopy.h"
#include "platform/Files.h"
#include "support/FaultSteps.h"

using testing::ElementsAre;

namespace {

using OriginalCopyTest = CEditingFixture;
namespace fs = std::filesystem;

void Overwrite(const CAssetRecord& photo, const std::string& bytes) {
  ASSERT_FALSE(platform::WriteFileAtomically(photo.GetPath(), bytes.data(), bytes.size()));
}

TEST_F(OriginalCopyTest, UndoBringsBackBytesModeTimesAndAttributes) {
  const std::string path = Photo.GetPath();
  ASSERT_EQ(0, ::chmod(path.c_str(), 0640));
  const auto written = fs::last_write_time(path) - std::chrono::hours(1000);
  fs::last_write_time(path, written);
  const bool hasAttributes = ::setxattr(path.c_str(), "user.comment", "lake", 4, 0) == 0;

  EXPECT_FALSE(HasOriginalCopy(Photo));
  EXPECT_TRUE(RestoreOriginalCopy(Photo));
  EXPECT_EQ("the photo", ReadBytes(path)) << "without a copy nothing is done";
  EXPECT_TRUE(MakeOriginalCopy(Photo));
  EXPECT_EQ(path + ".orig", OriginalCopyPath(Photo));
  EXPECT_TRUE(HasOriginalCopy(Photo));

  Overwrite(Photo, "corrected");
  EXPECT_EQ(mode_t{0640}, ModeOf(path));
  EXPECT_TRUE(MakeOriginalCopy(Photo)) << "a copy that is there is left alone";
  EXPECT_EQ("the photo", ReadBytes(path + ".orig"));
  char value[8] = {};
  if (hasAttributes) {
    EXPECT_EQ(4, ::getxattr(path.c_str(), "user.comment", value, sizeof value));
  }

  EXPECT_FALSE(RestoreOriginalCopy(Photo));
  EXPECT_EQ("the photo", ReadBytes(path));
  EXPECT_EQ(mode_t{0640}, ModeOf(path));
  EXPECT_EQ(written, fs::last_write_time(path));
  if (hasAttributes) {
    EXPECT_EQ(4, ::getxattr(path.c_str(), "user.comment", value, sizeof value));
    EXPECT_STREQ("lake", value);
  }
  EXPECT_THAT(NamesInFolder(), ElementsAre("boat.jpg"));
}

TEST_F(OriginalCopyTest, APhotoBehindALinkIsReplacedWhereItLies) {
  const std::string target = Scratch.Write("elsewhere/real.jpg", "the photo");
  fs::remove(Photo.GetPath());
  fs::create_symlink(target, Photo.GetPath());
  EXPECT_TRUE(MakeOriginalCopy(Photo));
  Overwrite(Photo, "corrected");
  EXPECT_EQ("corrected", ReadBytes(target));
  EXPECT_FALSE(RestoreOriginalCopy(Photo));
  EXPECT_EQ("the photo", ReadBytes(target));
  EXPECT_TRUE(fs::is_symlink(Photo.GetPath()));
}

TEST_F(OriginalCopyTest, OnlyARegularFileIsACopy) {
  const std::string copy = OriginalCopyPath(Photo);
  const std::function<void()> makers[] = {
      [&] { fs::create_directory(copy); },
      [&] { fs::create_symlink(InFolder("nowhere"), copy); },
      [&] { fs::create_symlink(InFolder(""), copy); },
      [&] { fs::create_symlink(copy, copy); },
      [&] { fs::create_symlink(Scratch.Write("other.jpg", "another photo"), copy); },
      [&] { ASSERT_EQ(0, ::mkfifo(copy.c_str(), 0600)); },
  };
  for (const auto& make : makers) {
    make();
    const fs::file_type type = fs::symlink_status(copy).type();
    EXPECT_FALSE(HasOriginalCopy(Photo));
    EXPECT_FALSE(MakeOriginalCopy(Photo)) << "without a copy no correction";
    EXPECT_TRUE(RestoreOriginalCopy(Photo));
    EXPECT_EQ("the photo", ReadBytes(Photo.GetPath()));
    EXPECT_EQ(type, fs::symlink_status(copy).type());
    fs::remove(copy);
  }
  const std::string longName = std::string(247, 'x') + ".jpg";
  fs::rename(Photo.GetPath(), InFolder(longName));
  Photo.SetPath(InFolder(longName));
  EXPECT_FALSE(HasOriginalCopy(Photo)) << "there is no room for its name";
  EXPECT_FALSE(MakeOriginalCopy(Photo));
  EXPECT_THAT(NamesInFolder(), ElementsAre(longName));
}

TEST_F(OriginalCopyTest, AFullDiskOrAMissingPhotoLeavesNoHalfCopy) {
  const std::string bytes(100000, 'p');
  Overwrite(Photo, bytes);
  {
    const CFileSizeLimit full(50000);
    EXPECT_FALSE(MakeOriginalCopy(Photo));
  }
  EXPECT_THAT(NamesInFolder(), ElementsAre("boat.jpg"));
  EXPECT_EQ(bytes, ReadBytes(Photo.GetPath()));
  fs::remove(Photo.GetPath());
  EXPECT_FALSE(MakeOriginalCopy(Photo));
  EXPECT_THAT(NamesInFolder(), ElementsAre());
}

TEST_F(OriginalCopyTest, AtEachStopThePhotoIsWholeAndItsEarlierBytesAreKept) {
  const std::string path = Photo.GetPath();
  const std::string old(300000, 'o'), corrected(200000, 'c');
  const auto prepare = [&] {
    fs::remove_all(InFolder(""));
    Scratch.Write("photos/boat.jpg", old);
  };
  const auto correct = [&] {
    if (MakeOriginalCopy(Photo)) Overwrite(Photo, corrected);
  };
  const auto undo = [&] { static_cast<void>(RestoreOriginalCopy(Photo)); };
  const auto keepsOld = [&] { return HasOriginalCopy(Photo) && ReadBytes(path + ".orig") == old; };
  for (int step = 1, killed = 1; killed; ++step) {
    prepare();
    killed = RunAndKillAtStep(step, correct);
    EXPECT_TRUE(ReadBytes(path) == old || (ReadBytes(path) == corrected && keepsOld())) << "step " << step;
    EXPECT_TRUE(!HasOriginalCopy(Photo) || keepsOld()) << "step " << step;
  }
  for (int step = 1, killed = 1; killed; ++step) {
    prepare();
    correct();
    killed = RunAndKillAtStep(step, undo);
    EXPECT_TRUE(ReadBytes(path) == old || (ReadBytes(path) == corrected && keepsOld())) << "step " << step;
  }
}

}  // namespace
