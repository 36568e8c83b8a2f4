#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

/// A JPEG's picture before it is made into pixels, read with the JPEG library directly.

using Block = std::array<std::int16_t, 64>;

struct ChannelCoefficients {
  int HorizontalSampling = 1;
  int VerticalSampling = 1;
  int Width = 0;   // blocks
  int Height = 0;  // blocks
  std::array<std::uint16_t, 64> Quantization{};
  std::vector<Block> Blocks;  // row by row
  friend bool operator==(const ChannelCoefficients&, const ChannelCoefficients&) = default;
};

struct JpegCoefficients {
  int Width = 0;
  int Height = 0;
  std::vector<ChannelCoefficients> Channels;
  friend bool operator==(const JpegCoefficients&, const JpegCoefficients&) = default;
};

/// How a file is written, apart from its picture.
struct JpegForm {
  bool Progressive = false;
  bool Arithmetic = false;
  unsigned RestartInterval = 0;
  std::vector<std::string> Headers;  // each comment and application marker: its code and its data
};

/// Both end the test program if the bytes are no JPEG.
JpegCoefficients ReadCoefficients(std::span<const std::uint8_t> jpeg);
JpegForm ReadForm(std::span<const std::uint8_t> jpeg);

/// What a clockwise turn by 90 degrees makes of a picture without partly filled blocks, from its definition.
JpegCoefficients TurnByDefinition(const JpegCoefficients& picture);
