#include <gtest/gtest.h>

#include <cstdlib>
#include <random>

#include "base/Exceptions.h"
#include "imaging/ForgedJpegs.h"
#include "imaging/JpegTurn.h"
#include "imaging/PictureMemory.h"
#include "imaging/PlainJpeg.h"
#include "support/ScratchFolder.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

const JpegRecipe kKinds[] = {
    {},
    {.HorizontalSampling = 2},
    {.HorizontalSampling = 2, .VerticalSampling = 2},
    {.VerticalSampling = 4},
    {.HorizontalSampling = 4, .VerticalSampling = 2},
    {.HorizontalSampling = 3, .VerticalSampling = 2},
    {.Samplings = {{2, 2}, {2, 1}, {1, 2}}},
    {.Samplings = {{1, 1}, {2, 2}, {1, 1}}},
    {.Colors = StoredColors::Grey, .Samplings = {{2, 2}}},
    {.Colors = StoredColors::Grey, .Progressive = true},
    {.Colors = StoredColors::TwoChannels, .Samplings = {{2, 1}, {1, 1}}},
    {.Colors = StoredColors::Rgb},
    {.Colors = StoredColors::Cmyk, .AdobeMarker = false},
    {.Colors = StoredColors::Ycck, .HorizontalSampling = 2, .VerticalSampling = 2},
    {.Colors = StoredColors::Ycck, .HorizontalSampling = 2, .Progressive = true},
    {.HorizontalSampling = 2, .VerticalSampling = 2, .Progressive = true},
    {.HorizontalSampling = 2, .VerticalSampling = 2, .Arithmetic = true},
    {.VerticalSampling = 2, .Progressive = true, .Arithmetic = true},
    {.HorizontalSampling = 2, .VerticalSampling = 2, .RestartInterval = 3},
    {.HorizontalSampling = 2, .Progressive = true, .RestartInterval = 7},
    // The library doesn't put these into one scan, and jpegtran refuses them.
    {.HorizontalSampling = 4, .VerticalSampling = 4},
    {.HorizontalSampling = 4, .VerticalSampling = 4, .Progressive = true},
};

JpegRecipe WithSize(JpegRecipe recipe, int width, int height) {
  recipe.Width = width;
  recipe.Height = height;
  return recipe;
}

Bytes Turn(const Bytes& jpeg, int angle) { return TurnJpeg(jpeg, angle).value_or(Bytes()); }

/// Whether jpegtran makes the same picture of a file; true where there is no jpegtran.
bool IsAsByJpegtran(const Bytes& jpeg, int angle, const Bytes& turned) {
  static const bool isThere = std::system("jpegtran -version >/dev/null 2>&1") == 0;
  if (!isThere) return true;
  const CScratchFolder scratch;
  const std::string from = scratch.Write("from.jpg", {jpeg.begin(), jpeg.end()});
  const std::string to = scratch.File("to.jpg");
  const std::string command = "jpegtran -rotate " + std::to_string(angle) +
                              " -trim -optimize -copy all -outfile " + to + " " + from + " 2>/dev/null";
  const int status = std::system(command.c_str());
  const std::string bytes = ReadBytes(to);
  if (bytes.empty()) return status != 0;
  const PlainJpeg expected = ReadPlainly({reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()});
  const PlainJpeg actual = ReadPlainly(turned);
  return actual.Width == expected.Width && actual.Height == expected.Height &&
         actual.Samples == expected.Samples;
}

/// The largest difference of the samples from those of a picture turned clockwise by 90 degrees.
int LargestError(const PlainJpeg& turned, const PlainJpeg& original) {
  if (turned.Width != original.Height || turned.Height != original.Width) return 256;
  const auto at = [](const PlainJpeg& jpeg, int x, int y, int channel) {
    return int{jpeg.Samples[static_cast<std::size_t>((y * jpeg.Width + x) * jpeg.Channels + channel)]};
  };
  int largest = 0;
  for (int y = 0; y < turned.Height; ++y)
    for (int x = 0; x < turned.Width; ++x)
      for (int k = 0; k < turned.Channels; ++k)
        largest = std::max(largest, std::abs(at(turned, x, y, k) - at(original, y, turned.Width - 1 - x, k)));
  return largest;
}

/// The file with headers, each its code and its data, put in right behind its first marker.
Bytes WithHeaders(Bytes jpeg, const std::vector<std::string>& headers) {
  Bytes added;
  for (const std::string& header : headers) {
    const std::size_t length = header.size() + 1;
    added.insert(added.end(), {0xFF, static_cast<std::uint8_t>(header[0]),
                               static_cast<std::uint8_t>(length >> 8), static_cast<std::uint8_t>(length)});
    added.insert(added.end(), header.begin() + 1, header.end());
  }
  jpeg.insert(jpeg.begin() + 2, added.begin(), added.end());
  return jpeg;
}

}  // namespace

TEST(JpegTurnTest, EveryKindIsTurnedAsJpegtranTurnsItAndKeepsItsForm) {
  for (const JpegRecipe& kind : kKinds)
    for (const auto& [width, height] : {std::pair(151, 93), {5, 70}}) {
      const Bytes jpeg = MakeNoisyJpeg(WithSize(kind, width, height));
      const PlainJpeg before = ReadPlainly(jpeg);
      for (const int angle : {90, 180, 270}) {
        const Bytes turned = Turn(jpeg, angle);
        ASSERT_FALSE(turned.empty());
        EXPECT_TRUE(IsAsByJpegtran(jpeg, angle, turned)) << &kind - kKinds << " by " << angle;
        const PlainJpeg after = ReadPlainly(turned);
        EXPECT_EQ(after.Progressive, kind.Progressive);
        EXPECT_EQ(after.Arithmetic, kind.Arithmetic);
        EXPECT_EQ(after.RestartInterval > 0, kind.RestartInterval > 0);
        EXPECT_EQ(after.Headers, before.Headers);
      }
    }
}

TEST(JpegTurnTest, TurnsOfWholeBlocksUndoEachOther) {
  for (const JpegRecipe& kind : kKinds) {
    const Bytes jpeg = MakeNoisyJpeg(WithSize(kind, 96, 192));
    const PlainJpeg original = ReadPlainly(jpeg);
    const Bytes turned = Turn(jpeg, 90);
    EXPECT_LE(LargestError(ReadPlainly(turned), original), 2) << &kind - kKinds;
    EXPECT_EQ(Turn(turned, 90), Turn(jpeg, 180)) << &kind - kKinds;
    EXPECT_EQ(ReadPlainly(Turn(turned, 270)).Samples, original.Samples) << &kind - kKinds;
    EXPECT_EQ(ReadPlainly(Turn(Turn(jpeg, 180), 180)).Samples, original.Samples) << &kind - kKinds;
  }
  const Bytes jpeg = MakeNoisyJpeg(
      {.Width = 96, .Height = 192, .HorizontalSampling = 2, .VerticalSampling = 2, .RestartInterval = 12});
  EXPECT_EQ(ReadPlainly(Turn(jpeg, 90)).RestartInterval, 24U) << "at the ends of two rows";
  EXPECT_EQ(ReadPlainly(Turn(jpeg, 180)).RestartInterval, 12U);
}

TEST(JpegTurnTest, HeadersAreKeptByteForByteInTheirOrder) {
  const std::vector<std::string> headers = {"\xFE a comment",
                                            std::string("\xE1 Exif\0\0II*\0", 12),
                                            "\xE2" + std::string(65533, '\x7F'),
                                            "\xED Photoshop 3.0",
                                            "\xFE",
                                            "\xE1 http://ns.adobe.com/xap/1.0/",
                                            std::string("\xE0JFXX\0\x10", 7),
                                            "\xEF"};
  for (const bool jfif : {true, false}) {
    const Bytes jpeg = WithHeaders(MakeNoisyJpeg({.Progressive = jfif, .Jfif = jfif}), headers);
    const std::vector<std::string> before = ReadPlainly(jpeg).Headers;
    ASSERT_EQ(before.size(), headers.size() + (jfif ? 1 : 0));
    for (const int angle : {90, 180}) EXPECT_EQ(ReadPlainly(Turn(jpeg, angle)).Headers, before);
  }
  // Many headers cost no more than their bytes.
  const Bytes comments =
      WithHeaders(MakeNoisyJpeg({.Progressive = true}), std::vector<std::string>(300000, "\xFE"));
  EXPECT_EQ(Turn(Turn(comments, 90), 270).size(), comments.size());
}

TEST(JpegTurnTest, WhatStandsBehindThePictureStaysThere) {
  const Bytes jpeg = MakeNoisyJpeg({});
  Bytes trailer = {0xFF, 0xD9, 0, 'm', 'o', 't', 'i', 'o', 'n'};
  trailer.insert(trailer.end(), jpeg.begin(), jpeg.end());
  Bytes whole = jpeg;
  whole.insert(whole.end(), trailer.begin(), trailer.end());
  Bytes expected = Turn(jpeg, 90);
  EXPECT_EQ(Turn(Bytes(jpeg.begin(), jpeg.end() - 2), 90), expected) << "a missing EOI marker is added";
  expected.insert(expected.end(), trailer.begin(), trailer.end());
  EXPECT_EQ(Turn(whole, 90), expected);
}

TEST(JpegTurnTest, WhatGivesNoPictureOrWouldLoseHeadersIsNotTurned) {
  for (const Bytes& rubbish : {Bytes(), Bytes(100, 0xFF), Bytes{0xFF, 0xD8, 0xFF, 0xD9}})
    EXPECT_FALSE(TurnJpeg(rubbish, 90));
  const Bytes jpeg = MakeNoisyJpeg({});
  Bytes holed = jpeg;
  holed.insert(holed.begin() + 2, 600, 0x55);
  EXPECT_FALSE(TurnJpeg(holed, 90)) << "unknown bytes stand where a header should begin";
  EXPECT_THROW(TurnJpeg(jpeg, 45), CError);
  EXPECT_THROW(TurnJpeg(jpeg, 0), CError);
}

TEST(JpegTurnTest, ADamagedPictureIsTurnedAsItShows) {
  std::vector<Bytes> damaged;
  std::mt19937 random(5);
  for (const JpegRecipe& recipe :
       {JpegRecipe{}, {.Progressive = true}, {.Arithmetic = true}, {.RestartInterval = 5}}) {
    const Bytes jpeg = MakeNoisyJpeg(WithSize(recipe, 160, 160));
    const auto middle = jpeg.begin() + static_cast<std::ptrdiff_t>(jpeg.size() / 2);
    damaged.emplace_back(jpeg.begin(), middle);
    damaged.push_back(damaged.back());
    damaged.back().insert(damaged.back().end(), middle + 1000, jpeg.end());
    for (int k = 0; k < 20; ++k) {
      damaged.push_back(jpeg);
      damaged.back()[jpeg.size() / 8 + random() % (jpeg.size() / 8 * 7)] =
          static_cast<std::uint8_t>(random());
    }
  }
  int turned = 0;
  for (const Bytes& jpeg : damaged) {
    const auto result = TurnJpeg(jpeg, 90);
    if (!result) continue;
    ++turned;
    EXPECT_TRUE(IsAsByJpegtran(jpeg, 90, *result)) << &jpeg - damaged.data();
    EXPECT_TRUE(TurnJpeg(*result, 90)) << "what is written is whole";
  }
  EXPECT_GT(turned, 60);
}

TEST(JpegTurnTest, ForgedFilesCostLittle) {
  for (const bool arithmetic : {false, true})
    for (const bool progressive : {false, true}) {
      const Bytes jpeg = MakeJpeg({.Progressive = progressive, .Arithmetic = arithmetic});
      EXPECT_THROW(TurnJpeg(ForgeSize(jpeg, 65500, 65500), 90), CTooLargeException);
      EXPECT_THROW(TurnJpeg(ForgeSize(jpeg, 20000, 15000), 90), CTooLargeException);
    }
  const Bytes jpeg = MakeJpeg({.Width = 200, .Height = 200, .Progressive = true});
  EXPECT_THROW(TurnJpeg(RepeatLastScan(jpeg, 600), 90), CTooLargeException);
  // Without enough data an arithmetic decoder gives values that its encoder can't write.
  const Bytes arithmetic = MakeNoisyJpeg({.Width = 40, .Height = 24, .Arithmetic = true});
  for (int height = 1024; height <= 16384; height *= 2) {
    const auto turned = TurnJpeg(ForgeSize(arithmetic, 40, height), 180);
    EXPECT_TRUE(!turned || TurnJpeg(*turned, 180)) << height;
  }
}
