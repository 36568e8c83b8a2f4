#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

#include "imaging/PixelBuffer.h"
#include "support/TestJpeg.h"

/// Photos with a red, a green, a blue and a white quarter, which tell left from right and up from down, and
/// are stored as a camera that was held in some way stores them.

/// Where a stored pixel is seen. What EXIF says of its values 1 to 8: on which side of the picture that is
/// seen the first stored row lies, and on which the first column.
inline std::pair<int, int> SeenAt(unsigned orientation, int row, int column, ImageSize seen) {
  static constexpr const char* kFirstRowAndColumn[] = {"TL", "TR", "BR", "BL", "LT", "RT", "RB", "LB"};
  std::pair<int, int> place;
  const auto measure = [&](char side, int distance) {
    if (side == 'T') place.second = distance;
    if (side == 'B') place.second = seen.Height - 1 - distance;
    if (side == 'L') place.first = distance;
    if (side == 'R') place.first = seen.Width - 1 - distance;
  };
  measure(kFirstRowAndColumn[orientation - 1][0], row);
  measure(kFirstRowAndColumn[orientation - 1][1], column);
  return place;
}

/// Seen with red and green above, blue and white below, and a black cross between them.
inline std::vector<std::uint8_t> MakeCornersJpeg(unsigned orientation, ImageSize seen) {
  const bool swaps = orientation > 4;
  const JpegRecipe recipe{.Width = swaps ? seen.Height : seen.Width,
                          .Height = swaps ? seen.Width : seen.Height,
                          .Orientation = orientation};
  return MakeJpeg(recipe, [&](int x, int y) -> std::array<std::uint8_t, 4> {
    const auto [seenX, seenY] = SeenAt(orientation, y, x, seen);
    const bool right = 2 * seenX >= seen.Width;
    const bool below = 2 * seenY >= seen.Height;
    const auto isNearMiddle = [](int place, int side) { return std::abs(2 * place - side) < side / 8; };
    if (isNearMiddle(seenX, seen.Width) || isNearMiddle(seenY, seen.Height)) return {0, 0, 0};
    if (right && below) return {255, 255, 255};
    return {static_cast<std::uint8_t>(right || below ? 0 : 255), static_cast<std::uint8_t>(right ? 255 : 0),
            static_cast<std::uint8_t>(below ? 255 : 0)};
  });
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
