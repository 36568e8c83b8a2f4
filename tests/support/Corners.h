#pragma once

#include <algorithm>
#include <string>
#include <utility>

#include "imaging/PixelBuffer.h"
#include "support/TestJpeg.h"

/// Photos with a red, a green, a blue and a white quarter, which tell left from right and up from down, and
/// are stored as a camera that was held in some way stores them.

/// Where a stored pixel is seen. EXIF's values 1 to 4 put the first stored pixel into the corners of the
/// picture that is seen, clockwise from the upper left one; 5 to 8 do so and make columns of the rows.
inline std::pair<int, int> SeenAt(unsigned orientation, int row, int column, ImageSize seen) {
  if (orientation > 4) std::swap(row, column);
  const unsigned corner = (orientation - 1) % 4;
  return {corner == 1 || corner == 2 ? seen.Width - 1 - column : column,
          corner >= 2 ? seen.Height - 1 - row : row};
}

/// Seen with red and green above, blue and white below, and black at the upper and the left edge.
inline std::string MakeCornersJpeg(unsigned orientation, ImageSize seen) {
  JpegRecipe recipe{.Width = seen.Width, .Height = seen.Height, .Orientation = orientation};
  if (orientation > 4) std::swap(recipe.Width, recipe.Height);
  const auto jpeg = MakeJpeg(recipe, [&](int column, int row) -> std::array<std::uint8_t, 4> {
    const auto [x, y] = SeenAt(orientation, row, column, seen);
    if (x < seen.Width / 8 || y < seen.Height / 8) return {0, 0, 0};
    const bool right = 2 * x >= seen.Width, below = 2 * y >= seen.Height;
    if (below && right) return {255, 255, 255};
    if (below) return {0, 0, 255};
    if (right) return {0, 255, 0};
    return {255, 0, 0};
  });
  return {jpeg.begin(), jpeg.end()};
}

/// The colours of the quarters, from left to right and from above: "RGBW" for a photo that stands upright.
inline std::string ReadCorners(const PixelSource& pixels) {
  std::string corners;
  for (const int y : {1, 3}) {
    for (const int x : {1, 3}) {
      const std::uint8_t* pixel =
          pixels.Row(pixels.Size.Height * y / 4) + pixels.Size.Width * x / 4 * pixels.BytesPerPixel;
      const auto lit = std::count_if(pixel, pixel + 3, [](int color) { return color > 200; });
      corners += lit == 3 ? 'W' : lit != 1 ? '?' : "BGR"[std::max_element(pixel, pixel + 3) - pixel];
    }
  }
  return corners;
}
