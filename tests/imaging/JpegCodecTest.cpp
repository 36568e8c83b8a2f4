#include <gtest/gtest.h>

#include <algorithm>

#include "base/Exceptions.h"
#include "imaging/ForgedJpegs.h"
#include "imaging/JpegCodec.h"
#include "imaging/PictureMemory.h"

namespace {

struct Decoded {
  ImageSize Size;
  std::vector<std::uint8_t> Bytes;

  int At(int x, int y, int channel) const {
    return Bytes[static_cast<std::size_t>((y * Size.Width + x) * 3 + channel)];
  }
};

Decoded Decode(std::span<const std::uint8_t> jpeg, int reduction = 1) {
  CJpegDecoder decoder(jpeg);
  Decoded decoded;
  decoded.Size = {CJpegDecoder::ReducedSide(decoder.GetSize().Width, reduction),
                  CJpegDecoder::ReducedSide(decoder.GetSize().Height, reduction)};
  const int rowBytes = decoded.Size.Width * 3;
  decoded.Bytes.resize(static_cast<std::size_t>(rowBytes) * static_cast<std::size_t>(decoded.Size.Height));
  decoder.Decode(reduction, {decoded.Bytes.data(), rowBytes, decoded.Size, 3});
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

/// The largest difference from the red, green and blue of `expected`, the last column and row left out if
/// the picture is reduced: they hold parts of pixels that the encoder made up.
int LargestError(const Decoded& decoded, const Painter& expected, int reduction = 1) {
  const int rest = reduction > 1 ? 1 : 0;
  int largest = 0;
  for (int y = 0; y < decoded.Size.Height - rest; ++y)
    for (int x = 0; x < decoded.Size.Width - rest; ++x) {
      const auto pixel = expected(x * reduction + reduction / 2, y * reduction + reduction / 2);
      for (int k = 0; k < 3; ++k)
        largest = std::max(largest, std::abs(decoded.At(x, y, 2 - k) - pixel[static_cast<std::size_t>(k)]));
    }
  return largest;
}

std::array<std::uint8_t, 4> SoftInks(int x, int y) {
  return {static_cast<std::uint8_t>(250 - 2 * x), static_cast<std::uint8_t>(100 + 2 * x),
          static_cast<std::uint8_t>(20 + 4 * y), static_cast<std::uint8_t>(255 - x - y)};
}

/// The picture of inks; `inverted` ones are full at 0.
Painter InkPicture(bool inverted) {
  return [inverted](int x, int y) {
    auto inks = SoftInks(x, y);
    for (std::uint8_t& ink : inks) ink = inverted ? ink : static_cast<std::uint8_t>(255 - ink);
    for (std::size_t k = 0; k < 3; ++k) inks[k] = static_cast<std::uint8_t>(inks[k] * inks[3] / 255.0 + 0.5);
    return inks;
  };
}

const std::string kNoHeader = "Cannot read JPEG header";

}  // namespace

TEST(JpegCodecTest, ColorsOfEveryCodingComeOutAsPainted) {
  const JpegRecipe recipes[] = {
      {},
      {.HorizontalSampling = 2},
      {.HorizontalSampling = 4, .VerticalSampling = 1},
      {.Width = 67, .Height = 35, .HorizontalSampling = 2, .VerticalSampling = 2},
      {.Width = 1, .Height = 1, .HorizontalSampling = 2, .VerticalSampling = 2},
      {.Colors = StoredColors::Rgb, .Progressive = true},
      {.HorizontalSampling = 2, .VerticalSampling = 2, .Arithmetic = true},
      {.Progressive = true, .Arithmetic = true},
      {.HorizontalSampling = 2, .VerticalSampling = 2, .RestartInterval = 3},
  };
  for (const JpegRecipe& recipe : recipes) {
    const Decoded decoded = Decode(MakeJpeg(recipe));
    EXPECT_EQ(decoded.Size, (ImageSize{recipe.Width, recipe.Height}));
    EXPECT_LE(LargestError(decoded, PaintSoftly), 4) << &recipe - recipes;
  }
  const auto grey = [](int x, int y) {
    const auto value = static_cast<std::uint8_t>(60 + x + y);
    return std::array<std::uint8_t, 4>{value, value, value};
  };
  EXPECT_LE(LargestError(Decode(MakeJpeg({.Colors = StoredColors::Grey}, grey)), grey), 1);
  for (const StoredColors colors : {StoredColors::Cmyk, StoredColors::Ycck})
    EXPECT_LE(LargestError(Decode(MakeJpeg({.Colors = colors}, SoftInks)), InkPicture(true)), 4);
  // Writers of the Adobe marker invert. Without it the names of the channels tell inks.
  const auto plain = MakeJpeg({.Colors = StoredColors::Cmyk, .AdobeMarker = false}, SoftInks);
  EXPECT_LE(LargestError(Decode(plain), InkPicture(false)), 4);
  for (const JpegRecipe& recipe : {JpegRecipe{.Colors = StoredColors::TwoChannels},
                                   {.Colors = StoredColors::Ycck, .AdobeMarker = false}})
    EXPECT_EQ(FailureOf(MakeJpeg(recipe)), "Unsupported number of channels");
}

TEST(JpegCodecTest, ReducedSidesAreRoundedUpAndTheirPixelsAverages) {
  for (const bool progressive : {false, true}) {
    const auto jpeg = MakeJpeg({.Width = 101,
                                .Height = 99,
                                .HorizontalSampling = 2,
                                .VerticalSampling = 2,
                                .Progressive = progressive});
    EXPECT_EQ(Decode(jpeg, 2).Size, (ImageSize{51, 50}));
    EXPECT_EQ(Decode(jpeg, 8).Size, (ImageSize{13, 13}));
    for (const int reduction : {2, 4, 8}) {
      EXPECT_LE(LargestError(Decode(jpeg, reduction), PaintSoftly, reduction), 4) << reduction;
    }
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
  EXPECT_EQ(Decode(fine).Size, (ImageSize{64, 48}));

  EXPECT_THROW(EncodeJpeg({pixels.data(), 64, {16, 16}, 4}, 50), CException);
  EXPECT_THROW(EncodeJpeg({}, 50), CException);
  EXPECT_THROW(EncodeJpeg({pixels.data(), 0, {70000, 1}, 3}, 50), CException);
}

TEST(JpegCodecTest, AFileCutShortShowsWhatItHasAndGreyBelow) {
  EXPECT_EQ(FailureOf(std::vector<std::uint8_t>(12, 0xFF)), kNoHeader);
  for (const bool progressive : {false, true}) {
    const auto jpeg = MakeNoisyJpeg({.Width = 160,
                                     .Height = 160,
                                     .HorizontalSampling = 2,
                                     .VerticalSampling = 2,
                                     .Progressive = progressive});
    const Decoded whole = Decode(jpeg);
    bool begun = false;
    for (std::size_t size = 0; size < jpeg.size(); size += 297) {
      const std::string failure = FailureOf(std::span(jpeg).first(size));
      // Once there is enough for a header, there is a picture.
      if (failure == "none") begun = true;
      EXPECT_EQ(failure, begun ? "none" : kNoHeader) << size;
    }
    EXPECT_TRUE(begun);
    EXPECT_EQ(Decode(std::span(jpeg).first(jpeg.size() - 2)).Bytes, whole.Bytes) << "only the EOI lacks";
    if (progressive) continue;
    const Decoded half = Decode(std::span(jpeg).first(jpeg.size() / 2));
    for (int x = 0; x < 160; ++x) EXPECT_EQ(half.At(x, 30, 1), whole.At(x, 30, 1));
    for (int x = 0; x < 160; ++x) EXPECT_EQ(half.At(x, 159, 1), 128);
  }
}

TEST(JpegCodecTest, ForgedSizesAndScansAreRefusedOrDecodedWithinBounds) {
  const std::string tooLarge = CTooLargeException().GetMessage();
  for (const bool arithmetic : {false, true})
    for (const bool progressive : {false, true}) {
      const auto jpeg = MakeJpeg({.Progressive = progressive, .Arithmetic = arithmetic});
      const auto bomb = ForgeSize(jpeg, 65500, 65500);
      CJpegDecoder decoder(bomb);
      std::uint8_t nothing[3] = {};
      EXPECT_THROW(decoder.Decode(8, {nothing, 0, {8188, 8188}, 3}), CTooLargeException);
      EXPECT_EQ(FailureOf(ForgeSize(jpeg, 65535, 65535)), kNoHeader);
      EXPECT_EQ(FailureOf(ForgeSize(jpeg, 0, 48)), kNoHeader);
      // 300 megapixels of next to no data: soon done in one scan, too much to hold for several.
      const auto large = ForgeSize(jpeg, 20000, 15000);
      EXPECT_EQ(FailureOf(large, 8), progressive || arithmetic ? tooLarge : "none");
    }
  const auto jpeg = MakeJpeg({.Width = 200, .Height = 200, .Progressive = true});
  EXPECT_EQ(FailureOf(RepeatLastScan(jpeg, 50)), "none");
  EXPECT_EQ(FailureOf(RepeatLastScan(jpeg, 600)), tooLarge);
}

TEST(JpegCodecTest, TheScansBeforeASecondFrameHeaderAreShown) {
  const auto jpeg = MakeJpeg({.Width = 120, .Height = 120, .Progressive = true});
  constexpr std::uint8_t kFrame[] = {0xFF, 0xC2};
  constexpr std::uint8_t kScan[] = {0xFF, 0xDA};
  constexpr std::ptrdiff_t kFrameBytes = 19;  // of three channels, with the marker
  for (const auto& [width, height] : {std::pair(65500, 65500), {120, 8}, {8, 120}, {120, 120}}) {
    const auto forged = ForgeSize(jpeg, width, height);
    const auto frame = std::ranges::search(forged, kFrame).begin();
    auto twice = jpeg;
    twice.insert(std::ranges::find_end(twice, kScan).begin(), frame, frame + kFrameBytes);
    for (const int reduction : {1, 8}) {
      EXPECT_LE(LargestError(Decode(twice, reduction), PaintSoftly, reduction), 8) << width << "x" << height;
    }
  }
}
