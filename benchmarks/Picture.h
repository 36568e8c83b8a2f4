#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

/// A picture in memory: red, green and blue bytes, rows from the top without padding.
struct Picture {
  int Width = 0;
  int Height = 0;
  std::vector<std::uint8_t> Pixels;

  Picture() = default;
  Picture(int width, int height)
      : Width(width), Height(height), Pixels(std::size_t{3} * AsSize(width) * AsSize(height)) {}

  std::uint8_t* Row(int y) { return Pixels.data() + std::size_t{3} * AsSize(Width) * AsSize(y); }
  const std::uint8_t* Row(int y) const { return Pixels.data() + std::size_t{3} * AsSize(Width) * AsSize(y); }

 private:
  static std::size_t AsSize(int value) { return static_cast<std::size_t>(value); }
};
