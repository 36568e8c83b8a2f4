#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

/// What the JPEG library says of a file when it is asked directly.
struct PlainJpeg {
  int Width = 0;
  int Height = 0;
  int Channels = 0;
  bool Progressive = false;
  bool Arithmetic = false;
  unsigned RestartInterval = 0;
  std::vector<std::string> Headers;   // each comment and application marker: its code and its data
  std::vector<std::uint8_t> Samples;  // of all channels, row by row, as they are stored
};

/// Ends the test program if the bytes are no JPEG.
PlainJpeg ReadPlainly(std::span<const std::uint8_t> jpeg);
