#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

#include "imaging/Scaler.h"

namespace {

/// A picture of its own, rows from the top or from the bottom.
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

  PixelSource Source() const { return {Rows.Top, Rows.RowStep, Rows.Size, Rows.BytesPerPixel}; }
  int At(int x, int y, int channel) const { return Rows.Row(y)[x * Rows.BytesPerPixel + channel]; }

  std::vector<std::uint8_t> Bytes;
  PixelBuffer Rows;
};

/// What source pixel j counts for in target pixel i, by the definition.
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
    if (columnWeight == 0) continue;
    for (int v = 0; v < source.Height; ++v)
      sum += columnWeight * Weigh(v, y, source.Height, size.Height) * picture.At(u, v, channel);
  }
  return sum;
}

double LargestError(const Picture& source, const Picture& target) {
  double largest = 0;
  for (int y = 0; y < target.Rows.Size.Height; ++y)
    for (int x = 0; x < target.Rows.Size.Width; ++x)
      for (int channel = 0; channel < 3; ++channel)
        largest = std::max(
            largest, std::abs(target.At(x, y, channel) - Reference(source, target.Rows.Size, x, y, channel)));
  return largest;
}

}  // namespace

TEST(ScalerTest, EqualsTheExactAverageOrBlendToHalfALevel) {
  const struct {
    ImageSize From, To;
  } cases[] = {{{80, 60}, {56, 42}}, {{57, 43}, {41, 31}}, {{97, 61}, {7, 5}},   {{300, 2}, {1, 1}},
               {{40, 30}, {40, 30}}, {{13, 9}, {50, 35}},  {{1, 1}, {9, 4}},     {{2, 60}, {31, 7}},
               {{64, 3}, {33, 40}},  {{3, 500}, {2, 3}},   {{17, 17}, {16, 16}}, {{5, 5}, {6, 6}}};
  for (const auto& sizes : cases)
    for (const int sourceBytes : {3, 4})
      for (const int targetBytes : {3, 4}) {
        Picture source(sizes.From, sourceBytes, sourceBytes == 4);
        source.FillWithNoise();
        Picture target(sizes.To, targetBytes);
        StretchPixels(source.Source(), target.Rows, 0, 0, sizes.To);
        EXPECT_LE(LargestError(source, target), 0.51) << sizes.From.Width << "x" << sizes.From.Height
                                                      << " to " << sizes.To.Width << "x" << sizes.To.Height;
        if (targetBytes == 4) {
          EXPECT_EQ(255, target.At(sizes.To.Width - 1, sizes.To.Height - 1, 3));
        }
      }
}

TEST(ScalerTest, FlatWhiteStaysWhiteAtAnyRatio) {
  for (int side = 1; side < 400; side += 7) {
    Picture source({399, 3}, 3);
    std::ranges::fill(source.Bytes, std::uint8_t{255});
    Picture target({side, 2}, 3);
    StretchPixels(source.Source(), target.Rows, 0, 0, target.Rows.Size);
    EXPECT_EQ(255, std::ranges::min(target.Bytes)) << side;
  }
}

TEST(ScalerTest, ClipsToTheTargetWithoutChangingWhatIsInside) {
  Picture source({90, 70}, 3);
  source.FillWithNoise();
  for (const ImageSize size : {ImageSize{61, 47}, ImageSize{200, 160}, ImageSize{12, 9}}) {
    Picture whole(size, 3);
    StretchPixels(source.Source(), whole.Rows, 0, 0, size);
    const struct {
      int X, Y;
    } corners[] = {{5, 6},  {-7, -3}, {11, -40},  {29, 19},
                   {-8, 2}, {30, 0},  {0, -5000}, {2147483647, -2147483647}};
    for (const auto corner : corners) {
      Picture target({30, 20}, 3);
      StretchPixels(source.Source(), target.Rows, corner.X, corner.Y, size);
      for (int y = 0; y < 20; ++y)
        for (int x = 0; x < 30; ++x) {
          const std::int64_t u = std::int64_t{x} - corner.X, v = std::int64_t{y} - corner.Y;
          const bool inside = u >= 0 && v >= 0 && u < size.Width && v < size.Height;
          const int expected = inside ? whole.At(static_cast<int>(u), static_cast<int>(v), 1) : 0;
          ASSERT_EQ(expected, target.At(x, y, 1)) << corner.X << "," << corner.Y << " at " << x << "," << y;
        }
    }
  }
}

TEST(ScalerTest, NothingIsDrawnOfOrToASideBelowOne) {
  Picture source({4, 4}, 3);
  source.FillWithNoise();
  Picture target({4, 4}, 3);
  StretchPixels(source.Source(), target.Rows, 0, 0, {0, 4});
  StretchPixels(source.Source(), target.Rows, 0, 0, {4, -1});
  StretchPixels({}, target.Rows, 0, 0, {4, 4});
  EXPECT_EQ(0, std::ranges::max(target.Bytes));
}
