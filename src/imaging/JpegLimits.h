#pragma once

#include <cstddef>
#include <cstdint>

#include "imaging/JpegGuard.h"

/// What one JPEG may cost, for code inside the imaging folder. The library itself would work for minutes on
/// a few forged bytes.

constexpr std::uint64_t kMaxPixels = std::uint64_t{1} << 30;
constexpr std::uint64_t kMaxArithmeticPixels = std::uint64_t{1} << 26;  // up to 20 ns each, even of no data

/// Whether a picture, of which the header has been read, is small enough to be worked on.
inline bool IsAffordable(const jpeg_decompress_struct& info) {
  const std::uint64_t pixels = std::uint64_t{info.image_width} * info.image_height;
  return pixels <= (info.arith_code ? kMaxArithmeticPixels : kMaxPixels);
}

/// Bytes that the coefficients of all channels take, in whole units as the library holds them.
inline std::uint64_t GetCoefficientBytes(const jpeg_decompress_struct& info) {
  const auto roundUp = [](JDIMENSION value, int unit) {
    const auto step = static_cast<std::uint64_t>(unit);
    return (value + step - 1) / step * step;
  };
  std::uint64_t bytes = 0;
  for (int k = 0; k < info.num_components; ++k) {
    const jpeg_component_info& channel = info.comp_info[k];
    bytes += roundUp(channel.width_in_blocks, channel.h_samp_factor) *
             roundUp(channel.height_in_blocks, channel.v_samp_factor) * sizeof(JBLOCK);
  }
  return bytes;
}

/// Adds up what the scans of a file cost, each right after its header.
class CScanBudget {
 public:
  explicit CScanBudget(std::size_t fileBytes)
      : MaxBlockVisits(fileBytes < kMostBlockVisits / kBlockVisitsPerByte
                           ? kLeastBlockVisits + fileBytes * kBlockVisitsPerByte
                           : kMostBlockVisits) {}

  /// False once that scan is one too many.
  bool Allows(const jpeg_decompress_struct& info) {
    BlockVisits +=
        std::uint64_t{info.MCUs_per_row} * info.MCU_rows_in_scan * static_cast<unsigned>(info.blocks_in_MCU);
    Spent = info.input_scan_number > kMaxScans || BlockVisits > MaxBlockVisits;
    return !Spent;
  }

  bool IsSpent() const { return Spent; }

 private:
  static constexpr int kMaxScans = 500;
  // Blocks over all scans, up to 120 ns each. A picture of 200 megapixels with full chroma comes to two
  // thirds of the most in the usual ten scans. Every block of a real picture has a bit at least in two of
  // them, 20 visits a byte, so a few forged bytes don't get far.
  static constexpr std::uint64_t kMostBlockVisits = std::uint64_t{1} << 26;
  static constexpr std::uint64_t kLeastBlockVisits = std::uint64_t{1} << 20;
  static constexpr std::uint64_t kBlockVisitsPerByte = 64;

  const std::uint64_t MaxBlockVisits;
  std::uint64_t BlockVisits = 0;
  bool Spent = false;
};
