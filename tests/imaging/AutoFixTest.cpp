#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

#include "imaging/AutoFix.h"
#include "imaging/Image.h"

namespace {

using Pixel = std::array<std::uint8_t, 3>;

/// The correction by its definition, pixel by pixel and without tables of results.
class CPlainFix {
 public:
  explicit CPlainFix(const std::vector<Pixel>& pixels) {
    std::vector<long> hist(256);
    for (const Pixel& pixel : pixels) ++hist[*std::ranges::max_element(pixel)];
    const long count = static_cast<long>(pixels.size());
    const int median = std::max(WalkUp(hist, -1, count / 2), 0);
    double gamma = median == 0 ? 0 : std::log(0.5) / std::log(median / 255.0);
    if (gamma < 0.6) gamma = gamma * (1.0 / 3.0) + 0.4;
    std::array<int, 256> lifted{};
    for (int i = 0; i < 256; ++i)
      lifted[static_cast<std::size_t>(i)] =
          median > 127 ? i : static_cast<int>(255 * std::pow(i * (1.0 / 255), gamma));
    const long limit = static_cast<long>(0.05 * static_cast<double>(*std::ranges::max_element(hist)));
    const long budget = static_cast<long>(0.03 * static_cast<double>(count));
    const std::size_t low = static_cast<std::size_t>(std::max(WalkUp(hist, limit, budget), 0));
    std::ranges::reverse(hist);
    const std::size_t high = static_cast<std::size_t>(std::min(255 - WalkUp(hist, limit, budget), 255));
    const int range = lifted[high] - lifted[low];
    for (std::size_t i = low + 1; i < 256; ++i) {
      const int stretched =
          range == 0 ? lifted[i] : static_cast<int>((lifted[i] - lifted[low]) * 255.0 / range);
      Map[i] = i >= high ? 255 : stretched;
    }
  }

  Pixel Apply(const Pixel& pixel) const {
    const int largest = *std::ranges::max_element(pixel);
    if (largest == 0) return pixel;
    const double s = (largest - *std::ranges::min_element(pixel)) * (1.0 / 255);
    const double k = static_cast<double>(Map[static_cast<std::size_t>(largest)]) / largest;
    Pixel fixed{};
    for (std::size_t i = 0; i < 3; ++i) {
      const double value = ((largest * k) - (largest - pixel[i])) * (1.0 - s) + (pixel[i] * k) * s;
      fixed[i] = static_cast<std::uint8_t>(std::max(value, 0.0));
    }
    return fixed;
  }

 private:
  /// Clips bins from the dark end on; a negative limit is none.
  static int WalkUp(const std::vector<long>& hist, long limit, long budget) {
    for (int i = 0;; ++i) {
      const long bin = hist.at(static_cast<std::size_t>(i));
      if (limit >= 0 && bin > limit) return i;
      budget -= bin;
      if (budget == 0) return i;
      if (budget < 0) return bin + 2 * budget >= 0 ? i : i - 1;
    }
  }

  std::array<int, 256> Map{};
};

/// An image of any pixel size.
class CPixelImage : public CJpegImage {
 public:
  CPixelImage(ImageSize size, int bytesPerPixel) {
    const std::ptrdiff_t rowBytes = std::ptrdiff_t{size.Width} * bytesPerPixel + 2;
    auto memory = platform::AllocateLargeMemory(static_cast<std::size_t>(rowBytes * size.Height));
    std::fill_n(memory.get(), rowBytes * size.Height, 77);
    std::uint8_t* bottom = memory.get() + rowBytes * (size.Height - 1);
    HoldPixels(std::move(memory), {bottom, -rowBytes, size, bytesPerPixel}, size);
  }
};

/// The pixels corrected as an image of that width. Whatever lies between them must stay as it is.
std::vector<Pixel> Fix(std::vector<Pixel> pixels, int width, int bytesPerPixel = 3) {
  CPixelImage image({width, static_cast<int>(pixels.size()) / width}, bytesPerPixel);
  const PixelBuffer rows = image.GetPixels();
  const auto place = [&](std::size_t i) {
    const auto column = static_cast<int>(i) % width;
    return rows.Row(static_cast<int>(i) / width) + column * bytesPerPixel;
  };
  for (std::size_t i = 0; i < pixels.size(); ++i) std::ranges::copy(pixels[i], place(i));
  AutoFix(image);
  for (std::size_t i = 0; i < pixels.size(); ++i) {
    std::copy_n(place(i), 3, pixels[i].begin());
    if (bytesPerPixel == 4) {
      EXPECT_EQ(place(i)[3], 77);
    }
  }
  return pixels;
}

Pixel Grey(unsigned value) {
  const auto byte = static_cast<std::uint8_t>(value);
  return {byte, byte, byte};
}

}  // namespace

TEST(AutoFixTest, ValuesComputedByHand) {
  // A median of 50 gives 50 -> 105, 100 -> 153, 200 -> 223, and the stretch 0, 103, 255.
  std::vector<Pixel> pixels(500, Grey(50));
  pixels.resize(980, Grey(200));
  pixels.resize(990, {100, 50, 0});
  pixels.resize(1000, Grey(100));
  const std::vector<Pixel> fixed = Fix(pixels, 40);
  EXPECT_EQ(fixed[0], Grey(0));
  EXPECT_EQ(fixed[600], Grey(254)) << "200 x (255 / 200) falls just short of 255";
  EXPECT_EQ(fixed[985], (Pixel{103, 52, 1}));
  EXPECT_EQ(fixed[995], Grey(103));

  EXPECT_EQ(Fix(std::vector<Pixel>(64, Grey(100)), 8), std::vector<Pixel>(64, Grey(0)));
  EXPECT_EQ(Fix(std::vector<Pixel>(64, Grey(0)), 8), std::vector<Pixel>(64, Grey(0)));
  std::vector<Pixel> two(64, Grey(0));
  std::fill(two.begin() + 32, two.end(), Grey(255));
  EXPECT_EQ(Fix(two, 8), two);
}

TEST(AutoFixTest, PicturesOfAnyContentComeOutByTheDefinition) {
  std::mt19937 random(5);
  for (unsigned round = 0; round < 400; ++round) {
    const bool isLarge = round % 40 == 0;
    const std::size_t width = isLarge ? 301 : 1 + random() % 9;
    const std::size_t height = isLarge ? 167 : 1 + random() % 12;
    const std::size_t span = 1 + random() % 256;
    const std::size_t base = random() % (257 - span);
    const unsigned shade = static_cast<unsigned>(random() % 256);
    std::vector<Pixel> pixels(width * height);
    for (Pixel& pixel : pixels) {
      for (std::uint8_t& color : pixel) color = static_cast<std::uint8_t>(base + random() % span);
      // In every second picture many pixels are alike, so that their neighbours are clipped.
      if (round % 2 == 1 && random() % 3 > 0) pixel = Grey(shade);
    }
    const CPlainFix plain(pixels);
    const std::vector<Pixel> fixed = Fix(pixels, static_cast<int>(width), 3 + round % 3 % 2);
    for (Pixel& pixel : pixels) pixel = plain.Apply(pixel);
    ASSERT_EQ(fixed, pixels) << "round " << round;
  }
  CJpegImage empty;
  AutoFix(empty);
  EXPECT_EQ(empty.GetPixels().Top, nullptr);
}
