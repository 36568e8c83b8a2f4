#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <random>

#include "base/Exceptions.h"
#include "imaging/Image.h"
#include "imaging/JpegCodec.h"
#include "imaging/JpegTurn.h"
#include "imaging/PictureMemory.h"
#include "support/ScratchFolder.h"
#include "support/TestJpeg.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

/// Decodes at 1/1, 1/2, 1/4 or 1/8 of the size.
std::unique_ptr<CJpegImage> Decode(std::span<const std::uint8_t> jpeg, int reduction = 1) {
  const ImageSize size = CJpegDecoder(jpeg).GetSize();
  auto image = std::make_unique<CJpegImage>();
  image->LoadMemory(jpeg, size.Width / reduction, size.Height / reduction);
  return image;
}

std::string FailureOf(std::span<const std::uint8_t> jpeg, int reduction = 1) {
  try {
    Decode(jpeg, reduction);
    return "none";
  } catch (const CException& exception) {
    return exception.GetMessage();
  }
}

Bytes PixelsOf(const Bytes& jpeg) {
  const auto image = Decode(jpeg);
  const PixelBuffer pixels = image->GetPixels();
  return {pixels.Top, pixels.Row(pixels.Size.Height)};
}

/// The largest difference from the red, green and blue of `expected`, without the last column and row of a
/// reduced picture: they hold parts of pixels that the encoder made up.
int LargestError(const Bytes& jpeg, const Painter& expected, int reduction = 1) {
  const auto image = Decode(jpeg, reduction);
  const int rest = reduction > 1 ? 1 : 0;
  int largest = 0;
  for (int y = 0; y < image->GetCurrentSize().Height - rest; ++y) {
    for (int x = 0; x < image->GetCurrentSize().Width - rest; ++x) {
      const auto pixel = expected(x * reduction + reduction / 2, y * reduction + reduction / 2);
      for (std::size_t k = 0; k < 3; ++k) {
        largest = std::max(largest,
                           std::abs(image->GetPixels().Row(y)[x * 3 + 2 - static_cast<int>(k)] - pixel[k]));
      }
    }
  }
  return largest;
}

/// The marker segments before the first scan whose codes are in the range: each its code, length and data.
std::vector<Bytes> SegmentsOf(const Bytes& jpeg, int firstCode, int lastCode) {
  std::vector<Bytes> segments;
  for (auto at = jpeg.begin() + 2; at[1] != 0xDA;) {
    const auto end = at + 2 + at[2] * 256 + at[3];
    if (at[1] >= firstCode && at[1] <= lastCode) segments.emplace_back(at + 1, end);
    at = end;
  }
  return segments;
}

std::vector<Bytes> HeadersOf(const Bytes& jpeg) { return SegmentsOf(jpeg, 0xE0, 0xFE); }

/// The segment that holds the restart interval, in its last byte.
std::vector<Bytes> RestartsOf(const Bytes& jpeg) { return SegmentsOf(jpeg, 0xDD, 0xDD); }

Bytes Turn(const Bytes& jpeg, int angle) { return TurnJpeg(jpeg, angle).value_or(Bytes()); }

/// Whether jpegtran makes the same picture of a file; true where there is no jpegtran, or it refuses.
bool IsAsByJpegtran(const Bytes& jpeg, int angle, const Bytes& turned) {
  const CScratchFolder scratch;
  const std::string from = scratch.Write("from.jpg", {jpeg.begin(), jpeg.end()});
  const std::string to = scratch.File("to.jpg");
  const std::string command = "jpegtran -rotate " + std::to_string(angle) +
                              " -trim -optimize -copy all -outfile " + to + " " + from + " 2>/dev/null";
  const int status = std::system(command.c_str());
  const std::string expected = ReadBytes(to);
  if (expected.empty()) return status != 0;
  return PixelsOf(turned) == PixelsOf({expected.begin(), expected.end()});
}

/// Whether jpegtran reads a file without a warning; true where there is no jpegtran.
bool IsWhole(const Bytes& jpeg) {
  const CScratchFolder scratch;
  const std::string path = scratch.Write("from.jpg", {jpeg.begin(), jpeg.end()});
  const int code = WEXITSTATUS(std::system(("jpegtran -outfile /dev/null " + path + " 2>/dev/null").c_str()));
  return code == 0 || code == 127;
}

/// The file with another size in its frame header.
Bytes ForgeSize(Bytes jpeg, int width, int height) {
  const Bytes frame = SegmentsOf(jpeg, 0xC0, 0xCA).front();
  const auto at = std::ranges::search(jpeg, frame).begin();
  const int sizes[] = {height >> 8, height, width >> 8, width};
  std::ranges::transform(sizes, at + 4, [](int byte) { return static_cast<std::uint8_t>(byte); });
  return jpeg;
}

constexpr std::uint8_t kScan[] = {0xFF, 0xDA};

/// The file with its last scan `times` times.
Bytes RepeatLastScan(const Bytes& jpeg, int times) {
  const auto scan = std::ranges::find_end(jpeg, kScan).begin();
  Bytes repeated(jpeg.begin(), jpeg.end() - 2);
  for (int k = 1; k < times; ++k) repeated.insert(repeated.end(), scan, jpeg.end() - 2);
  repeated.insert(repeated.end(), jpeg.end() - 2, jpeg.end());
  return repeated;
}

const std::string kNoHeader = "Cannot read JPEG header";

}  // namespace

TEST(JpegCodecTest, ColorsOfEveryCodingComeOutAsPaintedAtEverySize) {
  const JpegRecipe recipes[] = {
      {},
      {.Width = 101, .Height = 99, .HorizontalSampling = 2, .VerticalSampling = 2},
      {.Width = 101, .Height = 99, .Progressive = true},
      {.Width = 1, .Height = 1, .HorizontalSampling = 2, .VerticalSampling = 2},
      {.Colors = StoredColors::Rgb, .Progressive = true},
      {.HorizontalSampling = 2, .VerticalSampling = 2, .Arithmetic = true},
      {.HorizontalSampling = 2, .VerticalSampling = 2, .RestartInterval = 3},
  };
  for (const JpegRecipe& recipe : recipes) {
    for (const int reduction : {1, 2, 4, 8}) {
      EXPECT_LE(LargestError(MakeJpeg(recipe), PaintSoftly, reduction), reduction == 1 ? 4 : 8)
          << &recipe - recipes;
    }
  }
  const auto flat = [](std::array<std::uint8_t, 4> samples) {
    return [samples](int, int) { return samples; };
  };
  EXPECT_LE(LargestError(MakeJpeg({.Colors = StoredColors::Grey}, flat({90})), flat({90, 90, 90})), 1);
  // Writers of the Adobe marker invert inks. Without it the names of the channels tell that there are inks.
  const auto inks = flat({200, 100, 50, 220});
  for (const StoredColors colors : {StoredColors::Cmyk, StoredColors::Ycck}) {
    EXPECT_LE(LargestError(MakeJpeg({.Colors = colors}, inks), flat({173, 86, 43})), 2);
  }
  const JpegRecipe plain{.Colors = StoredColors::Cmyk, .AdobeMarker = false};
  EXPECT_LE(LargestError(MakeJpeg(plain, inks), flat({8, 21, 28})), 2);
  for (const JpegRecipe& recipe : {JpegRecipe{.Colors = StoredColors::TwoChannels},
                                   {.Colors = StoredColors::Ycck, .AdobeMarker = false}}) {
    EXPECT_EQ(FailureOf(MakeJpeg(recipe)), "Unsupported number of channels");
  }
}

TEST(JpegCodecTest, EncodesWithChromaHalvedAndAtTheQualityAskedFor) {
  const Bytes pixels = PixelsOf(MakeNoisyJpeg({}));
  const Bytes fine = EncodeJpeg({pixels.data(), 64 * 3, {64, 48}, 3}, 95);
  EXPECT_LT(EncodeJpeg({pixels.data(), 64 * 3, {64, 48}, 3}, 30).size() * 2, fine.size());
  const Bytes frame = {0xC0, 0, 17, 8, 0, 48, 0, 64, 3, 1, 0x22, 0, 2, 0x11, 1, 3, 0x11, 1};
  EXPECT_EQ(SegmentsOf(fine, 0xC0, 0xC0).at(0), frame);
  EXPECT_THROW(EncodeJpeg({pixels.data(), 64, {16, 16}, 4}, 50), CException);
  EXPECT_THROW(EncodeJpeg({}, 50), CException);
}

TEST(JpegCodecTest, AFileCutShortShowsWhatItHasAndGreyBelow) {
  for (const bool progressive : {false, true}) {
    const Bytes jpeg = MakeNoisyJpeg({.VerticalSampling = 2, .Progressive = progressive}, 160, 160);
    const Bytes whole = PixelsOf(jpeg);
    EXPECT_EQ(FailureOf(std::span(jpeg).first(100)), kNoHeader);
    EXPECT_EQ(PixelsOf({jpeg.begin(), jpeg.end() - 2}), whole) << "only the EOI marker is missing";
    const Bytes half = PixelsOf({jpeg.begin(), jpeg.begin() + static_cast<std::ptrdiff_t>(jpeg.size() / 2)});
    if (progressive) continue;
    EXPECT_TRUE(std::equal(half.begin(), half.begin() + 30 * 480, whole.begin()));
    EXPECT_EQ(Bytes(half.end() - 480, half.end()), Bytes(480, 128));
  }
  const Bytes jpeg = MakeJpeg({.Width = 120, .Height = 120, .Progressive = true});
  for (const auto& [width, height] : {std::pair(65500, 65500), {120, 8}, {8, 120}, {120, 120}}) {
    Bytes frame = SegmentsOf(ForgeSize(jpeg, width, height), 0xC2, 0xC2).front();
    frame.insert(frame.begin(), 0xFF);
    Bytes twice = jpeg;
    twice.insert(std::ranges::find_end(twice, kScan).begin(), frame.begin(), frame.end());
    // The scans before the second frame header are shown.
    for (const int reduction : {1, 8}) {
      EXPECT_LE(LargestError(twice, PaintSoftly, reduction), 8) << width << "x" << height;
    }
  }
}

TEST(JpegTest, ForgedSizesAndScansAreRefusedOrCostLittle) {
  const std::string tooLarge = CTooLargeException().GetMessage();
  for (const bool arithmetic : {false, true}) {
    for (const bool progressive : {false, true}) {
      const Bytes jpeg = MakeJpeg({.Progressive = progressive, .Arithmetic = arithmetic});
      EXPECT_EQ(FailureOf(ForgeSize(jpeg, 65500, 65500), 8), tooLarge);
      EXPECT_EQ(FailureOf(ForgeSize(jpeg, 65535, 65535)), kNoHeader);
      EXPECT_EQ(FailureOf(ForgeSize(jpeg, 0, 48)), kNoHeader);
      EXPECT_THROW(TurnJpeg(ForgeSize(jpeg, 65500, 65500), 90), CTooLargeException);
      // 300 megapixels of next to no data: soon decoded in one scan, too much to hold for several.
      const Bytes large = ForgeSize(jpeg, 20000, 15000);
      EXPECT_EQ(FailureOf(large, 8), progressive || arithmetic ? tooLarge : "none");
      EXPECT_THROW(TurnJpeg(large, 90), CTooLargeException);
    }
  }
  const Bytes jpeg = MakeJpeg({.Width = 200, .Height = 200, .Progressive = true});
  EXPECT_EQ(FailureOf(RepeatLastScan(jpeg, 50)), "none");
  EXPECT_EQ(FailureOf(RepeatLastScan(jpeg, 600)), tooLarge);
  EXPECT_THROW(TurnJpeg(RepeatLastScan(jpeg, 600), 90), CTooLargeException);
  // Without enough data an arithmetic decoder gives values that its encoder can't write.
  const Bytes noise = MakeNoisyJpeg({.Arithmetic = true}, 40, 24);
  for (int height = 1024; height <= 16384; height *= 2) {
    const Bytes turned = Turn(ForgeSize(noise, 40, height), 180);
    EXPECT_TRUE(turned.empty() || IsWhole(turned)) << height;
  }
}

TEST(JpegTurnTest, EveryKindIsTurnedAsJpegtranTurnsItAndKeepsItsForm) {
  const JpegRecipe kinds[] = {
      {.HorizontalSampling = 2, .VerticalSampling = 2},
      {.HorizontalSampling = 3, .VerticalSampling = 2},
      {.Samplings = {{2, 2}, {2, 1}, {1, 2}}},
      {.Colors = StoredColors::Grey, .Samplings = {{2, 2}}},
      {.Colors = StoredColors::Rgb},
      {.Colors = StoredColors::Cmyk},
      {.Colors = StoredColors::Ycck, .HorizontalSampling = 2, .Progressive = true},
      {.HorizontalSampling = 2, .VerticalSampling = 2, .Arithmetic = true},
      {.VerticalSampling = 2, .Progressive = true, .Arithmetic = true},
      {.HorizontalSampling = 2, .VerticalSampling = 2, .RestartInterval = 3},
      {.HorizontalSampling = 2, .Progressive = true, .RestartInterval = 7},
      // The library doesn't put these into one scan, and jpegtran refuses them.
      {.HorizontalSampling = 4, .VerticalSampling = 4},
      {.HorizontalSampling = 4, .VerticalSampling = 4, .Progressive = true},
  };
  for (const JpegRecipe& kind : kinds) {
    const auto number = &kind - kinds;
    for (const auto& [width, height] : {std::pair(151, 93), {5, 70}}) {
      for (const int angle : {90, 180, 270}) {
        const Bytes jpeg = MakeNoisyJpeg(kind, width, height);
        const Bytes turned = Turn(jpeg, angle);
        ASSERT_FALSE(turned.empty());
        EXPECT_TRUE(IsAsByJpegtran(jpeg, angle, turned)) << number << " by " << angle;
        EXPECT_EQ(SegmentsOf(turned, 0xC0, 0xC2).size(), SegmentsOf(jpeg, 0xC0, 0xC2).size()) << number;
        EXPECT_EQ(SegmentsOf(turned, 0xC2, 0xC2).size(), SegmentsOf(jpeg, 0xC2, 0xC2).size()) << number;
        EXPECT_EQ(RestartsOf(turned).size(), RestartsOf(jpeg).size()) << number;
        EXPECT_EQ(HeadersOf(turned), HeadersOf(jpeg)) << number;
      }
    }
    // Of whole blocks nothing is lost.
    const Bytes jpeg = MakeNoisyJpeg(kind, 96, 192);
    const Bytes turned = Turn(jpeg, 90);
    EXPECT_EQ(Turn(turned, 90), Turn(jpeg, 180)) << number;
    EXPECT_EQ(PixelsOf(Turn(turned, 270)), PixelsOf(jpeg)) << number;
  }
  const Bytes jpeg = MakeNoisyJpeg({.RestartInterval = 12}, 96, 192);
  EXPECT_EQ(RestartsOf(Turn(jpeg, 90)).at(0).back(), 24) << "at the end of each row";
  EXPECT_EQ(RestartsOf(Turn(jpeg, 180)).at(0).back(), 12);
}

TEST(JpegTurnTest, HeadersAndTrailersAreKeptByteForByteInTheirOrder) {
  const std::vector<std::string> headers = {
      "\xFE a comment", std::string("\xE1 Exif\0\0II*\0", 12), "\xE2" + std::string(65533, '\x7F'),
      "\xFE",           std::string("\xE0JFXX\0\x10", 7),      "\xEF"};
  for (const bool jfif : {true, false}) {
    const Bytes jpeg = WithHeaders(MakeNoisyJpeg({.Progressive = jfif, .Jfif = jfif}), headers);
    EXPECT_EQ(HeadersOf(jpeg).size(), headers.size() + (jfif ? 1 : 0));
    EXPECT_EQ(HeadersOf(Turn(jpeg, 90)), HeadersOf(jpeg));
  }
  EXPECT_TRUE(
      HeadersOf(Turn(MakeNoisyJpeg({.Colors = StoredColors::Cmyk, .AdobeMarker = false}), 90)).empty());
  const Bytes jpeg = MakeNoisyJpeg({.Progressive = true});
  const Bytes comments = WithHeaders(jpeg, std::vector<std::string>(300000, "\xFE"));
  EXPECT_EQ(Turn(Turn(comments, 90), 270).size(), comments.size()) << "and in linear time";

  Bytes expected = Turn(jpeg, 90);
  EXPECT_EQ(Turn(Bytes(jpeg.begin(), jpeg.end() - 2), 90), expected) << "a missing EOI marker is added";
  Bytes trailer = {0xFF, 0xD9, 0, 'm', 'o', 't', 'i', 'o', 'n'};
  Bytes whole = jpeg;
  whole.insert(whole.end(), trailer.begin(), trailer.end());
  expected.insert(expected.end(), trailer.begin(), trailer.end());
  EXPECT_EQ(Turn(whole, 90), expected);
}

TEST(JpegTurnTest, ADamagedPictureIsTurnedAsItShowsUnlessHeadersWouldBeLost) {
  for (const Bytes& rubbish : {Bytes(), Bytes(100, 0xFF), Bytes{0xFF, 0xD8, 0xFF, 0xD9}}) {
    EXPECT_FALSE(TurnJpeg(rubbish, 90));
  }
  Bytes holed = MakeNoisyJpeg({});
  EXPECT_THROW(TurnJpeg(holed, 45), CError);
  holed.insert(holed.begin() + 2, 600, 0x55);
  EXPECT_FALSE(TurnJpeg(holed, 90)) << "unknown bytes stand where a header should begin";

  std::mt19937 random(5);
  int turned = 0;
  for (const JpegRecipe& recipe :
       {JpegRecipe{}, {.Progressive = true}, {.Arithmetic = true}, {.RestartInterval = 5}}) {
    for (int k = 0; k < 12; ++k) {
      Bytes damaged = MakeNoisyJpeg(recipe, 160, 160);
      const std::size_t place = damaged.size() / 8 + random() % (damaged.size() / 8 * 6);
      damaged[place] = static_cast<std::uint8_t>(random());
      if (k < 2) damaged.resize(place);
      const Bytes result = Turn(damaged, 90);
      if (result.empty()) continue;
      ++turned;
      EXPECT_TRUE(IsAsByJpegtran(damaged, 90, result)) << k;
      EXPECT_TRUE(IsWhole(result)) << k;
    }
  }
  EXPECT_GT(turned, 32);
}
