#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <random>

#include "imaging/AutoFix.h"
#include "imaging/JpegCodec.h"
#include "imaging/JpegImage.h"
#include "imaging/TiffImage.h"
#include "imaging/ToneMap.h"

using testing::ElementsAre;

namespace {

using Pixel = std::array<std::uint8_t, 3>;

/// The correction as it is described, one pixel at a time, with nothing prepared.
class CPlainFix {
 public:
  explicit CPlainFix(const std::vector<Pixel>& pixels) {
    std::vector<long> hist(256);
    for (const Pixel& pixel : pixels) ++hist[*std::ranges::max_element(pixel)];
    const long count = static_cast<long>(pixels.size());
    for (std::size_t i = 0; i < 256; ++i) Map[i] = static_cast<int>(i);
    const int median = std::max(WalkUp(hist, -1, count / 2), 0);
    if (median <= 127) {
      double gamma = median == 0 ? 0 : std::log(0.5) / std::log(median / 255.0);
      if (gamma < 0.6) gamma = gamma * (1.0 / 3.0) + 0.4;
      for (std::size_t i = 0; i < 256; ++i)
        Map[i] = static_cast<int>(255 * std::pow(static_cast<double>(i) * (1.0 / 255), gamma));
    }
    const long limit = static_cast<long>(0.05 * static_cast<double>(*std::ranges::max_element(hist)));
    const long budget = static_cast<long>(0.03 * static_cast<double>(count));
    const int low = std::max(WalkUp(hist, limit, budget), 0);
    std::ranges::reverse(hist);
    const int high = std::min(255 - WalkUp(hist, limit, budget), 255);
    const int a = Map[static_cast<std::size_t>(low)];
    const int b = Map[static_cast<std::size_t>(high)];
    for (int i = 0; i < 256; ++i) {
      int& value = Map[static_cast<std::size_t>(i)];
      if (i <= low)
        value = 0;
      else if (i >= high)
        value = 255;
      else if (a != b)
        value = static_cast<int>((value - a) * 255.0 / (b - a));
    }
  }

  Pixel Apply(const Pixel& pixel) const {
    const int largest = *std::ranges::max_element(pixel);
    const int smallest = *std::ranges::min_element(pixel);
    if (largest == 0) return pixel;
    const double s = (largest - smallest) * (1.0 / 255);
    const double t = 1.0 - s;
    const double k = static_cast<double>(Map[static_cast<std::size_t>(largest)]) / largest;
    Pixel fixed{};
    for (std::size_t i = 0; i < 3; ++i) {
      const double value = ((largest * k) - (largest - pixel[i])) * t + (pixel[i] * k) * s;
      fixed[i] = value < 0.0 ? 0 : static_cast<std::uint8_t>(static_cast<int>(value));
    }
    return fixed;
  }

  std::array<int, 256> Map{};

 private:
  /// Gives up bins from the dark end on; a negative limit is none.
  static int WalkUp(const std::vector<long>& hist, long limit, long budget) {
    for (int i = 0;; ++i) {
      const long bin = hist.at(static_cast<std::size_t>(i));
      if (limit >= 0 && bin > limit) return i;
      budget -= bin;
      if (budget == 0) return i;
      if (budget < 0) return bin + 2 * budget >= 0 ? i : i - 1;
    }
  }
};

/// The pixels as an image of that width, corrected.
std::vector<Pixel> Fix(const std::vector<Pixel>& pixels, int width) {
  CJpegImage image(ImageSize{width, static_cast<int>(pixels.size()) / width});
  const PixelBuffer buffer = image.GetBuffer();
  const auto place = [&](std::size_t i) {
    return buffer.Row(static_cast<int>(i) / width) + static_cast<int>(i) % width * 3;
  };
  for (std::size_t i = 0; i < pixels.size(); ++i) std::ranges::copy(pixels[i], place(i));
  AutoFix(image);
  std::vector<Pixel> fixed(pixels.size());
  for (std::size_t i = 0; i < pixels.size(); ++i) std::copy_n(place(i), 3, fixed[i].begin());
  return fixed;
}

Pixel Grey(int value) {
  const auto byte = static_cast<std::uint8_t>(value);
  return {byte, byte, byte};
}

void ExpectAsDescribed(const std::vector<Pixel>& pixels, int width, const std::string& what) {
  const CPlainFix plain(pixels);
  const std::vector<Pixel> fixed = Fix(pixels, width);
  std::size_t wrong = 0;
  for (std::size_t i = 0; i < pixels.size(); ++i) wrong += fixed[i] != plain.Apply(pixels[i]);
  EXPECT_EQ(0U, wrong) << what;
}

/// Pixels of every three values that a brightest, a middle and a darkest colour can have, in all orders.
std::vector<Pixel> AllColors() {
  std::vector<Pixel> pixels;
  for (unsigned largest = 0; largest < 256; ++largest)
    for (unsigned smallest = 0; smallest <= largest; ++smallest)
      for (unsigned middle = smallest; middle <= largest; ++middle) {
        Pixel pixel = {static_cast<std::uint8_t>(smallest), static_cast<std::uint8_t>(middle),
                       static_cast<std::uint8_t>(largest)};
        std::rotate(pixel.begin(), pixel.begin() + pixels.size() % 3, pixel.end());
        if (pixels.size() % 2 == 0) std::swap(pixel[0], pixel[1]);
        pixels.push_back(pixel);
      }
  return pixels;
}

}  // namespace

TEST(ToneMapTest, MediansBelowTheMiddleAreLiftedAndSoftened) {
  const auto lifted = [](int median, int at) {
    // Half of the pixels at the median make it so; bins at both ends keep the stretch away.
    BrightnessCounts counts{};
    counts[0] = 400;
    counts[static_cast<std::size_t>(median)] += 200;
    counts[255] = 400;
    return MakeToneMap(counts)[static_cast<std::size_t>(at)];
  };
  EXPECT_EQ(200, lifted(128, 200)) << "no gamma";
  EXPECT_EQ(127, lifted(127, 127)) << "of nearly 1";
  EXPECT_EQ(200, lifted(127, 200));
  EXPECT_EQ(127, lifted(100, 100)) << "of 0.74";
  EXPECT_EQ(105, lifted(50, 50)) << "of 0.43, softened to 0.54";
  EXPECT_EQ(153, lifted(50, 100));
}

TEST(ToneMapTest, EndsAreClippedUntilThreeInAHundredOrABinThatStandsOut) {
  BrightnessCounts counts{};
  counts[200] = 10000;
  for (std::size_t i = 140; i < 200; ++i) counts[i] = 400;
  counts[130] = 499;  // 5% of the tallest is 500; 3% of all is 1034
  counts[131] = 499;
  counts[250] = 500;
  // 499 + 499 are given up below, and of the next bin less than half: the point is the one before it. Above,
  // 500 go, and the tallest bin stands out.
  ToneMap map = MakeToneMap(counts);
  EXPECT_EQ(0, map[139]);
  EXPECT_EQ(static_cast<int>((170 - 139) * 255.0 / (200 - 139)), map[170]);
  EXPECT_EQ(255, map[200]);

  counts[130] = 501;
  map = MakeToneMap(counts);
  EXPECT_EQ(0, map[130]);
  EXPECT_EQ(static_cast<int>((170 - 130) * 255.0 / (200 - 130)), map[170]);
}

TEST(AutoFixTest, ValuesWorkedOutByHand) {
  // A median of 50 gives 50 -> 105, 100 -> 153, 200 -> 223, and the stretch 0, 103, 255.
  std::vector<Pixel> pixels(500, Grey(50));
  pixels.resize(980, Grey(200));
  pixels.resize(990, {100, 50, 0});
  pixels.resize(1000, Grey(100));
  const std::vector<Pixel> fixed = Fix(pixels, 40);
  EXPECT_EQ(Grey(0), fixed[0]);
  EXPECT_EQ(Grey(254), fixed[600]) << "200 x (255 / 200) falls just short of 255";
  EXPECT_EQ((Pixel{103, 52, 1}), fixed[985]);
  EXPECT_EQ(Grey(103), fixed[995]);
}

TEST(AutoFixTest, FlatAndTwoValuedPictures) {
  EXPECT_EQ(std::vector<Pixel>(64, Grey(0)), Fix(std::vector<Pixel>(64, Grey(100)), 8));
  EXPECT_EQ(std::vector<Pixel>(64, Grey(0)), Fix(std::vector<Pixel>(64, Grey(0)), 8));
  std::vector<Pixel> two(64, Grey(0));
  std::fill(two.begin() + 32, two.end(), Grey(255));
  EXPECT_EQ(two, Fix(two, 8));
}

TEST(AutoFixTest, EveryColorComesOutAsDescribed) {
  constexpr std::size_t kWidth = 2048;
  std::vector<Pixel> light = AllColors();
  light.resize((light.size() / kWidth + 1) * kWidth, Grey(255));
  ExpectAsDescribed(light, kWidth, "light");
  for (const int shade : {90, 20}) {
    // One in eleven of the colours, and more than as many dark pixels.
    std::vector<Pixel> dark;
    for (std::size_t i = 0; i < light.size(); i += 11) dark.push_back(light[i]);
    dark.resize((dark.size() * 9 / 4 / kWidth) * kWidth, Grey(shade));
    ExpectAsDescribed(dark, kWidth, "dark " + std::to_string(shade));
  }
}

TEST(AutoFixTest, SmallPicturesOfAnyContentComeOutAsDescribed) {
  std::mt19937 random(5);
  for (int round = 0; round < 300; ++round) {
    const int width = 1 + static_cast<int>(random() % 9);
    const std::size_t count = static_cast<std::size_t>(width) * (1 + random() % 12);
    const unsigned span = 1 + random() % 256;
    const unsigned base = static_cast<unsigned>(random()) % (257 - span);
    std::vector<Pixel> pixels(count);
    for (Pixel& pixel : pixels)
      for (std::uint8_t& color : pixel) color = static_cast<std::uint8_t>(base + random() % span);
    ExpectAsDescribed(pixels, width, "round " + std::to_string(round));
  }
}

/// Pixels of four bytes.
class CWideImage : public CTiffImage {
 public:
  CWideImage(std::vector<std::uint8_t>& bytes, int width, int height)
      : Pixels{bytes.data(), {width, height, 32}, width, height, 1, 0} {}
  BitmapPixels GetPixels() override { return Pixels; }

 private:
  const BitmapPixels Pixels;
};

TEST(AutoFixTest, AFourthByteIsLeftAlone) {
  std::vector<std::uint8_t> bytes;
  for (unsigned i = 0; i < 48 * 32 * 4; ++i) bytes.push_back(static_cast<std::uint8_t>(i * 7 + i / 300));
  const std::vector<std::uint8_t> before = bytes;
  CWideImage image(bytes, 48, 32);
  std::vector<Pixel> pixels(48 * 32);
  for (std::size_t i = 0; i < pixels.size(); ++i) std::copy_n(&before[i * 4], 3, pixels[i].begin());
  const CPlainFix plain(pixels);
  AutoFix(image);
  int wrong = 0;
  for (std::size_t i = 0; i < pixels.size(); ++i) {
    const std::uint8_t* now = &bytes[i * 4];
    wrong += !std::ranges::equal(plain.Apply(pixels[i]), std::span(now, 3)) || now[3] != before[i * 4 + 3];
  }
  EXPECT_EQ(0, wrong);
}

TEST(AutoFixTest, ImagesWithoutPixelsStaySo) {
  CJpegImage jpeg;
  CTiffImage tiff;
  AutoFix(jpeg);
  AutoFix(tiff);
  EXPECT_EQ(nullptr, jpeg.GetPixels().Bits);
}
