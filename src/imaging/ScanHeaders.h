#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "imaging/JpegLibrary.h"

/// The header of a scan of a progressive JPEG (ITU-T T.81, B.2.3 and G.1.1.1.1).
struct ScanHeader {
  std::size_t ComponentCount = 0;
  std::size_t FirstComponent = 0;  // place in the frame header; others follow it in its order
  unsigned FirstCoefficient = 0;
  unsigned LastCoefficient = 0;
  unsigned PreviousShift = 0;  // Ah; 0 in a first scan
  unsigned Shift = 0;          // Al
};

/// Reads what stands between the scans of a progressive JPEG. Knows as much of it as a file by a usual
/// encoder has: tables for Huffman codes, restart intervals, comments and application data.
class CScanHeaders {
 public:
  enum class Found { Scan, EndOfImage, Irregular };

  /// The library has read the header of the first scan; `bytes` begin behind it. Both outlive the object.
  CScanHeaders(const jpeg_decompress_struct& info, std::span<const std::uint8_t> bytes);

  /// Reads from the next marker on, which is searched for, up to behind the header of a scan, or the end.
  Found FindNext();

  /// The scan found.
  const ScanHeader& GetScan() const { return Scan; }

  /// The units in a segment of it; 0 if it has but one.
  unsigned GetRestartInterval() const { return RestartInterval; }

  /// The bytes behind its header.
  std::span<const std::uint8_t> GetData() const { return Bytes.subspan(At); }

 private:
  std::optional<std::span<const std::uint8_t>> TakeSegment();
  bool TakeTables(std::span<const std::uint8_t> segment);
  bool TakeScan(std::span<const std::uint8_t> segment);
  bool IsScanRegular(unsigned acTable) const;

  const jpeg_decompress_struct& Info;
  const std::span<const std::uint8_t> Bytes;
  std::size_t At = 0;
  ScanHeader Scan;
  unsigned RestartInterval = 0;
  std::array<bool, NUM_HUFF_TBLS> HasAcTable{};
};
