#include <gmock/gmock.h>

#include <algorithm>
#include <random>

#include "base/Exceptions.h"
#include "imaging/ForgedJpegs.h"
#include "imaging/JpegCodec.h"
#include "imaging/PictureMemory.h"

namespace {

struct Decoded {
  ImageSize Size;
  static constexpr int BytesPerPixel = 3;
  std::vector<std::uint8_t> Bytes;

  int At(int x, int y, int channel) const {
    return Bytes[static_cast<std::size_t>((y * Size.Width + x) * BytesPerPixel + channel)];
  }
};

Decoded Decode(std::span<const std::uint8_t> jpeg, int reduction = 1) {
  CJpegDecoder decoder(jpeg);
  Decoded decoded;
  decoded.Size = {CJpegDecoder::ReducedSide(decoder.GetSize().Width, reduction),
                  CJpegDecoder::ReducedSide(decoder.GetSize().Height, reduction)};
  const int rowBytes = decoded.Size.Width * decoded.BytesPerPixel;
  decoded.Bytes.resize(static_cast<std::size_t>(rowBytes) * static_cast<std::size_t>(decoded.Size.Height));
  decoder.Decode(reduction, {decoded.Bytes.data(), rowBytes, decoded.Size, decoded.BytesPerPixel});
  return decoded;
}

std::string FailureOf(std::span<const std::uint8_t> jpeg, int reduction = 1) {
  try {
    Decode(jpeg, reduction);
    return "none";
  } catch (const CException& exception) {
    return exception.GetMessage();
  }
}

/// The largest difference from what `expected` gives as blue, green, red.
int LargestError(const Decoded& decoded, const Painter& expected) {
  int largest = 0;
  for (int y = 0; y < decoded.Size.Height; ++y)
    for (int x = 0; x < decoded.Size.Width; ++x) {
      const auto pixel = expected(x, y);
      for (std::size_t k = 0; k < 3; ++k)
        largest = std::max(largest, std::abs(decoded.At(x, y, static_cast<int>(k)) - pixel[k]));
    }
  return largest;
}

std::array<std::uint8_t, 4> SoftBgr(int x, int y) {
  const auto rgb = PaintSoftly(x, y);
  return {rgb[2], rgb[1], rgb[0], 0};
}

std::array<std::uint8_t, 4> SoftInks(int x, int y) {
  return {static_cast<std::uint8_t>(250 - 2 * x), static_cast<std::uint8_t>(100 + 2 * x),
          static_cast<std::uint8_t>(20 + 4 * y), static_cast<std::uint8_t>(255 - x - y)};
}

/// The picture of inks whose full amount is 255 - `none`.
Painter InkPicture(int none) {
  return [none](int x, int y) {
    const auto inks = SoftInks(x, y);
    const auto light = [&](std::size_t k) { return none == 255 ? inks[k] / 255.0 : 1 - inks[k] / 255.0; };
    std::array<std::uint8_t, 4> pixel{};
    for (std::size_t k = 0; k < 3; ++k)
      pixel[k] = static_cast<std::uint8_t>(light(2 - k) * light(3) * 255 + 0.5);
    return pixel;
  };
}

}  // namespace

TEST(JpegCodecTest, ColorsOfEveryCodingComeOutAsPainted) {
  const JpegRecipe recipes[] = {
      {},
      {.HorizontalSampling = 2},
      {.HorizontalSampling = 2, .VerticalSampling = 2},
      {.HorizontalSampling = 1, .VerticalSampling = 2},
      {.HorizontalSampling = 4, .VerticalSampling = 1},
      {.Width = 67, .Height = 35, .HorizontalSampling = 2, .VerticalSampling = 2},
      {.Width = 1, .Height = 1, .HorizontalSampling = 2, .VerticalSampling = 2},
      {.Width = 1, .Height = 50},
      {.Colors = StoredColors::Rgb},
      {.HorizontalSampling = 2, .VerticalSampling = 2, .Progressive = true},
      {.Colors = StoredColors::Rgb, .Progressive = true},
      {.HorizontalSampling = 2, .VerticalSampling = 2, .Arithmetic = true},
      {.Progressive = true, .Arithmetic = true},
      {.HorizontalSampling = 2, .VerticalSampling = 2, .RestartInterval = 3},
  };
  for (const JpegRecipe& recipe : recipes) {
    const Decoded decoded = Decode(MakeJpeg(recipe, PaintSoftly));
    EXPECT_EQ((ImageSize{recipe.Width, recipe.Height}), decoded.Size);
    EXPECT_LE(LargestError(decoded, SoftBgr), 4) << &recipe - recipes;
  }
}

TEST(JpegCodecTest, GreyBecomesThreeEqualChannels) {
  const Painter grey = [](int x, int y) {
    return std::array<std::uint8_t, 4>{static_cast<std::uint8_t>(60 + x + y)};
  };
  const Decoded decoded = Decode(MakeJpeg({.Colors = StoredColors::Grey}, grey));
  const auto expected = [&](int x, int y) {
    const std::uint8_t value = grey(x, y)[0];
    return std::array<std::uint8_t, 4>{value, value, value};
  };
  EXPECT_LE(LargestError(decoded, expected), 1);
}

TEST(JpegCodecTest, InksBecomeThePictureTheyPrint) {
  for (const StoredColors colors : {StoredColors::Cmyk, StoredColors::Ycck}) {
    const Decoded decoded = Decode(MakeJpeg({.Colors = colors}, SoftInks));
    EXPECT_LE(LargestError(decoded, InkPicture(255)), 4);
  }
  // Without the Adobe marker, whose writers all invert, inks are what the channels' names say.
  const Decoded plain = Decode(MakeJpeg({.Colors = StoredColors::Cmyk, .AdobeMarker = false}, SoftInks));
  EXPECT_LE(LargestError(plain, InkPicture(0)), 4);
}

TEST(JpegCodecTest, ChannelsOfUnknownMeaningAreRefused) {
  for (const JpegRecipe& recipe : {JpegRecipe{.Colors = StoredColors::TwoChannels},
                                   {.Colors = StoredColors::Ycck, .AdobeMarker = false}})
    EXPECT_EQ("Unsupported number of channels", FailureOf(MakeJpeg(recipe, PaintSoftly)));
}

TEST(JpegCodecTest, ReducedSidesAreRoundedUpAndTheirPixelsAverages) {
  const auto jpeg =
      MakeJpeg({.Width = 101, .Height = 99, .HorizontalSampling = 2, .VerticalSampling = 2}, PaintSoftly);
  EXPECT_EQ((ImageSize{51, 50}), Decode(jpeg, 2).Size);
  EXPECT_EQ((ImageSize{26, 25}), Decode(jpeg, 4).Size);
  EXPECT_EQ((ImageSize{13, 13}), Decode(jpeg, 8).Size);
  for (const int reduction : {2, 4, 8}) {
    Decoded decoded = Decode(jpeg, reduction);
    // The last column and row hold parts of pixels that the encoder made up.
    --decoded.Size.Height;
    const auto middle = [&](int x, int y) {
      return SoftBgr(x * reduction + reduction / 2, y * reduction + reduction / 2);
    };
    int largest = 0;
    for (int y = 0; y < decoded.Size.Height; ++y)
      for (int x = 0; x + 1 < decoded.Size.Width; ++x)
        for (int k = 0; k < 3; ++k)
          largest =
              std::max(largest, std::abs(decoded.At(x, y, k) - middle(x, y)[static_cast<std::size_t>(k)]));
    EXPECT_LE(largest, 4) << reduction;
  }
}

TEST(JpegCodecTest, EncodesWithChromaHalvedAndAtTheQualityAskedFor) {
  std::vector<std::uint8_t> pixels(64 * 48 * 3);
  for (std::size_t i = 0; i < pixels.size(); ++i) pixels[i] = static_cast<std::uint8_t>(i * i / 777);
  const auto coarse = EncodeJpeg({pixels.data(), 64 * 3, {64, 48}, 3}, 30);
  const auto fine = EncodeJpeg({pixels.data(), 64 * 3, {64, 48}, 3}, 95);
  EXPECT_LT(coarse.size() * 2, fine.size());
  const std::uint8_t frame[] = {0xFF, 0xC0, 0, 17, 8, 0, 48, 0, 64, 3, 1, 0x22, 0, 2, 0x11, 1, 3, 0x11, 1};
  EXPECT_FALSE(std::ranges::search(fine, frame).empty());
  EXPECT_EQ((ImageSize{64, 48}), Decode(fine).Size);

  for (const int bytesPerPixel : {1, 4})
    EXPECT_THROW(EncodeJpeg({pixels.data(), 64, {16, 16}, bytesPerPixel}, 50), CException);
  EXPECT_THROW(EncodeJpeg({}, 50), CException);
  EXPECT_THROW(EncodeJpeg({pixels.data(), 0, {70000, 1}, 3}, 50), CException);
}

TEST(JpegCodecTest, RubbishIsNoHeader) {
  EXPECT_EQ("Cannot read JPEG header", FailureOf({}));
  EXPECT_EQ("Cannot read JPEG header", FailureOf(std::vector<std::uint8_t>(12, 0xFF)));
  const std::uint8_t start[] = {0xFF, 0xD8, 0xFF, 0xE0, 0, 16, 'J', 'F', 'I', 'F', 0, 1};
  EXPECT_EQ("Cannot read JPEG header", FailureOf(start));
}

TEST(JpegCodecTest, AFileCutShortShowsWhatItHasAndGreyBelow) {
  for (const bool progressive : {false, true}) {
    const auto jpeg = MakeNoisyJpeg({.Width = 160,
                                     .Height = 160,
                                     .HorizontalSampling = 2,
                                     .VerticalSampling = 2,
                                     .Progressive = progressive});
    const Decoded whole = Decode(jpeg);
    bool begun = false;
    for (std::size_t size = 0; size < jpeg.size(); size += 97) {
      const std::string failure = FailureOf(std::span(jpeg).first(size));
      // Once there is enough for a header, there is a picture.
      if (failure == "none") begun = true;
      EXPECT_EQ(begun ? "none" : "Cannot read JPEG header", failure) << size;
    }
    EXPECT_TRUE(begun);
    if (progressive) continue;
    const Decoded half = Decode(std::span(jpeg).first(jpeg.size() / 2));
    for (int x = 0; x < 160; ++x) EXPECT_EQ(whole.At(x, 30, 1), half.At(x, 30, 1));
    for (int x = 0; x < 160; ++x) EXPECT_EQ(128, half.At(x, 159, 1));
    // All there but the mark of the end.
    EXPECT_EQ(whole.Bytes, Decode(std::span(jpeg).first(jpeg.size() - 2)).Bytes);
  }
}

TEST(JpegCodecTest, ForgedSizesAreRefusedOrDecodedWithinBounds) {
  for (const bool arithmetic : {false, true})
    for (const bool progressive : {false, true}) {
      const auto jpeg = MakeJpeg({.Progressive = progressive, .Arithmetic = arithmetic}, PaintSoftly);
      const auto bomb = ForgeSize(jpeg, 65500, 65500);
      CJpegDecoder decoder(bomb);
      EXPECT_EQ((ImageSize{65500, 65500}), decoder.GetSize());
      std::uint8_t nothing[3] = {};
      EXPECT_THROW(decoder.Decode(8, {nothing, 0, {8188, 8188}, 3}), CException);
      EXPECT_EQ("Cannot read JPEG header", FailureOf(ForgeSize(jpeg, 65535, 65535)));
      EXPECT_EQ("Cannot read JPEG header", FailureOf(ForgeSize(jpeg, 0, 48)));
    }
  // 300 megapixels of next to no data: quickly done as one scan, too much to hold as several.
  EXPECT_EQ("none", FailureOf(ForgeSize(MakeJpeg({}, PaintSoftly), 20000, 15000), 8));
  EXPECT_EQ(CTooLargeException().GetMessage(),
            FailureOf(ForgeSize(MakeJpeg({.Progressive = true}, PaintSoftly), 20000, 15000), 8));
}

TEST(JpegCodecTest, ManyScansDecodeAndTooManyAreRefused) {
  const auto jpeg = MakeJpeg({.Width = 200, .Height = 200, .Progressive = true}, PaintSoftly);
  EXPECT_EQ("none", FailureOf(RepeatLastScan(jpeg, 50)));
  EXPECT_EQ(CTooLargeException().GetMessage(), FailureOf(RepeatLastScan(jpeg, 10000)));
}

TEST(JpegCodecTest, TheScansBeforeASecondFrameHeaderAreShown) {
  const auto jpeg = MakeJpeg({.Width = 200, .Height = 200, .Progressive = true}, PaintSoftly);
  constexpr std::uint8_t kFrame[] = {0xFF, 0xC2};
  constexpr std::uint8_t kScan[] = {0xFF, 0xDA};
  constexpr std::ptrdiff_t kFrameBytes = 19;  // of three channels, with the marker
  for (const auto& [width, height] : {std::pair(65500, 65500), {200, 8}, {8, 200}, {200, 200}}) {
    const auto forged = ForgeSize(jpeg, width, height);
    const auto frame = std::search(forged.begin(), forged.end(), std::begin(kFrame), std::end(kFrame));
    auto twice = jpeg;
    twice.insert(std::find_end(twice.begin(), twice.end(), std::begin(kScan), std::end(kScan)), frame,
                 frame + kFrameBytes);
    for (const int reduction : {1, 8})
      EXPECT_EQ("none", FailureOf(twice, reduction)) << width << "x" << height;
  }
}

TEST(JpegCodecTest, DamagedBytesAnywhereNeverDoHarm) {
  std::mt19937 random(11);
  const JpegRecipe recipes[] = {{.HorizontalSampling = 2, .VerticalSampling = 2, .RestartInterval = 2},
                                {.Progressive = true},
                                {.Arithmetic = true},
                                {.Colors = StoredColors::Ycck}};
  int decoded = 0;
  for (const JpegRecipe& recipe : recipes) {
    const auto jpeg = MakeNoisyJpeg(recipe);
    for (int round = 0; round < 300; ++round) {
      auto damaged = jpeg;
      for (int k = 0; k < 3; ++k) damaged[random() % damaged.size()] = static_cast<std::uint8_t>(random());
      if (FailureOf(damaged, 8) == "none") ++decoded;
    }
  }
  EXPECT_GT(decoded, 300);
}
