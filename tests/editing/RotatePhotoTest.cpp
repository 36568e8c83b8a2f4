#include <gmock/gmock.h>

#include "base/Exceptions.h"
#include "editing/PictureFixture.h"
#include "editing/RotatePhoto.h"
#include "imaging/PictureMemory.h"
#include "support/FaultSteps.h"

using testing::ElementsAre;

namespace {

namespace fs = std::filesystem;
using RotatePhotoTest = CPictureFixture;

const WorkBegins kNothing;

TEST_F(RotatePhotoTest, TurnsTheFileAndTheShownImageUnderTheWaitCursor) {
  const auto shown = Show(40, 40);
  ASSERT_EQ(0, ::chmod(Photo.GetPath().c_str(), 0640));
  int begun = 0;
  EXPECT_EQ(PhotoChange::ShownImage, RotatePhoto(Photo, shown.get(), 90, [&] { ++begun; }));
  EXPECT_EQ(1, begun);
  EXPECT_EQ((ImageSize{96, 160}), shown->GetNaturalSize());
  EXPECT_EQ((ImageSize{96, 160}), ReadImageSize(Photo.GetPath()));
  EXPECT_EQ(mode_t{0640}, ModeOf(Photo.GetPath()));
  EXPECT_EQ(PhotoChange::ShownImage, RotatePhoto(Photo, shown.get(), 270, kNothing));
  EXPECT_EQ(PixelsOf(*Show(40, 40)), PixelsOf(*shown));
  EXPECT_THAT(NamesInFolder(), ElementsAre("boat.jpg"));
  EXPECT_TRUE(Messages.Texts.empty());
}

TEST_F(RotatePhotoTest, AReadOnlyOrMissingPhotoIsAskedAboutFirst) {
  const auto shown = Show(40, 40);
  const std::string path = Photo.GetPath();
  ASSERT_EQ(0, ::chmod(path.c_str(), 0444));
  bool begun = false;
  Messages.Answer = false;
  EXPECT_EQ(PhotoChange::None, RotatePhoto(Photo, shown.get(), 90, [&] { begun = true; }));
  EXPECT_FALSE(begun);
  EXPECT_EQ(Original, Now());
  EXPECT_EQ(mode_t{0444}, ModeOf(path));

  Messages.Answer = true;
  EXPECT_EQ(PhotoChange::ShownImage, RotatePhoto(Photo, shown.get(), 90, kNothing));
  EXPECT_NE(Original, Now());
  EXPECT_EQ(mode_t{0644}, ModeOf(path));

  fs::remove(path);
  Messages.Texts.clear();
  EXPECT_EQ(PhotoChange::None, RotatePhoto(Photo, shown.get(), 90, [&] { begun = true; }));
  EXPECT_FALSE(begun);
  EXPECT_EQ(1U, Messages.Texts.size());
  EXPECT_THAT(NamesInFolder(), ElementsAre());
}

TEST_F(RotatePhotoTest, WhatCannotBeTurnedStaysAndTheUserIsTold) {
  EXPECT_EQ(PhotoChange::None, RotatePhoto(Photo, nullptr, 90, kNothing)) << "no image is shown";
  const auto shown = Show(0, 0);
  Scratch.Write("photos/boat.jpg", "no picture any more");
  EXPECT_EQ(PhotoChange::ShownImage, RotatePhoto(Photo, shown.get(), 90, kNothing));
  EXPECT_EQ("no picture any more", Now());
  EXPECT_THAT(Messages.Texts,
              ElementsAre(testing::StartsWith("This photo can't be turned: its file is damaged")));
  fs::resize_file(Photo.GetPath(), std::uintmax_t{1} << 40);
  EXPECT_THROW(RotatePhoto(Photo, shown.get(), 90, kNothing), CTooLargeException);
  EXPECT_THAT(NamesInFolder(), ElementsAre("boat.jpg"));
}

/// Holds more than its pixels.
class CLossyImage : public CJpegImage {
 public:
  bool RotatesWithoutLoss() const override { return false; }
};

TEST_F(RotatePhotoTest, ATurnThatDropsDataIsAskedAbout) {
  CLossyImage image;
  image.LoadFile(Photo.GetPath(), 0, 0);
  Messages.Answer = false;
  EXPECT_EQ(PhotoChange::None, RotatePhoto(Photo, &image, 90, kNothing));
  EXPECT_EQ(Original, Now());
  ASSERT_EQ(1U, Messages.Texts.size());
  EXPECT_TRUE(Messages.Texts[0].starts_with("This photo contains additional information"));
  Messages.Answer = true;
  EXPECT_EQ(PhotoChange::ShownImage, RotatePhoto(Photo, &image, 90, kNothing));
  EXPECT_NE(Original, Now());
}

TEST_F(RotatePhotoTest, APhotoThatWasRenamedSinceItWasLoadedIsTurned) {
  const auto shown = Show(40, 40);
  fs::rename(Photo.GetPath(), InFolder("lake.jpg"));
  Photo.SetPath(InFolder("lake.jpg"));
  EXPECT_EQ(PhotoChange::FileAlone, RotatePhoto(Photo, shown.get(), 90, kNothing));
  EXPECT_EQ((ImageSize{96, 160}), ReadImageSize(InFolder("lake.jpg")));
  EXPECT_THAT(NamesInFolder(), ElementsAre("lake.jpg"));
}

TEST_F(RotatePhotoTest, AFullDiskOrAReadOnlyFolderIsToldAndChangesNothing) {
  const auto shown = Show(40, 40);
  {
    const CFileSizeLimit full(Original.size() / 2);
    EXPECT_THROW(RotatePhoto(Photo, shown.get(), 90, kNothing), CException);
  }
  fs::permissions(Photo.GetPath(), fs::perms(0666));
  fs::permissions(Scratch.GetPath(), fs::perms(0755));
  EXPECT_TRUE(RunAsNobody([&] {
    try {
      RotatePhoto(Photo, shown.get(), 90, kNothing);
      return false;
    } catch (const CException& exception) {
      return exception.GetMessage() == "Cannot open destination file";
    }
  }));
  EXPECT_EQ(Original, Now());
  EXPECT_THAT(NamesInFolder(), ElementsAre("boat.jpg"));
  ExpectRefusedWithoutThumbnails([&] { return RotatePhoto(Photo, shown.get(), 90, kNothing); });
}

TEST_F(RotatePhotoTest, KilledAtAnyStepThePhotoIsOneOfItsWholeVersions) {
  const auto turn = [&] { RotatePhoto(Photo, Show(40, 40).get(), 90, kNothing); };
  turn();
  const std::string turned = Now();
  int steps = 0;
  for (bool killed = true; killed; ++steps) {
    PutBack();
    StoreThumbnail();
    killed = RunAndKillAtStep(steps + 1, turn);
    ExpectNoStaleThumbnail(Original);
    EXPECT_TRUE(Now() == (killed ? Original : turned) || Now() == turned) << "step " << steps;
  }
  EXPECT_GT(steps, 4);
}

}  // namespace
