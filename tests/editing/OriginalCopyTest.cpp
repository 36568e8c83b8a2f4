#include <gmock/gmock.h>
#include <sys/xattr.h>

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
  EXPECT_FALSE(RestoreOriginalCopy(Photo));
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

  EXPECT_TRUE(RestoreOriginalCopy(Photo));
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
  EXPECT_TRUE(RestoreOriginalCopy(Photo));
  EXPECT_EQ("the photo", ReadBytes(target));
  EXPECT_TRUE(fs::is_symlink(Photo.GetPath()));
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
  const auto undo = [&] { RestoreOriginalCopy(Photo); };
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
