#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <span>
#include <vector>

/// JPEGs as cameras and editors write them, made with the JPEG library directly.

/// Samples of a pixel in the colour form of the recipe.
using Painter = std::function<std::array<std::uint8_t, 4>(int x, int y)>;

enum class StoredColors { Grey, TwoChannels, YCbCr, Rgb, Cmyk, Ycck };

struct JpegRecipe {
  int Width = 64;
  int Height = 48;
  StoredColors Colors = StoredColors::YCbCr;
  int HorizontalSampling = 1;  // of the first channel over the others
  int VerticalSampling = 1;
  bool Progressive = false;
  bool Arithmetic = false;
  bool Jfif = true;
  bool AdobeMarker = true;  // for those colours that carry one
  unsigned RestartInterval = 0;
  int Quality = 100;
  std::vector<std::array<int, 2>> Samplings = {};  // of each channel, if they aren't as above
};

/// Channels that can't share a scan get one each. `painter` gives one sample, two, red green blue, or four
/// inks.
std::vector<std::uint8_t> MakeJpeg(const JpegRecipe& recipe, const Painter& painter);

/// The same file with another size in its frame header.
std::vector<std::uint8_t> ForgeSize(std::vector<std::uint8_t> jpeg, int width, int height);

/// The same file with its last scan `times` times.
std::vector<std::uint8_t> RepeatLastScan(std::span<const std::uint8_t> jpeg, int times);

/// Pixels without any order, so that all coefficients count; the same ones each time.
std::vector<std::uint8_t> MakeNoisyJpeg(JpegRecipe recipe);

/// A soft picture in three colours, without edges that coding would blur.
std::array<std::uint8_t, 4> PaintSoftly(int x, int y);
