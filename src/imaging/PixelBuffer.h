#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>

struct ImageSize {
  int Width = 0;   // pixels
  int Height = 0;  // pixels
  friend bool operator==(const ImageSize&, const ImageSize&) = default;
};

/// A view of pixel rows that belong to someone else. A pixel is blue, green, red, and with four bytes alpha.
template <typename Byte>
struct PixelRows {
  Byte* Top = nullptr;         // the top row of the picture; null if there are no pixels
  std::ptrdiff_t RowStep = 0;  // bytes from a row to the one below it; negative where rows run upwards
  ImageSize Size;              // pixels
  int BytesPerPixel = 3;       // 3 or 4

  Byte* Row(int y) const { return Top + y * RowStep; }

  operator PixelRows<const std::uint8_t>() const requires(!std::is_const_v<Byte>) {
    return {Top, RowStep, Size, BytesPerPixel};
  }
};

using PixelBuffer = PixelRows<std::uint8_t>;        // to be changed
using PixelSource = PixelRows<const std::uint8_t>;  // to be read
