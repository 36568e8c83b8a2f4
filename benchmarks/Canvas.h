#pragma once

#include <algorithm>
#include <cstdint>

#include "Noise.h"
#include "Picture.h"

/// Fills a picture with what `colorAt(u, v)` gives for every pixel; u and v are in heights of the picture,
/// from its upper left corner. Edges darken a little, as a lens does it, and the grain is laid over.
template <typename ColorAt>
Picture FillCanvas(int width, int height, std::uint32_t seed, float grain, const ColorAt& colorAt) {
  Picture picture(width, height);
  const float scale = 1.0F / static_cast<float>(height);
  const float aspect = static_cast<float>(width) * scale;
  const auto toByte = [](float value) {
    return static_cast<std::uint8_t>(std::clamp(value * 255.0F + 0.5F, 0.0F, 255.0F));
  };
  for (int y = 0; y < height; ++y) {
    std::uint8_t* pixel = picture.Row(y);
    const float v = static_cast<float>(y) * scale;
    for (int x = 0; x < width; ++x) {
      const float u = static_cast<float>(x) * scale;
      const float fromMiddle = (u / aspect - 0.5F) * (u / aspect - 0.5F) + (v - 0.5F) * (v - 0.5F);
      const Color color = colorAt(u, v) * (1.04F - 0.3F * fromMiddle);
      const float speck = (CellNoise(x, y, seed) + CellNoise(x, y, seed + 1) - 1) * grain / 128.0F;
      *pixel++ = toByte(color.R + speck);
      *pixel++ = toByte(color.G + speck);
      *pixel++ = toByte(color.B + speck);
    }
  }
  return picture;
}
