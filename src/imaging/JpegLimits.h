#pragma once

#include <cstdint>

#include "imaging/JpegGuard.h"

/// What one JPEG may cost, for code inside the imaging folder. The library itself would work for minutes on
/// a few forged bytes.

constexpr std::uint64_t kMaxPixels = std::uint64_t{1} << 30;
constexpr std::uint64_t kMaxArithmeticPixels = std::uint64_t{1} << 26;  // up to 20 ns each, even of no data
constexpr long kMaxCoefficientBytes = 1L << 29;  // 178 megapixels with chroma halved both ways

/// Whether a picture, of which the header has been read, is small enough to be worked on.
inline bool IsAffordable(const jpeg_decompress_struct& info) {
  const std::uint64_t pixels = std::uint64_t{info.image_width} * info.image_height;
  return pixels <= (info.arith_code ? kMaxArithmeticPixels : kMaxPixels);
}

/// Adds up what the scans of a file cost, each right after its header.
class CScanBudget {
 public:
  /// False once that scan is one too many.
  bool Allows(const jpeg_decompress_struct& info) {
    BlockVisits +=
        std::uint64_t{info.MCUs_per_row} * info.MCU_rows_in_scan * static_cast<unsigned>(info.blocks_in_MCU);
    Spent = info.input_scan_number > kMaxScans || BlockVisits > kMaxBlockVisits;
    return !Spent;
  }

  bool IsSpent() const { return Spent; }

 private:
  static constexpr int kMaxScans = 500;
  // Blocks over all scans, up to 120 ns each. The largest picture whose coefficients may be held comes to two
  // thirds of it in the usual ten scans.
  static constexpr std::uint64_t kMaxBlockVisits = std::uint64_t{1} << 25;

  std::uint64_t BlockVisits = 0;
  bool Spent = false;
};
