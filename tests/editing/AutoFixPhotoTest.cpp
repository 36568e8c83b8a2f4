#include <gmock/gmock.h>

#include "base/Exceptions.h"
#include "editing/AutoFixPhoto.h"
#include "editing/PictureFixture.h"
#include "imaging/AutoFix.h"
#include "support/FaultSteps.h"

using testing::ElementsAre;

namespace {

namespace fs = std::filesystem;

const WorkBegins kNothing;

class AutoFixPhotoTest : public CPictureFixture {
 protected:
  AutoFixPhotoTest() {
    const auto image = Show(0, 0);
    AutoFix(*image);
    const auto bytes = static_cast<CJpegImage&>(*image).SaveToMemory(70);
    Fixed = std::string(bytes.begin(), bytes.end());
  }

  std::string FailureOf(CImage* shown) const {
    try {
      AutoFixPhoto(Photo, shown, kNothing);
      return "none";
    } catch (const CException& exception) {
      return exception.GetMessage();
    }
  }

  std::string Fixed;
};

TEST_F(AutoFixPhotoTest, ASecondUseBringsBackBytesTimesAndMode) {
  ASSERT_NE(Original, Fixed);
  const std::string path = Photo.GetPath();
  ASSERT_EQ(0, ::chmod(path.c_str(), 0640));
  const auto written = fs::last_write_time(path) - std::chrono::hours(1000);
  for (const int box : {0, 40}) {
    fs::last_write_time(path, written);
    auto shown = Show(box, box);
    const bool isWhole = box == 0;
    int begun = 0;
    EXPECT_EQ(isWhole ? PhotoChange::ShownImage : PhotoChange::FileAlone,
              AutoFixPhoto(Photo, shown.get(), [&] { ++begun; }));
    EXPECT_EQ(1, begun);
    EXPECT_EQ(Fixed, Now());
    EXPECT_EQ(mode_t{0640}, ModeOf(path));
    EXPECT_EQ(Original, ReadBytes(path + ".orig"));
    EXPECT_THAT(NamesInFolder(), ElementsAre("boat.jpg", "boat.jpg.orig"));

    EXPECT_EQ(PhotoChange::FileAlone, AutoFixPhoto(Photo, shown.get(), kNothing));
    EXPECT_EQ(Original, Now());
    EXPECT_EQ(mode_t{0640}, ModeOf(path));
    EXPECT_EQ(written, fs::last_write_time(path));
    EXPECT_THAT(NamesInFolder(), ElementsAre("boat.jpg"));
  }
}

TEST_F(AutoFixPhotoTest, TheShownImageIsCorrectedIfItIsWhole) {
  const auto expected = Show(0, 0);
  AutoFix(*expected);
  const auto shown = Show(0, 0);
  AutoFixPhoto(Photo, shown.get(), kNothing);
  EXPECT_EQ(PixelsOf(*expected), PixelsOf(*shown));
}

TEST_F(AutoFixPhotoTest, APhotoThatIsNotShownIsDecodedWhole) {
  EXPECT_EQ(PhotoChange::FileAlone, AutoFixPhoto(Photo, nullptr, kNothing));
  EXPECT_EQ(Fixed, Now());
}

TEST_F(AutoFixPhotoTest, AReadOnlyOrMissingPhotoIsAskedAboutFirst) {
  const auto shown = Show(0, 0);
  ASSERT_EQ(0, ::chmod(Photo.GetPath().c_str(), 0444));
  Messages.Answer = false;
  bool begun = false;
  EXPECT_EQ(PhotoChange::None, AutoFixPhoto(Photo, shown.get(), [&] { begun = true; }));
  EXPECT_EQ(Original, Now());
  EXPECT_EQ(mode_t{0444}, ModeOf(Photo.GetPath()));
  fs::remove(Photo.GetPath());
  EXPECT_EQ(PhotoChange::None, AutoFixPhoto(Photo, shown.get(), [&] { begun = true; }));
  EXPECT_FALSE(begun);
  EXPECT_EQ(2U, Messages.Texts.size());
  EXPECT_THAT(NamesInFolder(), ElementsAre());
}

TEST_F(AutoFixPhotoTest, WhatIsNoPictureIsPutBack) {
  const std::string rubbish = "no picture any more";
  Scratch.Write("photos/boat.jpg", rubbish);
  EXPECT_EQ("Can't save edited photo", FailureOf(nullptr));
  EXPECT_EQ(rubbish, Now());
  EXPECT_THAT(NamesInFolder(), ElementsAre("boat.jpg"));
}

TEST_F(AutoFixPhotoTest, EveryFailingStepLeavesThePhotoAndNoCopy) {
  int step = 0;
  for (bool done = false; !done;) {
    const auto shown = Show(0, 0);
    const CFailingStep fault(++step);
    const std::string failure = FailureOf(shown.get());
    done = failure == "none";
    if (done) continue;
    EXPECT_TRUE(failure == "Can't save edited photo" || failure == "Cannot make copy of original photo.");
    EXPECT_EQ(Original, Now()) << "step " << step;
    EXPECT_THAT(NamesInFolder(), ElementsAre("boat.jpg")) << "step " << step;
    PutBack();
  }
  EXPECT_GT(step, 8);
  EXPECT_EQ(Fixed, Now());
}

TEST_F(AutoFixPhotoTest, AFullDiskAndAReadOnlyFolderAreToldAndChangeNothing) {
  const auto shown = Show(40, 40);
  {
    const CFileSizeLimit full(Original.size() - 1);
    EXPECT_EQ("Cannot make copy of original photo.", FailureOf(shown.get()));
  }
  EXPECT_THAT(NamesInFolder(), ElementsAre("boat.jpg"));
  fs::permissions(Photo.GetPath(), fs::perms(0666));
  fs::permissions(Scratch.GetPath(), fs::perms(0755));
  EXPECT_TRUE(RunAsNobody([&] { return FailureOf(shown.get()) == "Cannot make copy of original photo."; }));
  EXPECT_EQ(Original, Now());
  EXPECT_THAT(NamesInFolder(), ElementsAre("boat.jpg"));
  ExpectRefusedWithoutThumbnails([&] { return AutoFixPhoto(Photo, shown.get(), kNothing); });

  // Undo in a folder that can't be changed.
  ASSERT_EQ("none", FailureOf(shown.get()));
  fs::permissions(Photo.GetPath(), fs::perms(0666));
  EXPECT_TRUE(
      RunAsNobody([&] { return FailureOf(nullptr).ends_with("can't be brought back: Permission denied."); }));
  EXPECT_THAT(NamesInFolder(), ElementsAre("boat.jpg", "boat.jpg.orig"));
}

TEST_F(AutoFixPhotoTest, KilledAtAnyStepOneWholeVersionHasTheNameAndTheOriginalIsKept) {
  const auto use = [&] { AutoFixPhoto(Photo, Show(0, 0).get(), kNothing); };
  for (const bool undoes : {false, true}) {
    int steps = 0;
    for (bool killed = true; killed; ++steps) {
      PutBack();
      if (undoes) use();
      StoreThumbnail();
      const std::string before = Now();
      killed = RunAndKillAtStep(steps + 1, use);
      ExpectNoStaleThumbnail(before);
      const bool hasCopy = fs::exists(Photo.GetPath() + ".orig");
      EXPECT_TRUE(!hasCopy || ReadBytes(Photo.GetPath() + ".orig") == Original) << "step " << steps;
      EXPECT_TRUE(Now() == Original || (Now() == Fixed && hasCopy)) << "step " << steps;
    }
    EXPECT_GT(steps, undoes ? 2 : 8);
  }
}

}  // namespace
