#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <random>
// jpeglib.h needs <cstdio> before it.
#include <jpeglib.h>

#include "base/Exceptions.h"
#include "imaging/JpegCodec.h"
#include "imaging/JpegTurn.h"
#include "imaging/PictureMemory.h"
#include "support/ScratchFolder.h"
#include "support/TestJpeg.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

struct Decoded {
  ImageSize Size;
  Bytes Pixels;

  int At(int x, int y, int channel) const {
    return Pixels[static_cast<std::size_t>((y * Size.Width + x) * 3 + channel)];
  }
};

Decoded Decode(std::span<const std::uint8_t> jpeg, int reduction = 1) {
  CJpegDecoder decoder(jpeg);
  const ImageSize size{CJpegDecoder::ReducedSide(decoder.GetSize().Width, reduction),
                       CJpegDecoder::ReducedSide(decoder.GetSize().Height, reduction)};
  Decoded decoded{size,
                  Bytes(static_cast<std::size_t>(size.Width) * static_cast<std::size_t>(size.Height) * 3)};
  decoder.Decode(reduction, {decoded.Pixels.data(), std::ptrdiff_t{3} * size.Width, size, 3});
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

/// The largest difference from the red, green and blue of `expected`, without the last column and row of a
/// reduced picture: they hold parts of pixels that the encoder made up.
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

/// What the JPEG library itself reads of a file. It ends the test program if that is no JPEG.
struct PlainJpeg {
  ImageSize Size;
  bool Progressive = false;
  bool Arithmetic = false;
  unsigned RestartInterval = 0;
  std::vector<std::string> Headers = {};  // each comment and application marker: its code and its data
  Bytes Samples = {};                     // of all channels, as they are stored
};

PlainJpeg ReadPlainly(std::span<const std::uint8_t> jpeg) {
  jpeg_decompress_struct info{};
  jpeg_error_mgr errors{};
  info.err = jpeg_std_error(&errors);
  errors.output_message = [](j_common_ptr) {};  // of damaged files
  jpeg_create_decompress(&info);
  jpeg_mem_src(&info, jpeg.data(), static_cast<unsigned long>(jpeg.size()));
  for (const int marker : {JPEG_COM, 0xE0, 0xE1, 0xE2, 0xED, 0xEE, 0xEF})
    jpeg_save_markers(&info, marker, 0xFFFF);
  jpeg_read_header(&info, TRUE);
  info.out_color_space = info.jpeg_color_space;
  jpeg_start_decompress(&info);
  PlainJpeg plain{{static_cast<int>(info.image_width), static_cast<int>(info.image_height)},
                  info.progressive_mode != FALSE,
                  info.arith_code != FALSE,
                  info.restart_interval};
  for (jpeg_saved_marker_ptr marker = info.marker_list; marker; marker = marker->next) {
    plain.Headers.push_back(std::string(1, static_cast<char>(marker->marker)));
    plain.Headers.back().append(reinterpret_cast<const char*>(marker->data), marker->data_length);
  }
  Bytes row(std::size_t{info.image_width} * static_cast<std::size_t>(info.num_components));
  while (info.output_scanline < info.image_height) {
    JSAMPROW rows = row.data();
    jpeg_read_scanlines(&info, &rows, 1);
    plain.Samples.insert(plain.Samples.end(), row.begin(), row.end());
  }
  jpeg_destroy_decompress(&info);
  return plain;
}

Bytes Turn(const Bytes& jpeg, int angle) { return TurnJpeg(jpeg, angle).value_or(Bytes()); }

/// Whether jpegtran makes the same picture of a file; true where there is no jpegtran, or it refuses.
bool IsAsByJpegtran(const Bytes& jpeg, int angle, const Bytes& turned) {
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
  return actual.Size == expected.Size && actual.Samples == expected.Samples;
}

/// The file with another size in its frame header.
Bytes ForgeSize(Bytes jpeg, int width, int height) {
  std::size_t frame = 2;
  while (jpeg[frame + 1] < 0xC0 || jpeg[frame + 1] > 0xCA || jpeg[frame + 1] == 0xC4)
    frame += 2 + std::size_t{jpeg[frame + 2]} * 256 + jpeg[frame + 3];
  for (const int shift : {0, 8}) {
    jpeg[frame + 6 - static_cast<std::size_t>(shift / 8)] = static_cast<std::uint8_t>(height >> shift);
    jpeg[frame + 8 - static_cast<std::size_t>(shift / 8)] = static_cast<std::uint8_t>(width >> shift);
  }
  return jpeg;
}

constexpr std::uint8_t kFrame[] = {0xFF, 0xC2};  // of a progressive file
constexpr std::uint8_t kScan[] = {0xFF, 0xDA};

/// The file with its last scan `times` times.
Bytes RepeatLastScan(const Bytes& jpeg, int times) {
  const auto scan = std::ranges::find_end(jpeg, kScan).begin();
  Bytes repeated(jpeg.begin(), scan);
  for (int k = 0; k < times; ++k) repeated.insert(repeated.end(), scan, jpeg.end() - 2);
  repeated.insert(repeated.end(), {0xFF, JPEG_EOI});
  return repeated;
}

/// Pixels without any order, so that all coefficients count; the same ones each time.
Bytes MakeNoisyJpeg(JpegRecipe recipe) {
  recipe.Quality = 90;
  return MakeJpeg(recipe, [random = std::mt19937(3)](int, int) mutable {
    const auto bits = random();
    return std::array<std::uint8_t, 4>{static_cast<std::uint8_t>(bits), static_cast<std::uint8_t>(bits >> 8),
                                       static_cast<std::uint8_t>(bits >> 16), 0};
  });
}

JpegRecipe WithSize(JpegRecipe recipe, int width, int height) {
  recipe.Width = width;
  recipe.Height = height;
  return recipe;
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

const std::string kNoHeader = "Cannot read JPEG header";

}  // namespace

TEST(JpegCodecTest, ColorsOfEveryCodingComeOutAsPainted) {
  const JpegRecipe recipes[] = {
      {},
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
  const auto inks = [](int x, int y) {
    return std::array{static_cast<std::uint8_t>(250 - 2 * x), static_cast<std::uint8_t>(100 + 2 * x),
                      static_cast<std::uint8_t>(20 + 4 * y), static_cast<std::uint8_t>(255 - x - y)};
  };
  const auto printed = [&](int full) {
    return [&inks, full](int x, int y) {
      auto pixel = inks(x, y);
      for (std::size_t k = 0; k < 3; ++k)
        pixel[k] =
            static_cast<std::uint8_t>(std::abs(full - pixel[k]) * std::abs(full - pixel[3]) / 255.0 + 0.5);
      return pixel;
    };
  };
  // Writers of the Adobe marker store inverted inks. Without it the names of the channels tell that they are
  // inks.
  for (const StoredColors colors : {StoredColors::Cmyk, StoredColors::Ycck})
    EXPECT_LE(LargestError(Decode(MakeJpeg({.Colors = colors}, inks)), printed(0)), 4);
  const auto plain = MakeJpeg({.Colors = StoredColors::Cmyk, .AdobeMarker = false}, inks);
  EXPECT_LE(LargestError(Decode(plain), printed(255)), 4);
  for (const JpegRecipe& recipe : {JpegRecipe{.Colors = StoredColors::TwoChannels},
                                   {.Colors = StoredColors::Ycck, .AdobeMarker = false}})
    EXPECT_EQ(FailureOf(MakeJpeg(recipe)), "Unsupported number of channels");
}

TEST(JpegCodecTest, ReducedSidesAreRoundedUpAndTheirPixelsAverages) {
  for (const bool progressive : {false, true}) {
    const auto jpeg =
        MakeJpeg({.Width = 101, .Height = 99, .HorizontalSampling = 2, .Progressive = progressive});
    EXPECT_EQ(Decode(jpeg, 2).Size, (ImageSize{51, 50}));
    for (const int reduction : {2, 4, 8})
      EXPECT_LE(LargestError(Decode(jpeg, reduction), PaintSoftly, reduction), 4) << reduction;
  }
}

TEST(JpegCodecTest, EncodesWithChromaHalvedAndAtTheQualityAskedFor) {
  Bytes pixels(64 * 48 * 3);
  for (std::size_t i = 0; i < pixels.size(); ++i) pixels[i] = static_cast<std::uint8_t>(i * i / 777);
  const auto fine = EncodeJpeg({pixels.data(), 64 * 3, {64, 48}, 3}, 95);
  EXPECT_LT(EncodeJpeg({pixels.data(), 64 * 3, {64, 48}, 3}, 30).size() * 2, fine.size());
  const std::uint8_t frame[] = {0xFF, 0xC0, 0, 17, 8, 0, 48, 0, 64, 3, 1, 0x22, 0, 2, 0x11, 1, 3, 0x11, 1};
  EXPECT_FALSE(std::ranges::search(fine, frame).empty());
  EXPECT_THROW(EncodeJpeg({pixels.data(), 64, {16, 16}, 4}, 50), CException);
  EXPECT_THROW(EncodeJpeg({}, 50), CException);
  EXPECT_THROW(EncodeJpeg({pixels.data(), 0, {70000, 1}, 3}, 50), CException);
}

TEST(JpegCodecTest, AFileCutShortShowsWhatItHasAndGreyBelow) {
  for (const bool progressive : {false, true}) {
    const auto jpeg =
        MakeNoisyJpeg({.Width = 160, .Height = 160, .VerticalSampling = 2, .Progressive = progressive});
    const Decoded whole = Decode(jpeg);
    bool begun = false;
    for (std::size_t size = 0; size < jpeg.size(); size += 297) {
      const std::string failure = FailureOf(std::span(jpeg).first(size));
      // Once there is enough for a header, there is a picture.
      if (failure == "none") begun = true;
      EXPECT_EQ(failure, begun ? "none" : kNoHeader) << size;
    }
    EXPECT_TRUE(begun);
    EXPECT_EQ(Decode(std::span(jpeg).first(jpeg.size() - 2)).Pixels, whole.Pixels) << "only the EOI lacks";
    if (progressive) continue;
    const Decoded half = Decode(std::span(jpeg).first(jpeg.size() / 2));
    for (int x = 0; x < 160; ++x) EXPECT_EQ(half.At(x, 30, 1), whole.At(x, 30, 1));
    for (int x = 0; x < 160; ++x) EXPECT_EQ(half.At(x, 159, 1), 128);
  }
}

TEST(JpegCodecTest, TheScansBeforeASecondFrameHeaderAreShown) {
  const auto jpeg = MakeJpeg({.Width = 120, .Height = 120, .Progressive = true});
  constexpr std::ptrdiff_t kFrameBytes = 19;  // of three channels, with the marker
  for (const auto& [width, height] : {std::pair(65500, 65500), {120, 8}, {8, 120}, {120, 120}}) {
    const auto forged = ForgeSize(jpeg, width, height);
    const auto frame = std::ranges::search(forged, kFrame).begin();
    auto twice = jpeg;
    twice.insert(std::ranges::find_end(twice, kScan).begin(), frame, frame + kFrameBytes);
    for (const int reduction : {1, 8})
      EXPECT_LE(LargestError(Decode(twice, reduction), PaintSoftly, reduction), 8) << width << "x" << height;
  }
}

TEST(JpegTest, ForgedSizesAndScansAreRefusedOrCostLittle) {
  const std::string tooLarge = CTooLargeException().GetMessage();
  for (const bool arithmetic : {false, true})
    for (const bool progressive : {false, true}) {
      const auto jpeg = MakeJpeg({.Progressive = progressive, .Arithmetic = arithmetic});
      const auto bomb = ForgeSize(jpeg, 65500, 65500);
      CJpegDecoder decoder(bomb);
      std::uint8_t nothing[3] = {};
      EXPECT_THROW(decoder.Decode(8, {nothing, 0, {8188, 8188}, 3}), CTooLargeException);
      EXPECT_THROW(TurnJpeg(bomb, 90), CTooLargeException);
      EXPECT_EQ(FailureOf(ForgeSize(jpeg, 65535, 65535)), kNoHeader);
      EXPECT_EQ(FailureOf(ForgeSize(jpeg, 0, 48)), kNoHeader);
      // 300 megapixels of next to no data: soon decoded in one scan, too much to hold for several.
      const auto large = ForgeSize(jpeg, 20000, 15000);
      EXPECT_EQ(FailureOf(large, 8), progressive || arithmetic ? tooLarge : "none");
      EXPECT_THROW(TurnJpeg(large, 90), CTooLargeException);
    }
  const auto jpeg = MakeJpeg({.Width = 200, .Height = 200, .Progressive = true});
  EXPECT_EQ(FailureOf(RepeatLastScan(jpeg, 50)), "none");
  EXPECT_EQ(FailureOf(RepeatLastScan(jpeg, 600)), tooLarge);
  EXPECT_THROW(TurnJpeg(RepeatLastScan(jpeg, 600), 90), CTooLargeException);
  // Without enough data an arithmetic decoder gives values that its encoder can't write.
  const Bytes noise = MakeNoisyJpeg({.Width = 40, .Height = 24, .Arithmetic = true});
  for (int height = 1024; height <= 16384; height *= 2) {
    const auto turned = TurnJpeg(ForgeSize(noise, 40, height), 180);
    EXPECT_TRUE(!turned || TurnJpeg(*turned, 180)) << height;
  }
}

TEST(JpegTurnTest, EveryKindIsTurnedAsJpegtranTurnsItAndKeepsItsForm) {
  const JpegRecipe kinds[] = {
      {},
      {.HorizontalSampling = 2, .VerticalSampling = 2},
      {.VerticalSampling = 4},
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
      const Bytes jpeg = MakeNoisyJpeg(WithSize(kind, width, height));
      for (const int angle : {90, 180, 270}) {
        const Bytes turned = Turn(jpeg, angle);
        ASSERT_FALSE(turned.empty());
        EXPECT_TRUE(IsAsByJpegtran(jpeg, angle, turned)) << number << " by " << angle;
        const PlainJpeg form = ReadPlainly(turned);
        EXPECT_EQ(form.Progressive, kind.Progressive) << number;
        EXPECT_EQ(form.Arithmetic, kind.Arithmetic) << number;
        EXPECT_EQ(form.RestartInterval > 0, kind.RestartInterval > 0) << number;
        EXPECT_EQ(form.Headers, ReadPlainly(jpeg).Headers) << number;
      }
    }
    // Of whole blocks nothing is lost.
    const Bytes jpeg = MakeNoisyJpeg(WithSize(kind, 96, 192));
    const Bytes turned = Turn(jpeg, 90);
    EXPECT_EQ(ReadPlainly(turned).Size, (ImageSize{192, 96}));
    EXPECT_EQ(Turn(turned, 90), Turn(jpeg, 180)) << number;
    EXPECT_EQ(ReadPlainly(Turn(turned, 270)).Samples, ReadPlainly(jpeg).Samples) << number;
  }
  const Bytes jpeg = MakeNoisyJpeg({.Width = 96, .Height = 192, .RestartInterval = 12});
  EXPECT_EQ(ReadPlainly(Turn(jpeg, 90)).RestartInterval, 24U) << "at the end of each row";
  EXPECT_EQ(ReadPlainly(Turn(jpeg, 180)).RestartInterval, 12U);
}

TEST(JpegTurnTest, HeadersAndTrailersAreKeptByteForByteInTheirOrder) {
  const std::vector<std::string> headers = {"\xFE a comment",
                                            std::string("\xE1 Exif\0\0II*\0", 12),
                                            "\xE2" + std::string(65533, '\x7F'),
                                            "\xED Photoshop 3.0",
                                            "\xFE",
                                            std::string("\xE0JFXX\0\x10", 7),
                                            "\xEF"};
  for (const bool jfif : {true, false}) {
    const Bytes jpeg = WithHeaders(MakeNoisyJpeg({.Progressive = jfif, .Jfif = jfif}), headers);
    const std::vector<std::string> before = ReadPlainly(jpeg).Headers;
    ASSERT_EQ(before.size(), headers.size() + (jfif ? 1 : 0));
    for (const int angle : {90, 180}) EXPECT_EQ(ReadPlainly(Turn(jpeg, angle)).Headers, before);
  }
  const Bytes jpeg = MakeNoisyJpeg({.Progressive = true});
  const Bytes comments = WithHeaders(jpeg, std::vector<std::string>(300000, "\xFE"));
  EXPECT_EQ(Turn(Turn(comments, 90), 270).size(), comments.size()) << "and in linear time";

  Bytes expected = Turn(jpeg, 90);
  EXPECT_EQ(Turn(Bytes(jpeg.begin(), jpeg.end() - 2), 90), expected) << "a missing EOI marker is added";
  Bytes trailer = {0xFF, 0xD9, 0, 'm', 'o', 't', 'i', 'o', 'n'};
  trailer.insert(trailer.end(), jpeg.begin(), jpeg.end());
  Bytes whole = jpeg;
  whole.insert(whole.end(), trailer.begin(), trailer.end());
  expected.insert(expected.end(), trailer.begin(), trailer.end());
  EXPECT_EQ(Turn(whole, 90), expected);
}

TEST(JpegTurnTest, ADamagedPictureIsTurnedAsItShowsUnlessHeadersWouldBeLost) {
  for (const Bytes& rubbish : {Bytes(), Bytes(100, 0xFF), Bytes{0xFF, 0xD8, 0xFF, 0xD9}})
    EXPECT_FALSE(TurnJpeg(rubbish, 90));
  Bytes holed = MakeNoisyJpeg({});
  EXPECT_THROW(TurnJpeg(holed, 45), CError);
  holed.insert(holed.begin() + 2, 600, 0x55);
  EXPECT_FALSE(TurnJpeg(holed, 90)) << "unknown bytes stand where a header should begin";

  std::mt19937 random(5);
  int turned = 0;
  for (const JpegRecipe& recipe :
       {JpegRecipe{}, {.Progressive = true}, {.Arithmetic = true}, {.RestartInterval = 5}}) {
    const Bytes jpeg = MakeNoisyJpeg(WithSize(recipe, 160, 160));
    for (int k = 0; k < 12; ++k) {
      Bytes damaged = jpeg;
      const auto middle = damaged.begin() + static_cast<std::ptrdiff_t>(jpeg.size() / 2);
      if (k == 0)
        damaged.erase(middle, damaged.end());
      else if (k == 1)
        damaged.erase(middle, middle + 1000);
      else
        damaged[jpeg.size() / 8 + random() % (jpeg.size() / 8 * 7)] = static_cast<std::uint8_t>(random());
      const auto result = TurnJpeg(damaged, 90);
      if (!result) continue;
      ++turned;
      EXPECT_TRUE(IsAsByJpegtran(damaged, 90, *result)) << k;
      EXPECT_TRUE(TurnJpeg(*result, 90)) << "what is written is whole";
    }
  }
  EXPECT_GT(turned, 32);
}
