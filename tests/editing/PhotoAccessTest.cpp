#include <gmock/gmock.h>

#include "editing/EditingFixture.h"
#include "editing/PhotoAccess.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

using PhotoAccessTest = CEditingFixture;

TEST_F(PhotoAccessTest, AReadOnlyPhotoIsAskedAboutAndStaysAsItWasOnCancel) {
  const std::string path = Photo.GetPath();
  EXPECT_FALSE(IsReadOnly(Photo));
  EXPECT_TRUE(CheckPhotoWritable(Photo));
  EXPECT_THAT(Messages.Texts, IsEmpty());

  ASSERT_EQ(0, ::chmod(path.c_str(), 0444));
  EXPECT_TRUE(IsReadOnly(Photo));
  Messages.Answer = false;
  EXPECT_FALSE(CheckPhotoWritable(Photo));
  EXPECT_THAT(Messages.Texts, ElementsAre("The photo is read-only. Would you like to make it editable?"));
  EXPECT_EQ(mode_t{0444}, ModeOf(path));
  Messages.Answer = true;
  EXPECT_TRUE(CheckPhotoWritable(Photo));
  EXPECT_EQ(mode_t{0644}, ModeOf(path));
  EXPECT_TRUE(CheckPhotoWritable(Photo));
  EXPECT_EQ(2U, Messages.Texts.size()) << "it stays writable";
}

TEST_F(PhotoAccessTest, AMissingPhotoAndOneThatCannotBeMadeWritableAreTold) {
  ASSERT_EQ(0, ::chmod(Photo.GetPath().c_str(), 0444));
  platform::SetFaultPlan([](std::string_view operation, std::string_view) {
    return operation == "chmod" ? std::make_error_code(std::errc::read_only_file_system) : std::error_code();
  });
  EXPECT_FALSE(CheckPhotoWritable(Photo));
  platform::SetFaultPlan({});
  std::filesystem::remove(Photo.GetPath());
  EXPECT_FALSE(IsReadOnly(Photo));
  EXPECT_FALSE(CheckPhotoWritable(Photo));
  EXPECT_THAT(Messages.Texts,
              ElementsAre("This photo is marked read-only, and cannot be edited.",
                          "The photo cannot be read. The photo file is either missing or not accessible."));
}

}  // namespace
