#pragma once

#include <cstddef>
#include <cstdint>

struct ImageSize {
  int Width = 0;   // pixels
  int Height = 0;  // pixels
  friend bool operator==(const ImageSize&, const ImageSize&) = default;
};

/// Pixel rows that belong to someone else. A pixel is blue, green, red, and with four bytes alpha.
template <typename Byte>
struct PixelRows {
  Byte* Top = nullptr;         // the top row of the picture
  std::ptrdiff_t RowStep = 0;  // bytes from a row to the one below it; negative where rows run upwards
  ImageSize Size;              // pixels
  int BytesPerPixel = 3;       // 3 or 4

  Byte* Row(int y) const { return Top + y * RowStep; }
};

using PixelBuffer = PixelRows<std::uint8_t>;        // to be painted into
using PixelSource = PixelRows<const std::uint8_t>;  // to be read
