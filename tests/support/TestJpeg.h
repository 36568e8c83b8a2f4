#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

/// JPEGs as cameras and editors write them, made with the JPEG library directly. An error of the library ends
/// the test program.

enum class StoredColors { Grey, TwoChannels, YCbCr, Rgb, Cmyk, Ycck };

struct JpegRecipe {
  int Width = 64;
  int Height = 48;
  StoredColors Colors = StoredColors::YCbCr;
  int HorizontalSampling = 1;  // of the first channel over the others
  int VerticalSampling = 1;
  std::vector<std::array<int, 2>> Samplings = {};  // of each channel, if they aren't as above
  bool Progressive = false;
  bool Arithmetic = false;
  bool Jfif = true;
  bool AdobeMarker = true;  // for the colours that carry one
  unsigned RestartInterval = 0;
  int Quality = 100;
  std::string DateTime = {};  // of an EXIF entry, "YYYY:MM:DD HH:MM:SS"; none if empty
  unsigned Orientation = 0;   // of another one; 0 is no valid value
};

/// Gives the samples of a pixel in the form of the recipe: one, two, red green blue, or four inks.
using Painter = std::function<std::array<std::uint8_t, 4>(int x, int y)>;

/// A soft picture in three colours, without edges that coding would blur.
std::array<std::uint8_t, 4> PaintSoftly(int x, int y);

std::vector<std::uint8_t> MakeJpeg(const JpegRecipe& recipe, const Painter& painter = PaintSoftly);

/// A photo of one colour as any camera might write it, with an EXIF date if `dateTime` isn't empty.
std::string MakeJpeg(unsigned width, unsigned height, unsigned red, unsigned green, unsigned blue,
                     const std::string& dateTime = {});

/// Pixels without any order, so that all coefficients count; the same ones each time.
std::vector<std::uint8_t> MakeNoisyJpeg(JpegRecipe recipe, int width = 64, int height = 48);

/// The file with headers, each its code and its data, put in right behind its first marker.
std::vector<std::uint8_t> WithHeaders(std::vector<std::uint8_t> jpeg,
                                      const std::vector<std::string>& headers);
