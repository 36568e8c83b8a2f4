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
  if (target <= source) {
    return std::max(0.0, std::min(j + 1.0, (i + 1) * ratio) - std::max<double>(j, i * ratio)) / ratio;
  }
  const double centre = std::clamp((i + 0.5) * ratio - 0.5, 0.0, source - 1.0);
  return std::max(0.0, 1.0 - std::abs(centre - j));
}

/// A sample of the exact picture of `size` at (left, top), black around it.
double Exact(const Picture& source, ImageSize size, std::int64_t x, std::int64_t y, int channel) {
  if (x < 0 || y < 0 || x >= size.Width || y >= size.Height) return 0;
  double sum = 0;
  for (int u = 0; u < source.Rows.Size.Width; ++u) {
    const double columnWeight = Weigh(u, static_cast<int>(x), source.Rows.Size.Width, size.Width);
    for (int v = 0; columnWeight > 0 && v < source.Rows.Size.Height; ++v) {
      sum += columnWeight * Weigh(v, static_cast<int>(y), source.Rows.Size.Height, size.Height) *
             source.At(u, v, channel);
    }
  }
  return sum;
}

}  // namespace

TEST(ScalerTest, EqualsTheExactAverageOrBlendToHalfALevelInsideTheTarget) {
  const struct {
    ImageSize From, To, Target;
    int Left = 0, Top = 0;
  } cases[] = {{{80, 60}, {56, 42}, {56, 42}},
               {{97, 61}, {7, 5}, {7, 5}},
               {{300, 2}, {1, 1}, {1, 1}},
               {{13, 9}, {50, 35}, {50, 35}},
               {{1, 1}, {9, 4}, {9, 4}},
               {{64, 3}, {33, 40}, {33, 40}},
               {{90, 70}, {61, 47}, {30, 20}, 5, 6},
               {{90, 70}, {61, 47}, {30, 20}, -7, -3},
               {{9, 7}, {200, 160}, {30, 20}, -8},
               {{90, 70}, {12, 9}, {30, 20}, 29, 19},
               {{9, 7}, {12, 9}, {30, 20}, 2147483647, -2147483647},
               {{4, 4}, {0, 4}, {4, 4}},
               {{4, 4}, {4, -1}, {4, 4}}};
  std::mt19937 random(7);
  for (const auto& c : cases) {
    for (const int bytes : {33, 34, 43, 44}) {
      Picture source(c.From, bytes / 10, bytes / 10 == 4);
      for (auto& byte : source.Bytes) byte = static_cast<std::uint8_t>(random());
      Picture target(c.Target, bytes % 10);
      StretchPixels(source.Rows, target.Rows, c.Left, c.Top, c.To);
      for (int i = 0; i < c.Target.Width * c.Target.Height * 3; ++i) {
        const int x = i / 3 % c.Target.Width, y = i / 3 / c.Target.Width;
        const double exact = Exact(source, c.To, std::int64_t{x} - c.Left, std::int64_t{y} - c.Top, i % 3);
        ASSERT_NEAR(target.At(x, y, i % 3), exact, 0.51) << &c - cases << ", " << bytes;
      }
      if (c.To != c.Target) continue;
      std::ranges::fill(source.Bytes, std::uint8_t{255});
      StretchPixels(source.Rows, target.Rows, 0, 0, c.To);
      EXPECT_EQ(std::ranges::min(target.Bytes), 255) << "white stays white, and alpha is full";
    }
  }
  Picture target({4, 4}, 3);
  StretchPixels({}, target.Rows, 0, 0, {4, 4});
  EXPECT_EQ(std::ranges::max(target.Bytes), 0);
}
