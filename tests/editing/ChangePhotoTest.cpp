#include "base/Exceptions.h"
#include "editing/ChangePhoto.h"
#include "editing/EditingFixture.h"
#include "imaging/AutoFix.h"
#include "imaging/ImageFile.h"
#include "imaging/JpegTurn.h"
#include "imaging/PreparedPhoto.h"
#include "support/Corners.h"

using testing::ElementsAre;
using testing::StartsWith;

namespace {

namespace fs = std::filesystem;

/// A photo that holds more than its pixels.
class CLossyImage : public CJpegImage {
 public:
  bool RotatesWithoutLoss() const override { return false; }
};

class ChangePhotoTest : public CEditingFixture {
 protected:
  ChangePhotoTest() {
    const auto image = Show(0);
    Turned = AsText(TurnJpeg(std::vector<std::uint8_t>(Original.begin(), Original.end()), 90).value());
    AutoFix(*image);
    Fixed = AsText(image->SaveToMemory(70));
  }

  static std::string AsText(const std::vector<std::uint8_t>& bytes) { return {bytes.begin(), bytes.end()}; }

  std::unique_ptr<CImage> Show(int box) const { return LoadImageFile(Photo.GetPath(), box, box); }

  std::string Change(bool turns, CImage* shown) {
    const auto begins = [this] { ++Begun; };
    try {
      const PhotoChange change =
          turns ? RotatePhoto(Photo, shown, 90, begins) : AutoFixPhoto(Photo, shown, begins);
      return change == PhotoChange::None ? "none" : change == PhotoChange::FileAlone ? "file" : "image";
    } catch (const CException& exception) {
      return exception.GetMessage();
    }
  }

  /// Moves the photo's file elsewhere, leaves a link in its place and gives it a mode. Returns its path.
  std::string PutBehindLink() const {
    const std::string target = Scratch.File("elsewhere/boat.jpg");
    fs::rename(Photo.GetPath(), target);
    fs::create_symlink(target, Photo.GetPath());
    SetMode(0640);
    return target;
  }

  /// The photo before a change, with a stored thumbnail.
  void PutBack(bool corrected) {
    fs::remove_all(Pictures());
    Scratch.Write("Pictures/boat.jpg", corrected ? Fixed : Original);
    if (corrected) Scratch.Write("Pictures/boat.jpg.orig", Original);
    Cache.StoreBytes(Photo.GetAssetID(), std::vector<std::uint8_t>(100, 'x'));
  }

  std::string Turned, Fixed;
  int Begun = 0;
};

TEST_F(ChangePhotoTest, ATurnReplacesTheFileAndTheShownImage) {
  const auto shown = Show(40);
  const std::string target = PutBehindLink();
  EXPECT_EQ(Change(true, shown.get()), "image");
  EXPECT_EQ(ReadBytes(target), Turned);
  EXPECT_TRUE(fs::is_symlink(Photo.GetPath()));
  EXPECT_EQ(RotatePhoto(Photo, shown.get(), 270, {}), PhotoChange::ShownImage);
  EXPECT_EQ(shown->SaveToMemory(100), Show(40)->SaveToMemory(100));
  // The photo has been renamed since it was loaded.
  fs::rename(Photo.GetPath(), InFolder("lake.jpg"));
  Photo.SetPath(InFolder("lake.jpg"));
  EXPECT_EQ(Change(true, shown.get()), "file");
  EXPECT_EQ(ReadImageSize(target), (ImageSize{96, 160}));
}

TEST_F(ChangePhotoTest, ASecondCorrectionBringsBackBytesTimesAndMode) {
  const std::string target = PutBehindLink();
  const auto written = fs::last_write_time(target) - std::chrono::hours(1000);
  fs::last_write_time(target, written);
  const auto whole = Show(0), reduced = Show(40);
  for (CImage* const shown : {whole.get(), reduced.get(), static_cast<CImage*>(nullptr)}) {
    EXPECT_EQ(Change(false, shown), shown == whole.get() ? "image" : "file");
    EXPECT_EQ(ReadBytes(target), Fixed);
    EXPECT_EQ(Change(false, shown), "file");
    EXPECT_EQ(ReadBytes(target), Original);
    EXPECT_EQ(GetMode(), 0640U);
    EXPECT_EQ(fs::last_write_time(target), written);
    EXPECT_THAT(NamesInFolder(), ElementsAre("boat.jpg"));
  }
  EXPECT_EQ(AsText(whole->SaveToMemory(70)), Fixed) << "the shown image is corrected if it is whole";
  EXPECT_EQ(Begun, 6);
}

TEST_F(ChangePhotoTest, WhatCannotBeChangedStaysAndTheUserIsTold) {
  EXPECT_EQ(Change(true, nullptr), "none") << "no image is shown";
  CLossyImage lossy;
  lossy.LoadFile(Photo.GetPath(), 0, 0);
  Messages.Answer = false;
  EXPECT_EQ(Change(true, &lossy), "none");
  EXPECT_EQ(Change(false, &lossy), "Can't save edited photo");
  EXPECT_EQ(Now(), Original);
  Messages.Answer = true;
  EXPECT_EQ(Change(true, &lossy), "image");
  Scratch.Write("Pictures/boat.jpg", "no picture any more");
  Messages.Texts.clear();
  EXPECT_EQ(Change(true, &lossy), "image");
  EXPECT_EQ(Change(false, nullptr), "Can't save edited photo");
  EXPECT_EQ(Now(), "no picture any more");
  EXPECT_THAT(Messages.Texts, ElementsAre(StartsWith("This photo contains additional information"),
                                          StartsWith("This photo can't be turned: its file is damaged")));

  PutBack(false);
  SetMode(0444);
  Messages.Answer = false;
  for (const bool turns : {true, false}) EXPECT_EQ(Change(turns, &lossy), "none");
}

TEST_F(ChangePhotoTest, AfterAFaultOrAKillAtAnyStepThePhotoIsWhole) {
  for (const auto& [turns, corrected] : {std::pair(true, false), {false, false}, {false, true}}) {
    for (const bool kills : {false, true}) {
      const std::string after = turns ? Turned : corrected ? Original : Fixed;
      int step = 0;
      for (bool done = false; !done;) {
        PutBack(corrected);
        const std::string before = Now();
        if (kills) {
          done = !RunAndKillAtStep(++step, [&] { Change(turns, Show(0).get()); });
        } else {
          const auto shown = Show(0);
          const CFailingStep fault(++step);
          const std::string result = Change(turns, shown.get());
          done = fault.GetSteps() < step;
          EXPECT_TRUE(!turns || done || result.ends_with("can't be written: No space left on device."))
              << result;
          // Where the last step of a turn fails, the flush of the folder, the file has been replaced.
          if (result != "image" && result != "file") {
            EXPECT_EQ(NamesInFolder().size(), corrected ? 2U : 1U) << "step " << step;
            EXPECT_TRUE(turns || Now() == before) << "step " << step;
          }
        }
        Cache.Open(CachePath, Catalog.GetDBGUID());
        const std::string now = Now(), copy = ReadBytes(Photo.GetPath() + ".orig");
        EXPECT_TRUE(now == after || (now == before && !done)) << "step " << step;
        EXPECT_TRUE(now == before || !Cache.Has(Photo.GetAssetID())) << "step " << step;
        EXPECT_TRUE(copy.empty() ? now != Fixed : copy == Original) << "step " << step;
      }
      EXPECT_GT(step, corrected ? 2 : 4);
    }
  }
}

TEST_F(ChangePhotoTest, AFullDiskAndAReadOnlyFolderAreToldAndChangeNothing) {
  for (const bool turns : {true, false}) {
    PutBack(false);
    const auto shown = Show(40);
    {
      const CFileSizeLimit full(0);  // the thumbnail can't be forgotten
      EXPECT_EQ(Change(turns, shown.get()), "none");
    }
    EXPECT_EQ(Messages.Texts.size(), turns ? 1U : 2U);
    EXPECT_TRUE(Cache.Has(Photo.GetAssetID()));
    Cache.Remove(Photo.GetAssetID());
    SetMode(0666);
    fs::permissions(Scratch.GetPath(), fs::perms(0755));
    const std::string told = turns ? "Cannot open destination file" : "Cannot make copy of original photo.";
    EXPECT_TRUE(RunAsNobody([&] { return Change(turns, shown.get()) == told; }));
    EXPECT_EQ(Now(), Original);
  }
}

TEST_F(ChangePhotoTest, EveryWayUpLooksTheSameBeforeAndAfterEachCommand) {
  const std::pair<int, const char*> steps[] = {{90, "BRWG"}, {270, "RGBW"}, {270, "GWRB"}, {90, "RGBW"}};
  for (unsigned orientation = 1; orientation <= 8; ++orientation) {
    const auto expectSeen = [&](const std::string& corners) {
      EXPECT_EQ(ReadCorners(Show(0)->GetPixels()), corners) << orientation;
      EXPECT_EQ(ReadCorners(Show(40)->MakeFitted(30, 30)->GetPixels()), corners) << orientation;
      CJpegImage thumbnail;
      thumbnail.LoadMemory(PreparePhoto(Photo.GetPath()).Thumbnail, 0, 0);
      EXPECT_EQ(ReadCorners(thumbnail.GetPixels()), corners) << orientation;
    };
    const std::string before = MakeCornersJpeg(orientation, {160, 96});
    Scratch.Write("Pictures/boat.jpg", before);
    expectSeen("RGBW");
    const auto shown = Show(40);
    for (const auto& [angle, corners] : steps) {
      EXPECT_EQ(RotatePhoto(Photo, shown.get(), angle, {}), PhotoChange::ShownImage);
      EXPECT_EQ(ReadCorners(shown->GetPixels()), corners) << orientation;
      EXPECT_EQ(Now().substr(0, 60), before.substr(0, 60)) << "the tag stays";
      expectSeen(corners);
    }
    const std::string turnedBack = Now();
    EXPECT_EQ(AutoFixPhoto(Photo, Show(0).get(), {}), PhotoChange::ShownImage);
    expectSeen("RGBW");
    EXPECT_EQ(AutoFixPhoto(Photo, shown.get(), {}), PhotoChange::FileAlone);
    EXPECT_EQ(Now(), turnedBack);
  }
}

}  // namespace
