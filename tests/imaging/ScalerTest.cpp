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

/// The largest difference from the exact picture of `size` at (left, top), and from black around it.
double LargestError(const Picture& source, ImageSize size, const Picture& target, int left, int top) {
  double largest = 0;
  for (int i = 0; i < target.Rows.Size.Width * target.Rows.Size.Height * 3; ++i) {
    const int x = i / 3 % target.Rows.Size.Width, y = i / 3 / target.Rows.Size.Width;
    const std::int64_t u = std::int64_t{x} - left, v = std::int64_t{y} - top;
    const bool inside = u >= 0 && v >= 0 && u < size.Width && v < size.Height;
    const double expected =
        inside ? Reference(source, size, static_cast<int>(u), static_cast<int>(v), i % 3) : 0;
    largest = std::max(largest, std::abs(target.At(x, y, i % 3) - expected));
  }
  return largest;
}

}  // namespace

TEST(ScalerTest, EqualsTheExactAverageOrBlendToHalfALevelInsideTheTarget) {
  const struct {
    ImageSize From, To, Target;
    int Left = 0, Top = 0;
  } cases[] = {{{80, 60}, {56, 42}, {56, 42}},
               {{57, 43}, {41, 31}, {41, 31}},
               {{97, 61}, {7, 5}, {7, 5}},
               {{300, 2}, {1, 1}, {1, 1}},
               {{40, 30}, {40, 30}, {40, 30}},
               {{13, 9}, {50, 35}, {50, 35}},
               {{1, 1}, {9, 4}, {9, 4}},
               {{2, 60}, {31, 7}, {31, 7}},
               {{64, 3}, {33, 40}, {33, 40}},
               {{3, 500}, {2, 3}, {2, 3}},
               {{17, 17}, {16, 16}, {16, 16}},
               {{5, 5}, {6, 6}, {6, 6}},
               {{90, 70}, {61, 47}, {30, 20}, 5, 6},
               {{90, 70}, {61, 47}, {30, 20}, -7, -3},
               {{9, 7}, {200, 160}, {30, 20}, -8},
               {{90, 70}, {12, 9}, {30, 20}, 11, -4},
               {{90, 70}, {12, 9}, {30, 20}, 29, 19},
               {{90, 70}, {12, 9}, {30, 20}, 30, 0},
               {{90, 70}, {12, 9}, {30, 20}, 2147483647, -2147483647},
               {{4, 4}, {0, 4}, {4, 4}},
               {{4, 4}, {4, -1}, {4, 4}}};
  std::mt19937 random(7);
  for (const auto& c : cases)
    for (const int bytes : {33, 34, 43, 44}) {
      Picture source(c.From, bytes / 10, bytes / 10 == 4);
      for (auto& byte : source.Bytes) byte = static_cast<std::uint8_t>(random());
      Picture target(c.Target, bytes % 10);
      StretchPixels(source.Rows, target.Rows, c.Left, c.Top, c.To);
      EXPECT_LE(LargestError(source, c.To, target, c.Left, c.Top), 0.51) << &c - cases << ", " << bytes;
      if (c.To != c.Target) continue;
      std::ranges::fill(source.Bytes, std::uint8_t{255});
      StretchPixels(source.Rows, target.Rows, 0, 0, c.To);
      EXPECT_EQ(std::ranges::min(target.Bytes), 255) << "white stays white, and alpha is full";
    }
  Picture target({4, 4}, 3);
  StretchPixels({}, target.Rows, 0, 0, {4, 4});
  EXPECT_EQ(std::ranges::max(target.Bytes), 0);
}
