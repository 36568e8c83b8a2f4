#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

#include "imaging/DcPicture.h"
#include "imaging/JpegLibrary.h"
#include "support/TestJpeg.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

/// A file of which the library has read the header.
class CLibraryFile {
 public:
  explicit CLibraryFile(std::span<const std::uint8_t> jpeg) : Source(jpeg) {
    Info.err = &Errors.Manager;
    Info.client_data = &Errors;
    IsRead = RunGuarded(Errors, [this] {
      jpeg_create_decompress(&Info);
      Info.src = Source.GetManager();
      return jpeg_read_header(&Info, TRUE) == JPEG_HEADER_OK;
    });
  }
  ~CLibraryFile() { jpeg_destroy_decompress(&Info); }
  CLibraryFile(const CLibraryFile&) = delete;
  CLibraryFile& operator=(const CLibraryFile&) = delete;

  /// The picture at 1/8 by the library; empty if it gives up.
  Bytes Decode() {
    Bytes pixels;
    const bool decoded = RunGuarded(Errors, [&] {
      Info.scale_denom = 8;
      Info.out_color_space = JCS_EXT_BGR;
      jpeg_start_decompress(&Info);
      pixels.resize(std::size_t{3} * Info.output_width * Info.output_height);
      while (Info.output_scanline < Info.output_height) {
        JSAMPROW row = &pixels[std::size_t{3} * Info.output_width * Info.output_scanline];
        jpeg_read_scanlines(&Info, &row, 1);
      }
      return true;
    });
    return decoded ? pixels : Bytes();
  }

  /// The same by its DC coefficients; empty if that is left to the library.
  Bytes ReadMeans() {
    CDcPicture picture(Info, Source.GetRest());
    if (!IsRead || !picture.Read(10000)) return {};
    const ImageSize size{static_cast<int>((Info.image_width + 7) / 8),
                         static_cast<int>((Info.image_height + 7) / 8)};
    Bytes pixels(static_cast<std::size_t>(size.Width * size.Height * 3));
    CUprightRows rows(size, WayUp::AsStored, {pixels.data(), size.Width * 3, size, 3});
    return picture.Paint(rows) ? pixels : Bytes();
  }

 private:
  JpegErrors Errors;
  CJpegSource Source;
  jpeg_decompress_struct Info{};
  bool IsRead = false;
};

Bytes ReadMeans(std::span<const std::uint8_t> jpeg) { return CLibraryFile(jpeg).ReadMeans(); }
Bytes DecodeByLibrary(std::span<const std::uint8_t> jpeg) { return CLibraryFile(jpeg).Decode(); }

const JpegRecipe kExactKinds[] = {
    {},
    {.HorizontalSampling = 2},
    {.VerticalSampling = 2},
    {.HorizontalSampling = 4, .RestartInterval = 2},
    {.Colors = StoredColors::Grey, .HorizontalSampling = 2, .RestartInterval = 7},
    {.Colors = StoredColors::Rgb, .RestartInterval = 1},
    {.HorizontalSampling = 2, .Progressive = true},
    {.Progressive = true, .RestartInterval = 5},
    {.Colors = StoredColors::Grey, .Progressive = true},
};

}  // namespace

TEST(DcPictureTest, IsTheLibrarysPictureOfEveryCommonKind) {
  for (const JpegRecipe& kind : kExactKinds) {
    for (const auto& [width, height] : {std::pair(1, 1), {64, 48}, {173, 91}}) {
      JpegRecipe soft = kind;
      soft.Width = width;
      soft.Height = height;
      for (const Bytes& jpeg : {MakeNoisyJpeg(kind, width, height), MakeJpeg(soft)}) {
        EXPECT_EQ(ReadMeans(jpeg), DecodeByLibrary(jpeg)) << &kind - kExactKinds << ": " << width;
        ASSERT_FALSE(ReadMeans(jpeg).empty());
      }
    }
  }
}

TEST(DcPictureTest, DiffersByDetailOfChromaAloneWhereThatIsHalvedBothWays) {
  for (const bool progressive : {false, true}) {
    const Bytes jpeg = MakeJpeg({.Width = 173,
                                 .Height = 91,
                                 .HorizontalSampling = 2,
                                 .VerticalSampling = 2,
                                 .Progressive = progressive});
    const Bytes means = ReadMeans(jpeg);
    const Bytes expected = DecodeByLibrary(jpeg);
    ASSERT_EQ(means.size(), expected.size());
    int largest = 0;
    for (std::size_t k = 0; k < means.size(); ++k)
      largest = std::max(largest, std::abs(means[k] - expected[k]));
    EXPECT_LE(largest, 6);
  }
}

TEST(DcPictureTest, LeavesOtherFilesToTheLibrary) {
  const JpegRecipe kinds[] = {
      {.Arithmetic = true},
      {.Colors = StoredColors::Cmyk},
      {.HorizontalSampling = 3, .VerticalSampling = 2},
      {.Samplings = {{2, 2}, {2, 1}, {1, 2}}},
      {.HorizontalSampling = 4, .VerticalSampling = 4},
  };
  for (const JpegRecipe& kind : kinds) EXPECT_EQ(ReadMeans(MakeNoisyJpeg(kind)), Bytes()) << &kind - kinds;
  const Bytes jpeg = MakeNoisyJpeg({.Progressive = true});
  constexpr std::uint8_t kScan[] = {0xFF, 0xDA};
  const auto first = std::ranges::search(jpeg, kScan).end();
  Bytes lacking(jpeg.begin(), std::search(first, jpeg.end(), std::begin(kScan), std::end(kScan)));
  lacking.insert(lacking.end(), {0xFF, 0xD9});
  EXPECT_EQ(ReadMeans(lacking), Bytes()) << "the library smooths what has no detail";
}

TEST(DcPictureTest, DamagedFilesAreLeftToTheLibraryOrReadAsItReadsThem) {
  std::mt19937 random(7);
  int read = 0;
  int left = 0;
  for (const JpegRecipe& kind : kExactKinds) {
    const Bytes jpeg = MakeNoisyJpeg(kind, 61, 43);
    for (int round = 0; round < 300; ++round) {
      Bytes damaged = jpeg;
      for (auto flaws = random() % 3 + 1; flaws > 0; --flaws) {
        damaged[random() % damaged.size()] = static_cast<std::uint8_t>(random() % 4 == 0 ? 0xFF : random());
      }
      if (round % 4 == 0) damaged.resize(random() % damaged.size());
      const Bytes means = ReadMeans(damaged);
      ++(means.empty() ? left : read);
      EXPECT_TRUE(means.empty() || means == DecodeByLibrary(damaged)) << &kind - kExactKinds << ": " << round;
    }
  }
  EXPECT_GT(std::min(left, read), 100);
}
