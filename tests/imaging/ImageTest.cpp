#include <gtest/gtest.h>

#include <algorithm>

#include "base/Exceptions.h"
#include "imaging/Image.h"
#include "imaging/ImageFile.h"
#include "imaging/TiffImage.h"
#include "support/Corners.h"
#include "support/ScratchFolder.h"
#include "support/TestJpeg.h"

namespace {

std::unique_ptr<CJpegImage> Load(ImageSize size, ImageSize box) {
  const auto bytes = MakeJpeg({.Width = size.Width, .Height = size.Height, .Quality = 50});
  auto image = std::make_unique<CJpegImage>();
  image->LoadMemory(bytes, box.Width, box.Height);
  return image;
}

/// A TIFF of 5 by 3 pixels: red grows to the right, green downwards. `pageNumber` adds that tag.
std::string Tiff(bool pageNumber = false) {
  const unsigned count = pageNumber ? 9 : 8, depths = 14 + count * 12, pixels = depths + 6;
  std::string tiff("II*\0\x08\0\0\0", 8);
  const auto put = [&](unsigned value, int bytes) {
    for (int k = 0; k < bytes; ++k) tiff += static_cast<char>(value >> 8 * k);
  };
  const unsigned entries[][4] = {{256, 3, 1, 5}, {257, 3, 1, 3},      {258, 3, 3, depths},
                                 {262, 3, 1, 2}, {273, 4, 1, pixels}, {277, 3, 1, 3},
                                 {278, 3, 1, 3}, {279, 4, 1, 45},     {297, 3, 2, 0}};
  put(count, 2);
  for (const auto& [tag, type, number, value] : std::span(entries).first(count)) {
    put(tag | type << 16, 4);
    put(number, 4);
    put(value, 4);
  }
  for (const unsigned depth : {0U, 0U, 8U, 8U, 8U}) put(depth, 2);
  for (unsigned i = 0; i < 15; ++i) put(10 * (i % 5) | (20 * (i / 5)) << 8 | 99U << 16, 3);
  return tiff;
}

/// How many pixels of a stored picture aren't where they are seen.
int CountMisplaced(const CImage& stored, const CImage& seen, unsigned orientation) {
  const auto [width, height] = stored.GetCurrentSize();
  EXPECT_EQ(seen.GetCurrentSize(), orientation > 4 ? (ImageSize{height, width}) : (ImageSize{width, height}));
  const int bytes = stored.GetPixels().BytesPerPixel;
  int misplaced = 0;
  for (int i = 0; i < width * height; ++i) {
    const auto [x, y] = SeenAt(orientation, i / width, i % width, seen.GetCurrentSize());
    const std::uint8_t* pixel = stored.GetPixels().Row(i / width) + i % width * bytes;
    misplaced += !std::equal(pixel, pixel + 3, seen.GetPixels().Row(y) + x * bytes);
  }
  return misplaced;
}

}  // namespace

TEST(ImageTest, TheDecodedSizeIsTheSmallestThatCoversTheBox) {
  // The size of the photo, the box, and the size that it is decoded to.
  const ImageSize cases[][3] = {
      {{1600, 1200}, {140, 105}, {200, 150}}, {{1200, 1600}, {140, 105}, {150, 200}},
      {{200, 100}, {100, 50}, {100, 50}},     {{200, 100}, {101, 51}, {200, 100}},
      {{101, 99}, {50, 49}, {51, 50}},        {{400, 400}, {100, 300}, {100, 100}},
      {{400, 400}, {50, 400}, {50, 50}},      {{400, 400}, {51, 400}, {100, 100}},
      {{60, 40}, {140, 105}, {60, 40}},       {{200, 100}, {0, 0}, {200, 100}},
      {{200, 100}, {-5, 0}, {200, 100}},      {{200, 100}, {200, 0}, {25, 13}},
  };
  for (const auto& [natural, box, current] : cases) {
    const auto image = Load(natural, box);
    EXPECT_EQ(image->GetNaturalSize(), natural);
    EXPECT_EQ(image->GetCurrentSize(), current) << natural.Width << " in " << box.Width;
  }
}

TEST(ImageTest, ScalesAreCutToWholePixelsAndFittedBitmapsNeverEnlarged) {
  const auto small = Load({50, 40}, {});
  EXPECT_EQ(small->FitScale(100, 100, false), 1.0);
  EXPECT_EQ(small->FitScale(100, 100, true), 2.0);
  EXPECT_EQ(small->ScaledSize(0.7499), (ImageSize{37, 29}));
  const auto wide = Load({300, 2}, {});
  EXPECT_EQ(wide->ScaledSize(0.01), (ImageSize{3, 1}));
  EXPECT_EQ(wide->MakeFitted(140, 105)->GetCurrentSize(), (ImageSize{140, 1})) << "however narrow";
  EXPECT_EQ(small->MakeFitted(140, 105)->GetCurrentSize(), (ImageSize{50, 40}));
  EXPECT_EQ(small->MakeFitted(0, 105), nullptr);
  EXPECT_EQ(CJpegImage().MakeFitted(140, 105), nullptr);
}

TEST(ImageTest, WhatFailsLeavesTheImageAndItsFileAsTheyWere) {
  const CScratchFolder scratch;
  const std::string path = scratch.Write("a.jpg", MakeJpeg(320, 240, 9, 99, 199));
  CJpegImage image;
  image.LoadFile(path, 100, 100);
  EXPECT_THROW(image.LoadFile(scratch.Write("b.jpg", "no picture"), 10, 10), CException);
  EXPECT_THROW(image.LoadFile(scratch.File("none.jpg"), 10, 10), CException);
  EXPECT_TRUE(image.Rotate(90));
  EXPECT_EQ(image.GetNaturalSize(), (ImageSize{240, 320}));
  EXPECT_EQ(image.GetCurrentSize(), (ImageSize{120, 160})) << "loaded for the same box";
  EXPECT_EQ(image.GetPath(), path);
  image.Save(path, 70);
  EXPECT_EQ(ReadImageSize(path), (ImageSize{120, 160}));

  const std::string before = ReadBytes(path);
  EXPECT_THROW(image.Rotate(91), CError);
  EXPECT_THROW(image.Save("/none/a.jpg", 10), CException);
  EXPECT_THROW(CJpegImage().Save(path, 70), CException);
  EXPECT_EQ(ReadBytes(path), before);
  scratch.Write("a.jpg", "no picture any more");
  EXPECT_FALSE(image.Rotate(90));
  EXPECT_EQ(image.GetNaturalSize(), (ImageSize{240, 320}));
  EXPECT_EQ(ReadBytes(path), "no picture any more");
  EXPECT_FALSE(CJpegImage().Rotate(90)) << "nothing is held";
}

TEST(ImageTest, AFileThatGivesNoPictureIsNullWithoutAnException) {
  const CScratchFolder scratch;
  const std::string jpeg = MakeJpeg(64, 48, 9, 99, 199);
  const std::pair<const char*, std::string> files[] = {
      {"a.bmp", jpeg}, {"noextension", jpeg}, {"b.jpg", ""}, {"b.tif", "II*"}};
  for (const auto& [name, bytes] : files) {
    EXPECT_EQ(LoadImageFile(scratch.Write(name, bytes), 0, 0), nullptr) << name;
    EXPECT_EQ(ReadImageSize(scratch.File(name)), ImageSize{}) << name;
  }
  bool isTooLarge = true;
  EXPECT_EQ(LoadImageFile(scratch.File("none.jpg"), 0, 0, &isTooLarge), nullptr);
  EXPECT_FALSE(isTooLarge);
  EXPECT_EQ(ReadImageSize(scratch.File("none.jpg")), ImageSize{});

  // The size is read from the beginning, however large the file is.
  constexpr std::uintmax_t kHuge = std::uintmax_t{1} << 40;
  std::filesystem::resize_file(scratch.Write("a.jpg", jpeg), kHuge);
  std::filesystem::resize_file(scratch.Write("a.tif", Tiff()), kHuge);
  std::filesystem::resize_file(scratch.Write("zeros.jpg", "\xFF\xD8"), kHuge);
  EXPECT_EQ(ReadImageSize(scratch.File("a.jpg")), (ImageSize{64, 48}));
  EXPECT_EQ(ReadImageSize(scratch.File("a.tif")), (ImageSize{5, 3}));
  EXPECT_EQ(ReadImageSize(scratch.File("zeros.jpg")), ImageSize{});
  EXPECT_EQ(LoadImageFile(scratch.File("a.jpg"), 0, 0, &isTooLarge), nullptr);
  EXPECT_TRUE(isTooLarge);
  std::string late = jpeg;  // behind a million bytes of headers
  for (int k = 0; k < 16; ++k) late.insert(2, "\xFF\xE2\xFF\xFF" + std::string(65533, 'x'));
  EXPECT_EQ(ReadImageSize(scratch.Write("late.jpg", late)), (ImageSize{64, 48}));
}

TEST(TiffImageTest, SavesAndTurnsItsPixels) {
  const CScratchFolder scratch;
  const std::string path = scratch.Write("a.TIFF", Tiff());
  const auto image = LoadImageFile(path, 140, 105);
  ASSERT_NE(image, nullptr);
  EXPECT_TRUE(image->RotatesWithoutLoss());
  EXPECT_EQ(image->GetPixels().RowStep, -20) << "rows run upwards";
  EXPECT_EQ(image->GetPixels().Row(2)[8], 99);
  const auto redAndGreen = [&](int x, int y) {
    const std::uint8_t* pixel = image->GetPixels().Row(y) + x * 4;
    return std::pair(int{pixel[2]}, int{pixel[1]});
  };
  EXPECT_EQ(redAndGreen(4, 1), std::pair(40, 20));
  image->Save(path, 1);
  EXPECT_NE(ReadBytes(path).find("Vellumar Photo Organizer"), std::string::npos);
  EXPECT_TRUE(image->Rotate(90));
  EXPECT_EQ(image->GetNaturalSize(), (ImageSize{3, 5}));
  EXPECT_EQ(redAndGreen(0, 0), std::pair(0, 40)) << "the lower left corner";
  EXPECT_EQ(redAndGreen(2, 4), std::pair(40, 0));
  EXPECT_TRUE(image->Rotate(270) && image->Rotate(270));
  EXPECT_EQ(redAndGreen(0, 0), std::pair(40, 0)) << "the upper right corner";

  const std::string before = ReadBytes(path);
  EXPECT_THROW(image->Rotate(180), CException);
  EXPECT_THROW(image->Save("/none/a.tif", 1), CException);
  EXPECT_THROW(CTiffImage().Save(path, 1), CException);
  EXPECT_FALSE(CTiffImage().Rotate(90));
  EXPECT_EQ(ReadBytes(path), before);
}

TEST(TiffImageTest, DamageLeavesItEmptyAndPictureBombsAreNotDecoded) {
  CTiffImage image;
  const auto load = [&image](const std::string& tiff) {
    image.LoadMemory({reinterpret_cast<const std::uint8_t*>(tiff.data()), tiff.size()}, 0, 0);
  };
  load(Tiff());
  EXPECT_TRUE(image.RotatesWithoutLoss());
  std::string pages = Tiff();  // with a second directory, which shows the same pixels
  pages += pages.substr(8, 2 + 8 * 12 + 4);
  pages[8 + 2 + 8 * 12] = static_cast<char>(Tiff().size());
  for (const std::string& tiff : {Tiff(true), pages}) {
    load(tiff);
    EXPECT_FALSE(image.RotatesWithoutLoss() || image.IsCompressedAsJpeg());
  }
  for (std::size_t size = 0; size < 110; ++size) {
    load(Tiff().substr(0, size));
    EXPECT_EQ(image.GetPixels().Top == nullptr, image.GetCurrentSize() == ImageSize{});
  }
  for (const char side : {'\0', '\x7F'}) {
    std::string bomb = Tiff();
    for (const std::size_t entry : {10U, 22U}) {
      bomb.replace(entry + 2, 10, {4, 0, 1, 0, 0, 0, 127, 127, side, side});
    }
    if (side == 0) {
      EXPECT_THROW(load(bomb), CException) << "32,639 by 32,639 pixels";
    } else {
      load(bomb);
    }
    EXPECT_EQ(image.GetPixels().Top, nullptr);
  }
}

TEST(ImageTest, PhotosStandUprightToThePixelAndAreDecodedForTheirUprightShape) {
  const CScratchFolder scratch;
  const auto load = [&scratch](unsigned orientation, ImageSize box) {
    const auto jpeg = MakeNoisyJpeg({.Orientation = orientation}, 90, 301);
    return LoadImageFile(scratch.Write("a.jpg", {jpeg.begin(), jpeg.end()}), box.Width, box.Height);
  };
  const auto stored = load(0, {});
  for (unsigned orientation = 1; orientation <= 8; ++orientation) {
    const ImageSize seen = orientation > 4 ? ImageSize{301, 90} : ImageSize{90, 301};
    const auto quarter = load(orientation, {seen.Width, seen.Height / 4});
    EXPECT_EQ(quarter->GetNaturalSize(), seen);
    EXPECT_EQ(quarter->GetCurrentSize(), (ImageSize{(seen.Width + 3) / 4, (seen.Height + 3) / 4}));
    EXPECT_EQ(ReadImageSize(scratch.File("a.jpg")), seen);
    EXPECT_EQ(CountMisplaced(*stored, *load(orientation, {}), orientation), 0) << orientation;
  }
}

TEST(TiffImageTest, StandsUprightToo) {
  const CScratchFolder scratch;
  const auto stored = LoadImageFile(scratch.Write("a.tif", Tiff()), 0, 0);
  stored->Save(stored->GetPath(), 1);
  std::string bytes = ReadBytes(stored->GetPath());
  const std::size_t value = bytes.find(std::string("\x12\1\3\0\1\0\0\0\1", 9)) + 8;
  ASSERT_GE(value, 8U);
  for (unsigned orientation = 1; orientation <= 8; ++orientation) {
    bytes[value] = static_cast<char>(orientation);
    const auto image = LoadImageFile(scratch.Write("b.tif", bytes), 0, 0);
    EXPECT_EQ(ReadImageSize(scratch.File("b.tif")), image->GetNaturalSize());
    EXPECT_EQ(CountMisplaced(*stored, *image, orientation), 0) << orientation;
  }
}
