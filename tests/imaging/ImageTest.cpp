#include <gtest/gtest.h>

#include <algorithm>

#include "base/Exceptions.h"
#include "imaging/ForgedJpegs.h"
#include "imaging/ImageFile.h"
#include "imaging/JpegCodec.h"
#include "imaging/JpegImage.h"
#include "imaging/TiffImage.h"
#include "platform/Faults.h"
#include "support/ScratchFolder.h"

namespace {

std::string Jpeg(int width, int height) {
  const auto bytes = MakeJpeg({.Width = width, .Height = height}, PaintSoftly);
  return {bytes.begin(), bytes.end()};
}

std::unique_ptr<CJpegImage> Load(int width, int height, int boxWidth, int boxHeight) {
  const auto bytes = MakeJpeg({.Width = width, .Height = height, .Quality = 50}, PaintSoftly);
  auto image = std::make_unique<CJpegImage>();
  image->LoadMemory(bytes, boxWidth, boxHeight);
  return image;
}

ImageSize FittedSize(const CImage& image, int boxWidth, int boxHeight) {
  const auto fitted = image.MakeFitted(boxWidth, boxHeight);
  return fitted ? fitted->GetCurrentSize() : ImageSize{};
}

/// A TIFF of 5 by 3 pixels: red grows to the right, green downwards.
std::string Tiff() {
  std::string tiff = {'I', 'I', 42, 0, 8, 0, 0, 0, 8, 0};
  const auto put = [&](unsigned value, int bytes) {
    for (int k = 0; k < bytes; ++k) tiff += static_cast<char>(value >> 8 * k);
  };
  constexpr unsigned kPixels = 10 + 8 * 12 + 4 + 6;
  const unsigned entries[][4] = {{256, 3, 1, 5}, {257, 3, 1, 3},       {258, 3, 3, kPixels - 6},
                                 {262, 3, 1, 2}, {273, 4, 1, kPixels}, {277, 3, 1, 3},
                                 {278, 3, 1, 3}, {279, 4, 1, 45}};
  for (const auto& entry : entries) {
    put(entry[0], 2);
    put(entry[1], 2);
    put(entry[2], 4);
    put(entry[3], 4);
  }
  put(0, 4);
  for (int k = 0; k < 3; ++k) put(8, 2);
  for (unsigned y = 0; y < 3; ++y)
    for (unsigned x = 0; x < 5; ++x) put(10 * x | (20 * y) << 8 | 99U << 16, 3);
  return tiff;
}

}  // namespace

TEST(ImageTest, TypesFollowTheExtensionInAnyCase) {
  for (const char* name : {"a.jpg", "a.JPG", "/p/a.jpeg", "a.JPEG", "a.b.jPg"})
    EXPECT_EQ(ImageType::Jpeg, ImageTypeOfFile(name)) << name;
  for (const char* name : {"a.bmp", "a", "", "a.jpg.orig", "a.tif", "jpg", "a.jpg/b", "a.jp", "a.jpgx"})
    EXPECT_EQ(ImageType::None, ImageTypeOfFile(name)) << name;
  EXPECT_EQ(ImageType::None, ImageTypeFromExtension(""));
  EXPECT_EQ(ImageType::None, ImageTypeFromExtension("jpg"));
}

TEST(ImageTest, TheDecodedSizeIsTheSmallestThatCoversTheBox) {
  const struct {
    ImageSize Natural, Box, Current;
  } cases[] = {
      {{1600, 1200}, {140, 105}, {200, 150}}, {{1200, 1600}, {140, 105}, {150, 200}},
      {{200, 100}, {100, 50}, {100, 50}},     {{200, 100}, {101, 51}, {200, 100}},
      {{101, 99}, {50, 49}, {51, 50}},        {{400, 400}, {100, 300}, {100, 100}},
      {{400, 400}, {50, 400}, {50, 50}},      {{400, 400}, {51, 400}, {100, 100}},
      {{60, 40}, {140, 105}, {60, 40}},       {{200, 100}, {0, 0}, {200, 100}},
      {{200, 100}, {-5, 0}, {200, 100}},      {{200, 100}, {200, 0}, {25, 13}},
  };
  for (const auto& c : cases) {
    const auto image = Load(c.Natural.Width, c.Natural.Height, c.Box.Width, c.Box.Height);
    EXPECT_EQ(c.Natural, image->GetNaturalSize());
    EXPECT_EQ(c.Box, image->GetRequestedSize());
    EXPECT_EQ(c.Current, image->GetCurrentSize()) << c.Natural.Width << " in " << c.Box.Width;
  }
}

TEST(ImageTest, FitScaleAndScaledSize) {
  const auto small = Load(50, 40, 0, 0);
  EXPECT_EQ(1.0, small->FitScale(100, 100, false));
  EXPECT_EQ(2.0, small->FitScale(100, 100, true));
  EXPECT_EQ(0.5, small->FitScale(25, 100, false));
  EXPECT_EQ(0.5, small->FitScale(25, 100, true));
  EXPECT_EQ((ImageSize{37, 29}), small->ScaledSize(0.7499));
  const auto wide = Load(300, 2, 0, 0);
  EXPECT_EQ((ImageSize{3, 1}), wide->ScaledSize(0.01));
  EXPECT_EQ((ImageSize{1, 1}), wide->ScaledSize(-1));
}

TEST(ImageTest, FittedBitmapsAreCutToWholePixelsAndNeverEnlarged) {
  EXPECT_EQ((ImageSize{140, 105}), FittedSize(*Load(1600, 1200, 140, 105), 140, 105));
  EXPECT_EQ((ImageSize{78, 105}), FittedSize(*Load(1200, 1600, 140, 105), 140, 105));
  EXPECT_EQ((ImageSize{100, 50}), FittedSize(*Load(100, 50, 140, 105), 140, 105));
  EXPECT_EQ((ImageSize{140, 1}), FittedSize(*Load(300, 2, 0, 0), 140, 105)) << "however narrow";
  EXPECT_EQ((ImageSize{}), FittedSize(*Load(30, 20, 0, 0), 0, 105));
  EXPECT_EQ((ImageSize{}), FittedSize(CJpegImage(), 140, 105));

  const auto fitted = Load(200, 100, 0, 0)->MakeFitted(50, 50);
  EXPECT_EQ("", fitted->GetPath());
  EXPECT_EQ((ImageSize{}), fitted->GetRequestedSize());
  EXPECT_EQ((ImageSize{50, 25}), fitted->GetNaturalSize());
}

TEST(ImageTest, PixelsLieAsTheHeaderTells) {
  const auto image = Load(27, 20, 0, 0);
  const BitmapPixels pixels = image->GetPixels();
  EXPECT_EQ(27, pixels.Header.Width);
  EXPECT_EQ(-20, pixels.Header.Height);
  EXPECT_EQ(24, pixels.Header.BitCount);
  EXPECT_EQ(0, pixels.ExtraBytesPerPixel);
  EXPECT_EQ(3, pixels.RowPadding);
  EXPECT_NEAR(PaintSoftly(26, 19)[0], pixels.Bits[19 * 84 + 26 * 3 + 2], 12);
  EXPECT_EQ(0, pixels.Bits[84 - 1]);
}

TEST(ImageTest, ALoadThatFailsLeavesTheImageAsItWas) {
  const CScratchFolder scratch;
  CJpegImage image;
  image.LoadFile(scratch.Write("a.jpg", Jpeg(40, 30)), 0, 0);
  EXPECT_THROW(image.LoadFile(scratch.Write("b.jpg", "no picture"), 10, 10), CException);
  EXPECT_THROW(image.LoadFile(scratch.File("none.jpg"), 10, 10), CException);
  EXPECT_EQ(scratch.File("a.jpg"), image.GetPath());
  EXPECT_EQ((ImageSize{40, 30}), image.GetCurrentSize());
  EXPECT_EQ((ImageSize{}), image.GetRequestedSize());
  image.LoadFile(image.GetPath(), 5, 5);
  EXPECT_EQ(scratch.File("a.jpg"), image.GetPath());
  EXPECT_EQ((ImageSize{5, 4}), image.GetCurrentSize());
}

TEST(ImageTest, SavesWholeFilesOrNone) {
  const CScratchFolder scratch;
  const std::string path = scratch.Write("a.jpg", Jpeg(64, 48));
  const auto image = LoadImageFile(path, 0, 0);
  ASSERT_NE(nullptr, image);
  image->Save(path, 70);
  EXPECT_EQ((ImageSize{64, 48}), ReadImageSize(path));
  const std::string before = ReadBytes(path);
  platform::SetFaultPlan([](std::string_view operation, std::string_view) {
    return operation == "write" ? std::make_error_code(std::errc::no_space_on_device) : std::error_code();
  });
  EXPECT_THROW(image->Save(path, 10), CException);
  platform::SetFaultPlan({});
  EXPECT_EQ(before, ReadBytes(path));
  EXPECT_THROW(CJpegImage().Save(path, 70), CException);
  EXPECT_EQ(before, ReadBytes(path));
}

TEST(ImageTest, RotateTurnsTheFileAndLoadsItForTheSameBox) {
  const CScratchFolder scratch;
  const std::string path = scratch.Write("a.jpg", Jpeg(320, 240));
  const auto image = LoadImageFile(path, 100, 100);
  ASSERT_NE(nullptr, image);
  EXPECT_TRUE(image->RotatesWithoutLoss());
  EXPECT_TRUE(image->Rotate(90));
  EXPECT_EQ((ImageSize{240, 320}), image->GetNaturalSize());
  EXPECT_EQ((ImageSize{120, 160}), image->GetCurrentSize());
  EXPECT_EQ((ImageSize{100, 100}), image->GetRequestedSize());
  EXPECT_EQ(path, image->GetPath());
  EXPECT_EQ((ImageSize{240, 320}), ReadImageSize(path));
  EXPECT_THROW(image->Rotate(91), CError);

  scratch.Write("a.jpg", "no picture any more");
  EXPECT_FALSE(image->Rotate(90));
  EXPECT_EQ((ImageSize{240, 320}), image->GetNaturalSize()) << "the image is as it was";
  EXPECT_EQ("no picture any more", ReadBytes(path));
  EXPECT_FALSE(CJpegImage().Rotate(90)) << "nothing is held";
}

TEST(ImageTest, AFileThatGivesNoPictureIsNullWithoutAnException) {
  const CScratchFolder scratch;
  EXPECT_EQ(nullptr, LoadImageFile(scratch.Write("a.bmp", Jpeg(8, 8)), 0, 0));
  EXPECT_EQ(nullptr, LoadImageFile(scratch.Write("noextension", Jpeg(8, 8)), 0, 0));
  EXPECT_EQ(nullptr, LoadImageFile(scratch.Write("b.jpg", ""), 0, 0));
  EXPECT_EQ(nullptr, LoadImageFile(scratch.File("none.jpg"), 0, 0));
  EXPECT_EQ(nullptr, LoadImageFile(scratch.GetPath(), 0, 0));
  const auto two = MakeJpeg({.Colors = StoredColors::TwoChannels}, PaintSoftly);
  EXPECT_EQ(nullptr, LoadImageFile(scratch.Write("two.jpg", {two.begin(), two.end()}), 0, 0));
  EXPECT_EQ(nullptr, LoadImageFile(scratch.Write("b.tif", "II*"), 0, 0));
  const auto bare = MakeJpeg({.Colors = StoredColors::Ycck, .AdobeMarker = false}, PaintSoftly);
  EXPECT_EQ(nullptr, LoadImageFile(scratch.Write("bare.jpg", {bare.begin(), bare.end()}), 0, 0))
      << "what its four channels mean can't be told";
  EXPECT_EQ((ImageSize{}), ReadImageSize(scratch.File("b.jpg")));
  EXPECT_EQ((ImageSize{}), ReadImageSize(scratch.File("b.tif")));
  EXPECT_EQ((ImageSize{64, 48}), ReadImageSize(scratch.File("two.jpg")));
}

TEST(ImageTest, TheSizeOfAPhotoIsReadFromItsBeginningHoweverLargeItIs) {
  const CScratchFolder scratch;
  constexpr std::uintmax_t kHuge = std::uintmax_t{1} << 40;
  const std::string path = scratch.Write("a.jpg", Jpeg(64, 48));
  std::filesystem::resize_file(path, kHuge);
  EXPECT_EQ((ImageSize{64, 48}), ReadImageSize(path));
  bool isTooLarge = false;
  EXPECT_EQ(nullptr, LoadImageFile(path, 0, 0, &isTooLarge));
  EXPECT_TRUE(isTooLarge);

  // Behind a million bytes of headers.
  std::string late = Jpeg(64, 48);
  for (int k = 0; k < 16; ++k) late.insert(2, "\xFF\xE2\xFF\xFF" + std::string(65533, 'x'));
  EXPECT_EQ((ImageSize{64, 48}), ReadImageSize(scratch.Write("late.jpg", late)));
  std::filesystem::resize_file(scratch.Write("zeros.jpg", "\xFF\xD8"), kHuge);
  EXPECT_EQ((ImageSize{}), ReadImageSize(scratch.File("zeros.jpg")));
  const std::string tiff = scratch.Write("a.tif", Tiff());
  std::filesystem::resize_file(tiff, kHuge);
  EXPECT_EQ((ImageSize{5, 3}), ReadImageSize(tiff));
}

TEST(TiffImageTest, RowsRunUpwardsAndAreDrawnTheRightWayUp) {
  const CScratchFolder scratch;
  for (const char* name : {"a.tif", "a.TIFF"}) {
    const auto image = LoadImageFile(scratch.Write(name, Tiff()), 140, 105);
    ASSERT_NE(nullptr, image);
    EXPECT_EQ(ImageType::Tiff, image->GetType());
    EXPECT_EQ((ImageSize{5, 3}), image->GetCurrentSize());
    EXPECT_EQ((ImageSize{140, 105}), image->GetRequestedSize());
    EXPECT_TRUE(image->RotatesWithoutLoss());
    const BitmapPixels pixels = image->GetPixels();
    EXPECT_EQ(3, pixels.Header.Height);
    EXPECT_EQ(32, pixels.Header.BitCount);
    // Third pixel of the lowest row, which comes first.
    const std::uint8_t expected[] = {99, 40, 20, 255};
    EXPECT_TRUE(std::equal(expected, expected + 4, pixels.Bits + 8));
    const auto fitted = image->MakeFitted(140, 105);
    const BitmapPixels drawn = fitted->GetPixels();
    EXPECT_EQ(40, drawn.Bits[2 * 16 + 2 * 3 + 1]);
    EXPECT_EQ(0, drawn.Bits[2 * 3 + 1]);
  }
  EXPECT_EQ((ImageSize{5, 3}), ReadImageSize(scratch.File("a.tif")));
}

TEST(TiffImageTest, SavesAsPackBitsWithTheSamePixels) {
  const CScratchFolder scratch;
  CTiffImage image;
  image.LoadFile(scratch.Write("a.tif", Tiff()), 0, 0);
  image.Save(scratch.File("b.tif"), 1);
  CTiffImage saved;
  saved.LoadFile(scratch.File("b.tif"), 0, 0);
  ASSERT_EQ(image.GetNaturalSize(), saved.GetNaturalSize());
  EXPECT_TRUE(std::equal(image.GetPixels().Bits, image.GetPixels().Bits + 60, saved.GetPixels().Bits));
  EXPECT_FALSE(saved.IsCompressedAsJpeg());
  EXPECT_NE(std::string::npos, ReadBytes(scratch.File("b.tif")).find("Vellumar Photo Organizer"));
  EXPECT_THROW(image.Save(scratch.GetPath() + "/none/b.tif", 1), CException);
  EXPECT_THROW(CTiffImage().Save(scratch.File("c.tif"), 1), CException);
}

TEST(TiffImageTest, RotateWritesTheTurnedPixels) {
  const CScratchFolder scratch;
  const std::string path = scratch.Write("a.tif", Tiff());
  CTiffImage image;
  image.LoadFile(path, 140, 105);
  const auto redAndGreen = [&](int x, int y) {
    const BitmapPixels pixels = image.GetPixels();
    const std::uint8_t* pixel = pixels.Bits + ((pixels.Height - 1 - y) * pixels.Width + x) * 4;
    return std::pair(int{pixel[2]}, int{pixel[1]});
  };
  EXPECT_TRUE(image.Rotate(90));
  EXPECT_EQ((ImageSize{3, 5}), image.GetNaturalSize());
  EXPECT_EQ((ImageSize{140, 105}), image.GetRequestedSize());
  EXPECT_EQ(std::pair(0, 40), redAndGreen(0, 0)) << "the lower left corner";
  EXPECT_EQ(std::pair(10, 40), redAndGreen(0, 1));
  EXPECT_EQ(std::pair(40, 0), redAndGreen(2, 4));
  EXPECT_TRUE(image.Rotate(270));
  EXPECT_TRUE(image.Rotate(270));
  EXPECT_EQ((ImageSize{3, 5}), image.GetNaturalSize());
  EXPECT_EQ(std::pair(40, 0), redAndGreen(0, 0)) << "the upper right corner";

  const std::string before = ReadBytes(path);
  EXPECT_THROW(image.Rotate(180), CException);
  platform::SetFaultPlan([](auto, auto) { return make_error_code(std::errc::no_space_on_device); });
  EXPECT_THROW(image.Rotate(90), CException);
  platform::SetFaultPlan({});
  EXPECT_EQ(before, ReadBytes(path));
  EXPECT_FALSE(CTiffImage().Rotate(90));
}

TEST(TiffImageTest, DamageLeavesItEmptyAndPictureBombsAreNotDecoded) {
  const std::string tiff = Tiff();
  for (std::size_t size = 0; size < 110; ++size) {
    CTiffImage image;
    image.LoadMemory(std::span(reinterpret_cast<const std::uint8_t*>(tiff.data()), size), 0, 0);
    if (image.GetPixels().Bits == nullptr) {
      EXPECT_EQ((ImageSize{}), image.GetCurrentSize());
    }
  }
  std::string bomb = tiff;
  for (const std::size_t entry : {10U, 22U}) {
    bomb[entry + 2] = 4;  // sides of 32 bits
    for (std::size_t k = 8; k < 11; ++k) bomb[entry + k] = '\x7F';
  }
  CTiffImage image;
  image.LoadMemory(std::span(reinterpret_cast<const std::uint8_t*>(bomb.data()), bomb.size()), 0, 0);
  EXPECT_EQ(nullptr, image.GetPixels().Bits);
}
