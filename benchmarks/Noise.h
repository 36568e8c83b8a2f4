#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>

/// The arithmetic that the painters share: colours, and noise that is the same for the same place and seed.

struct Color {
  float R = 0;  // 0 is dark, 1 is as bright as a screen gets; more is cut off at the end
  float G = 0;
  float B = 0;
};

inline Color operator*(Color color, float factor) {
  return {color.R * factor, color.G * factor, color.B * factor};
}
inline Color operator+(Color a, Color b) { return {a.R + b.R, a.G + b.G, a.B + b.B}; }

/// `a` at 0, `b` at 1.
inline Color Mix(Color a, Color b, float share) { return a * (1 - share) + b * share; }

/// 0 up to `low`, 1 from `high` on, an S between.
inline float SmoothStep(float low, float high, float value) {
  const float t = std::clamp((value - low) / (high - low), 0.0F, 1.0F);
  return t * t * (3 - 2 * t);
}

/// A number from 0 to 1 for a cell of a grid.
inline float CellNoise(int x, int y, std::uint32_t seed) {
  std::uint32_t h = static_cast<std::uint32_t>(x) * 0x8DA6B343U +
                    static_cast<std::uint32_t>(y) * 0xD8163841U + seed * 0xCB1AB31FU;
  h = (h ^ (h >> 15)) * 0x2C1B3C6DU;
  h = (h ^ (h >> 12)) * 0x297A2D39U;
  h ^= h >> 15;
  return static_cast<float>(h >> 8) / static_cast<float>(1U << 24);
}

/// The next whole number below; several times as fast as std::floor, which is a call on old processors.
inline int Floor(float value) {
  const int whole = static_cast<int>(value);
  return static_cast<float>(whole) > value ? whole - 1 : whole;
}

/// Smooth noise from 0 to 1 with features one unit wide.
inline float SmoothNoise(float x, float y, std::uint32_t seed) {
  const int column = Floor(x);
  const int row = Floor(y);
  const float right = x - static_cast<float>(column);
  const float down = y - static_cast<float>(row);
  const float u = right * right * (3 - 2 * right);
  const float v = down * down * (3 - 2 * down);
  const float upper = CellNoise(column, row, seed) * (1 - u) + CellNoise(column + 1, row, seed) * u;
  const float lower = CellNoise(column, row + 1, seed) * (1 - u) + CellNoise(column + 1, row + 1, seed) * u;
  return upper * (1 - v) + lower * v;
}

/// Noise from 0 to 1 with detail at `octaves` scales, each half as wide and half as strong as the last.
inline float Fractal(float x, float y, int octaves, std::uint32_t seed) {
  float sum = 0;
  float weight = 0.5F;
  float total = 0;
  for (int octave = 0; octave < octaves; ++octave) {
    sum += weight * SmoothNoise(x, y, seed + static_cast<std::uint32_t>(octave) * 101U);
    total += weight;
    weight /= 2;
    // Turned as well as scaled, so that the grids of the octaves don't coincide.
    const float turned = 1.6F * x + 1.2F * y + 17.3F;
    y = -1.2F * x + 1.6F * y + 9.1F;
    x = turned;
  }
  return sum / total;
}

/// As Fractal along one line, but folded at the middle, which makes sharp peaks between round valleys.
inline float Folded(float x, int octaves, std::uint32_t seed) {
  float sum = 0;
  float weight = 0.5F;
  float total = 0;
  for (int octave = 0; octave < octaves; ++octave) {
    const float fold =
        1 - std::abs(2 * SmoothNoise(x, 0.5F, seed + static_cast<std::uint32_t>(octave) * 101U) - 1);
    sum += weight * fold * fold;
    total += weight;
    weight *= 0.45F;
    x = 2.1F * x + 17.3F;
  }
  return sum / total;
}
