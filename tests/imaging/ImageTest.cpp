#include <gtest/gtest.h>

#include <algorithm>

#include "base/Exceptions.h"
#include "imaging/Image.h"
#include "imaging/ImageFile.h"
#include "imaging/TiffImage.h"
#include "platform/Faults.h"
#include "support/ScratchFolder.h"
#include "support/TestJpeg.h"

namespace {

std::string Jpeg(int width, int height) {
  const auto bytes = MakeJpeg({.Width = width, .Height = height});
  return {bytes.begin(), bytes.end()};
}

std::unique_ptr<CJpegImage> Load(ImageSize size, ImageSize box) {
  const auto bytes = MakeJpeg({.Width = size.Width, .Height = size.Height, .Quality = 50});
  auto image = std::make_unique<CJpegImage>();
  image->LoadMemory(bytes, box.Width, box.Height);
  return image;
}

ImageSize FittedSize(const CImage& image, int boxWidth, int boxHeight) {
  const auto fitted = image.MakeFitted(boxWidth, boxHeight);
  return fitted ? fitted->GetCurrentSize() : ImageSize{};
}

void LetWritesFail() {
  platform::SetFaultPlan([](std::string_view operation, std::string_view) {
    return operation == "write" ? std::make_error_code(std::errc::no_space_on_device) : std::error_code();
  });
}

/// A TIFF of 5 by 3 pixels: red grows to the right, green downwards. `pageNumber` adds that tag.
std::string Tiff(bool pageNumber = false) {
  const unsigned count = pageNumber ? 9 : 8;
  std::string tiff = {'I', 'I', 42, 0, 8, 0, 0, 0, static_cast<char>(count), 0};
  const auto put = [&](unsigned value, int bytes) {
    for (int k = 0; k < bytes; ++k) tiff += static_cast<char>(value >> 8 * k);
  };
  const unsigned depths = 10 + count * 12 + 4, pixels = depths + 6;
  const unsigned entries[][4] = {{256, 3, 1, 5}, {257, 3, 1, 3},      {258, 3, 3, depths},
                                 {262, 3, 1, 2}, {273, 4, 1, pixels}, {277, 3, 1, 3},
                                 {278, 3, 1, 3}, {279, 4, 1, 45},     {297, 3, 2, 0}};
  for (const auto& entry : std::span(entries).first(count)) {
    put(entry[0] | entry[1] << 16, 4);
    put(entry[2], 4);
    put(entry[3], 4);
  }
  put(0, 4);
  for (int k = 0; k < 3; ++k) put(8, 2);
  for (unsigned y = 0; y < 3; ++y)
    for (unsigned x = 0; x < 5; ++x) put(10 * x | (20 * y) << 8 | 99U << 16, 3);
  return tiff;
}

std::span<const std::uint8_t> AsBytes(const std::string& text) {
  return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

}  // namespace

TEST(ImageTest, TypesFollowTheExtensionInAnyCase) {
  for (const char* name : {"a.jpg", "a.JPG", "/p/a.jpeg", "a.JPEG", "a.b.jPg"})
    EXPECT_EQ(ImageTypeOfFile(name), ImageType::Jpeg) << name;
  for (const char* name : {"a.bmp", "a", "", "a.jpg.orig", "a.tif", "jpg", "a.jpg/b", "a.jp", "a.jpgx"})
    EXPECT_EQ(ImageTypeOfFile(name), ImageType::None) << name;
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
    const auto image = Load(c.Natural, c.Box);
    EXPECT_EQ(image->GetNaturalSize(), c.Natural);
    EXPECT_EQ(image->GetRequestedSize(), c.Box);
    EXPECT_EQ(image->GetCurrentSize(), c.Current) << c.Natural.Width << " in " << c.Box.Width;
  }
}

TEST(ImageTest, ScalesAreCutToWholePixelsAndFittedBitmapsNeverEnlarged) {
  const auto small = Load({50, 40}, {});
  EXPECT_EQ(small->FitScale(100, 100, false), 1.0);
  EXPECT_EQ(small->FitScale(100, 100, true), 2.0);
  EXPECT_EQ(small->FitScale(25, 100, false), 0.5);
  EXPECT_EQ(small->ScaledSize(0.7499), (ImageSize{37, 29}));
  const auto wide = Load({300, 2}, {});
  EXPECT_EQ(wide->ScaledSize(0.01), (ImageSize{3, 1}));
  EXPECT_EQ(FittedSize(*wide, 140, 105), (ImageSize{140, 1})) << "however narrow";
  EXPECT_EQ(FittedSize(*Load({1200, 1600}, {140, 105}), 140, 105), (ImageSize{78, 105}));
  EXPECT_EQ(FittedSize(*small, 140, 105), (ImageSize{50, 40}));
  EXPECT_EQ(FittedSize(*small, 0, 105), (ImageSize{}));
  EXPECT_EQ(FittedSize(CJpegImage(), 140, 105), (ImageSize{}));

  const auto image = Load({27, 20}, {});
  const PixelBuffer pixels = image->GetPixels();
  EXPECT_EQ(pixels.BytesPerPixel, 3);
  EXPECT_EQ(pixels.RowStep, 84) << "27 pixels and 3 bytes of padding";
  EXPECT_NEAR(pixels.Row(19)[26 * 3 + 2], PaintSoftly(26, 19)[0], 12);
  EXPECT_EQ(pixels.Row(1)[-1], 0);
  EXPECT_EQ(pixels.Row(20)[-1], 0);
}

TEST(ImageTest, ALoadThatFailsLeavesTheImageAsItWas) {
  const CScratchFolder scratch;
  CJpegImage image;
  image.LoadFile(scratch.Write("a.jpg", Jpeg(40, 30)), 0, 0);
  EXPECT_THROW(image.LoadFile(scratch.Write("b.jpg", "no picture"), 10, 10), CException);
  EXPECT_THROW(image.LoadFile(scratch.File("none.jpg"), 10, 10), CException);
  EXPECT_EQ(image.GetPath(), scratch.File("a.jpg"));
  EXPECT_EQ(image.GetCurrentSize(), (ImageSize{40, 30}));
  EXPECT_EQ(image.GetRequestedSize(), (ImageSize{}));
  image.LoadFile(image.GetPath(), 5, 5);
  EXPECT_EQ(image.GetPath(), scratch.File("a.jpg"));
  EXPECT_EQ(image.GetCurrentSize(), (ImageSize{5, 4}));
}

TEST(ImageTest, SavesWholeFilesOrNoneAndTurnsItsFile) {
  const CScratchFolder scratch;
  const std::string path = scratch.Write("a.jpg", Jpeg(320, 240));
  LoadImageFile(path, 0, 0)->Save(path, 70);
  const auto image = LoadImageFile(path, 100, 100);
  ASSERT_NE(image, nullptr);
  EXPECT_TRUE(image->Rotate(90));
  EXPECT_EQ(image->GetNaturalSize(), (ImageSize{240, 320}));
  EXPECT_EQ(image->GetCurrentSize(), (ImageSize{120, 160})) << "loaded for the same box";
  EXPECT_EQ(image->GetPath(), path);
  EXPECT_EQ(ReadImageSize(path), (ImageSize{240, 320}));
  EXPECT_THROW(image->Rotate(91), CError);

  const std::string before = ReadBytes(path);
  LetWritesFail();
  EXPECT_THROW(image->Save(path, 10), CException);
  platform::SetFaultPlan({});
  EXPECT_THROW(CJpegImage().Save(path, 70), CException);
  EXPECT_EQ(ReadBytes(path), before);
  scratch.Write("a.jpg", "no picture any more");
  EXPECT_FALSE(image->Rotate(90));
  EXPECT_EQ(image->GetNaturalSize(), (ImageSize{240, 320})) << "the image is as it was";
  EXPECT_EQ(ReadBytes(path), "no picture any more");
  EXPECT_FALSE(CJpegImage().Rotate(90)) << "nothing is held";
}

TEST(ImageTest, AFileThatGivesNoPictureIsNullWithoutAnException) {
  const CScratchFolder scratch;
  const auto two = MakeJpeg({.Colors = StoredColors::TwoChannels});
  const std::pair<const char*, std::string> files[] = {{"a.bmp", Jpeg(8, 8)},
                                                       {"noextension", Jpeg(8, 8)},
                                                       {"b.jpg", ""},
                                                       {"b.tif", "II*"},
                                                       {"two.jpg", {two.begin(), two.end()}}};
  for (const auto& [name, bytes] : files)
    EXPECT_EQ(LoadImageFile(scratch.Write(name, bytes), 0, 0), nullptr) << name;
  EXPECT_EQ(LoadImageFile(scratch.File("none.jpg"), 0, 0), nullptr);
  for (const char* name : {"a.bmp", "b.jpg", "b.tif", "none.jpg", "none.tif"})
    EXPECT_EQ(ReadImageSize(scratch.File(name)), (ImageSize{})) << name;
  EXPECT_EQ(ReadImageSize(scratch.File("two.jpg")), (ImageSize{64, 48}));
}

TEST(ImageTest, TheSizeOfAPhotoIsReadFromItsBeginningHoweverLargeItIs) {
  const CScratchFolder scratch;
  constexpr std::uintmax_t kHuge = std::uintmax_t{1} << 40;
  const std::string path = scratch.Write("a.jpg", Jpeg(64, 48));
  std::filesystem::resize_file(path, kHuge);
  EXPECT_EQ(ReadImageSize(path), (ImageSize{64, 48}));
  bool isTooLarge = false;
  EXPECT_EQ(LoadImageFile(path, 0, 0, &isTooLarge), nullptr);
  EXPECT_TRUE(isTooLarge);
  EXPECT_EQ(LoadImageFile(scratch.File("none.jpg"), 0, 0, &isTooLarge), nullptr);
  EXPECT_FALSE(isTooLarge);

  // Behind a million bytes of headers.
  std::string late = Jpeg(64, 48);
  for (int k = 0; k < 16; ++k) late.insert(2, "\xFF\xE2\xFF\xFF" + std::string(65533, 'x'));
  EXPECT_EQ(ReadImageSize(scratch.Write("late.jpg", late)), (ImageSize{64, 48}));
  std::filesystem::resize_file(scratch.Write("zeros.jpg", "\xFF\xD8"), kHuge);
  EXPECT_EQ(ReadImageSize(scratch.File("zeros.jpg")), (ImageSize{}));
  std::filesystem::resize_file(scratch.Write("a.tif", Tiff()), kHuge);
  EXPECT_EQ(ReadImageSize(scratch.File("a.tif")), (ImageSize{5, 3}));
}

TEST(TiffImageTest, RowsRunUpwardsAndAreDrawnTheRightWayUp) {
  const CScratchFolder scratch;
  const auto image = LoadImageFile(scratch.Write("a.TIFF", Tiff()), 140, 105);
  ASSERT_NE(image, nullptr);
  EXPECT_EQ(image->GetCurrentSize(), (ImageSize{5, 3}));
  EXPECT_EQ(image->GetRequestedSize(), (ImageSize{140, 105}));
  EXPECT_TRUE(image->RotatesWithoutLoss());
  const PixelBuffer pixels = image->GetPixels();
  EXPECT_EQ(pixels.RowStep, -20);
  const std::uint8_t expected[] = {99, 40, 20, 255};
  EXPECT_TRUE(std::equal(expected, expected + 4, pixels.Row(2) + 8));
  EXPECT_EQ(image->MakeFitted(140, 105)->GetPixels().Row(2)[2 * 3 + 1], 40);

  CTiffImage paged;
  paged.LoadFile(scratch.Write("paged.tif", Tiff(true)), 0, 0);
  EXPECT_FALSE(paged.RotatesWithoutLoss());
  EXPECT_FALSE(paged.IsCompressedAsJpeg());
}

TEST(TiffImageTest, SavesAndTurnsItsPixels) {
  const CScratchFolder scratch;
  const std::string path = scratch.Write("a.tif", Tiff());
  CTiffImage image;
  image.LoadFile(path, 140, 105);
  const auto redAndGreen = [&](int x, int y) {
    const std::uint8_t* pixel = image.GetPixels().Row(y) + x * 4;
    return std::pair(int{pixel[2]}, int{pixel[1]});
  };
  image.Save(path, 1);
  EXPECT_NE(ReadBytes(path).find("Vellumar Photo Organizer"), std::string::npos);
  image.LoadFile(path, 140, 105);
  EXPECT_EQ(redAndGreen(4, 1), std::pair(40, 20));
  EXPECT_TRUE(image.Rotate(90));
  EXPECT_EQ(image.GetNaturalSize(), (ImageSize{3, 5}));
  EXPECT_EQ(image.GetRequestedSize(), (ImageSize{140, 105}));
  EXPECT_EQ(redAndGreen(0, 0), std::pair(0, 40)) << "the lower left corner";
  EXPECT_EQ(redAndGreen(2, 4), std::pair(40, 0));
  EXPECT_TRUE(image.Rotate(270) && image.Rotate(270));
  EXPECT_EQ(redAndGreen(0, 0), std::pair(40, 0)) << "the upper right corner";

  const std::string before = ReadBytes(path);
  EXPECT_THROW(image.Rotate(180), CException);
  LetWritesFail();
  EXPECT_THROW(image.Rotate(90), CException);
  EXPECT_THROW(image.Save(path, 1), CException);
  platform::SetFaultPlan({});
  EXPECT_THROW(CTiffImage().Save(path, 1), CException);
  EXPECT_FALSE(CTiffImage().Rotate(90));
  EXPECT_EQ(ReadBytes(path), before);
}

TEST(TiffImageTest, DamageLeavesItEmptyAndPictureBombsAreNotDecoded) {
  const std::string tiff = Tiff();
  CTiffImage image;
  for (std::size_t size = 0; size < 110; ++size) {
    image.LoadMemory(AsBytes(tiff).first(size), 0, 0);
    EXPECT_EQ(image.GetPixels().Top == nullptr, image.GetCurrentSize() == ImageSize{});
  }
  std::string bomb = tiff;
  for (const std::size_t entry : {10U, 22U}) {
    bomb[entry + 2] = 4;  // sides of 32 bits
    for (std::size_t k = 8; k < 11; ++k) bomb[entry + k] = '\x7F';
  }
  image.LoadMemory(AsBytes(bomb), 0, 0);
  EXPECT_EQ(image.GetPixels().Top, nullptr);
  for (const std::size_t entry : {10U, 22U}) bomb[entry + 10] = 0;
  EXPECT_THROW(image.LoadMemory(AsBytes(bomb), 0, 0), CException) << "32639 by 32639 pixels";
}
