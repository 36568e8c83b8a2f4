#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "imaging/DcScan.h"
#include "imaging/JpegLibrary.h"
#include "imaging/WayUp.h"

/// The picture at 1/8 of a JPEG, from the mean of each block of 8 by 8 samples alone, which its DC
/// coefficient gives: the others needn't be decoded, which takes most of a decoder's time.
///
/// Takes the common files, with Huffman codes: 8 bits a sample, grey or three channels in one scan, chroma
/// full, halved in one or both directions or a quarter across; progressive ones too, of which the scans of
/// AC coefficients aren't looked into. Any other file, and one with any irregularity, is left to the library.
/// The picture is the library's, but for chroma that is halved in both directions. Its blocks cover two
/// pixels each way, for which the library uses 25 coefficients: here they are three besides the DC
/// coefficient, and none of a progressive file.
class CDcPicture {
 public:
  /// The library has read the header of a file; `data` are the bytes behind the header of its first scan.
  /// Both outlive the object.
  CDcPicture(const jpeg_decompress_struct& info, std::span<const std::uint8_t> data);

  /// Reads the coefficients. False if this is a file for the library. std::bad_alloc.
  bool Read(std::size_t fileBytes);

  /// The DC coefficient of a block of a channel, not dequantized.
  int GetCoefficient(std::size_t channel, std::size_t x, std::size_t y) const;

  /// The detail of the same; null if it wasn't wanted of that channel.
  const BlockDetail* FindDetail(std::size_t channel, std::size_t x, std::size_t y) const;

  /// False if the means are none of a picture; nothing is painted then. std::bad_alloc.
  bool Paint(CUprightRows& rows) const;

  /// Bytes that an object holds and takes for its work.
  static std::uint64_t GetHeldBytes(const jpeg_decompress_struct& info, std::size_t fileBytes);

 private:
  struct Channel {
    std::size_t Across = 1;           // blocks in a unit
    std::size_t Down = 1;             // the same
    std::size_t Place = 0;            // of its first block in a unit
    std::array<int, 5> Quantizers{};  // of its first coefficients, in zigzag order
  };

  /// Samples of a channel, one for a block, or two each way.
  struct Plane {
    std::size_t Width = 0;
    std::vector<std::uint8_t> Samples;
    const std::uint8_t* Row(std::size_t y) const { return Samples.data() + y * Width; }
  };

  bool IsCommon() const;
  bool PrepareUnit();
  bool PrepareTables(const jpeg_component_info& channel, CDcScan::Block& block);
  bool ReadLaterScans(std::size_t fileBytes);
  bool MakePlane(const Channel& channel, Plane& plane) const;
  bool MakeDetailedPlane(const Channel& channel, Plane& plane) const;

  const jpeg_decompress_struct& Info;
  const std::span<const std::uint8_t> Data;
  std::vector<Channel> Channels;
  std::vector<CDcScan::Block> Unit;
  std::array<std::optional<CDcTable>, NUM_HUFF_TBLS> DcTables;
  std::array<std::optional<CSkipTable>, NUM_HUFF_TBLS> SkipTables;
  std::size_t UnitsAcross = 0;
  std::size_t UnitsDown = 0;
  std::vector<std::int16_t> Coefficients;  // block after block, unit after unit
  std::vector<BlockDetail> Details;        // of chroma, in the same order; empty if it isn't wanted
};
