#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

#include "imaging/Scaler.h"

namespace {

/// A picture with its pixels, rows from the top or from the bottom.
struct Picture {
  Picture(ImageSize size, int bytesPerPixel, bool upwards = false)
      : Bytes(static_cast<std::size_t>(size.Width * size.Height * bytesPerPixel)) {
    const std::ptrdiff_t rowBytes = std::ptrdiff_t{size.Width} * bytesPerPixel;
    Rows = {upwards ? Bytes.data() + (size.Height - 1) * rowBytes : Bytes.data(),
            upwards ? -rowBytes : rowBytes, size, bytesPerPixel};
  }

  void FillWithNoise() {
    std::mt19937 random(7);
    for (auto& byte : Bytes) byte = static_cast<std::uint8_t>(random());
  }

  int At(int x, int y, int channel) const { return Rows.Row(y)[x * Rows.BytesPerPixel + channel]; }

  std::vector<std::uint8_t> Bytes;
  PixelBuffer Rows;
};

/// The weight of source pixel j in target pixel i, by the definition.
double Weigh(int j, int i, int source, int target) {
  const double ratio = static_cast<double>(source) / target;
  if (target <= source)
    return std::max(0.0, std::min(j + 1.0, (i + 1) * ratio) - std::max<double>(j, i * ratio)) / ratio;
  const double centre = std::clamp((i + 0.5) * ratio - 0.5, 0.0, source - 1.0);
  return std::max(0.0, 1.0 - std::abs(centre - j));
}

double Reference(const Picture& picture, ImageSize size, int x, int y, int channel) {
  const ImageSize source = picture.Rows.Size;
  double sum = 0;
  for (int u = 0; u < source.Width; ++u) {
    const double columnWeight = Weigh(u, x, source.Width, size.Width);
    for (int v = 0; columnWeight > 0 && v < source.Height; ++v)
      sum += columnWeight * Weigh(v, y, source.Height, size.Height) * picture.At(u, v, channel);
  }
  return sum;
}

double LargestError(const Picture& source, const Picture& target) {
  const ImageSize size = target.Rows.Size;
  double largest = 0;
  for (int i = 0; i < size.Width * size.Height * 3; ++i) {
    const int channel = i % 3, x = i / 3 % size.Width, y = i / 3 / size.Width;
    largest = std::max(largest, std::abs(target.At(x, y, channel) - Reference(source, size, x, y, channel)));
  }
  return largest;
}

}  // namespace

TEST(ScalerTest, EqualsTheExactAverageOrBlendToHalfALevel) {
  const std::pair<ImageSize, ImageSize> cases[] = {
      {{80, 60}, {56, 42}}, {{57, 43}, {41, 31}}, {{97, 61}, {7, 5}},   {{300, 2}, {1, 1}},
      {{40, 30}, {40, 30}}, {{13, 9}, {50, 35}},  {{1, 1}, {9, 4}},     {{2, 60}, {31, 7}},
      {{64, 3}, {33, 40}},  {{3, 500}, {2, 3}},   {{17, 17}, {16, 16}}, {{5, 5}, {6, 6}}};
  for (const auto& [from, to] : cases)
    for (const int bytes : {33, 34, 43, 44}) {
      Picture source(from, bytes / 10, bytes / 10 == 4);
      source.FillWithNoise();
      Picture target(to, bytes % 10);
      StretchPixels(source.Rows, target.Rows, 0, 0, to);
      EXPECT_LE(LargestError(source, target), 0.51) << from.Width << " to " << to.Width << ", " << bytes;
      std::ranges::fill(source.Bytes, std::uint8_t{255});
      StretchPixels(source.Rows, target.Rows, 0, 0, to);
      EXPECT_EQ(std::ranges::min(target.Bytes), 255) << "white stays white, and alpha is full";
    }
}

TEST(ScalerTest, ClipsToTheTargetWithoutChangingWhatIsInside) {
  Picture source({90, 70}, 3);
  source.FillWithNoise();
  for (const ImageSize size : {ImageSize{61, 47}, ImageSize{200, 160}, ImageSize{12, 9}}) {
    Picture whole(size, 3);
    StretchPixels(source.Rows, whole.Rows, 0, 0, size);
    const std::pair<int, int> corners[] = {{5, 6},  {-7, -3}, {11, -40},  {29, 19},
                                           {-8, 2}, {30, 0},  {0, -5000}, {2147483647, -2147483647}};
    for (const auto& [left, top] : corners) {
      Picture target({30, 20}, 3);
      StretchPixels(source.Rows, target.Rows, left, top, size);
      for (int i = 0; i < 600; ++i) {
        const std::int64_t u = std::int64_t{i % 30} - left, v = std::int64_t{i / 30} - top;
        const bool inside = u >= 0 && v >= 0 && u < size.Width && v < size.Height;
        const int expected = inside ? whole.At(static_cast<int>(u), static_cast<int>(v), 1) : 0;
        ASSERT_EQ(target.At(i % 30, i / 30, 1), expected) << left << "," << top << " at " << i;
      }
    }
  }
  Picture target({4, 4}, 3);
  StretchPixels(source.Rows, target.Rows, 0, 0, {0, 4});
  StretchPixels(source.Rows, target.Rows, 0, 0, {4, -1});
  StretchPixels({}, target.Rows, 0, 0, {4, 4});
  EXPECT_EQ(std::ranges::max(target.Bytes), 0) << "nothing is drawn from or to a side below 1";
}
