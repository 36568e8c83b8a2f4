#pragma once

#include <cstdint>
#include <vector>

#include "imaging/BitReader.h"
#include "imaging/HuffmanCode.h"

/// Reads DC coefficients of a JPEG by a table of short codes.
class CDcTable {
 public:
  /// Bits that a coefficient takes at most.
  static constexpr unsigned kMostBits = CHuffmanCode::kMostBits + 11;

  explicit CDcTable(CHuffmanCode code);

  /// Reads a difference (ITU-T T.81, F.2.2.1). Takes bits that are there. False if no code of a baseline file
  /// of 8 bits stands there.
  bool Read(CBitReader& bits, int& difference) const {
    constexpr unsigned kAll = 64;
    const std::uint64_t window = bits.GetWindow();
    CHuffmanCode::Entry entry = Short[window >> (kAll - kIndexBits)];
    if (entry.Bits == 0 && !FindLong(window, entry)) [[unlikely]]
      return false;
    const unsigned size = entry.Symbol;
    // In two steps, since a size of 0 would shift by all bits.
    const auto value = static_cast<int>(window << entry.Bits >> 1 >> (kAll - 1 - size));
    const int range = 1 << size;
    difference = value < range >> 1 ? value - range + 1 : value;
    bits.Drop(entry.Bits + size);
    return true;
  }

 private:
  static constexpr unsigned kIndexBits = 9;

  bool FindLong(std::uint64_t window, CHuffmanCode::Entry& entry) const;

  const CHuffmanCode Code;
  std::vector<CHuffmanCode::Entry> Short;  // by the next bits; without bits where the code is longer
};

/// Passes the AC coefficients of a block of a JPEG without decoding them (ITU-T T.81, F.2.2.2). A look-up
/// takes all symbols, with the bits that follow each, that begin and whose codes end within the next 13 bits.
/// The tables for luminance and chrominance take 16 KB each, so that both stay in a first-level cache.
class CSkipTable {
 public:
  explicit CSkipTable(CHuffmanCode code);

  /// Passes the AC coefficients of one block. False if no code stands there, or there are more coefficients
  /// than a block has.
  bool PassBlock(CBitReader& bits) const {
    unsigned passed = kCoefficient;  // the DC coefficient
    for (;;) {
      bits.Refill();
      for (unsigned k = 0; k < kLookUpsPerRefill; ++k) {
        const unsigned entry = Entries[bits.GetWindow() >> (64 - kIndexBits)];
        const unsigned sum = passed + (entry & ~kBitsMask);
        if (sum & kBlockFull) [[unlikely]] {
          if (sum == kBlockFull && entry != kNone) {
            bits.Drop(entry & kBitsMask);
            return true;
          }
          // The symbols go beyond the block, or there are none: only the first one may be taken.
          bits.Refill();
          if (!PassSymbol(bits, passed)) return false;
          if (passed >= kBlockFull) return true;
          break;
        }
        bits.Drop(entry & kBitsMask);
        passed = sum;
        if (passed & kEndOfBlock) return true;
      }
    }
  }

 private:
  static constexpr unsigned kIndexBits = 13;
  static constexpr unsigned kLookUpsPerRefill = 3;
  static constexpr unsigned kMostEntryBits = CBitReader::kBits / kLookUpsPerRefill;

  // Of an entry: the bits that its symbols take, the coefficients that they pass, whether the last one ends
  // the block. In a sum of coefficients kBlockFull shows that there are at least as many as a block has.
  static constexpr unsigned kBitsMask = 63;
  static constexpr unsigned kCoefficient = 64;
  static constexpr unsigned kBlockFull = 64 * kCoefficient;
  static constexpr unsigned kEndOfBlock = 2 * kBlockFull;
  static constexpr unsigned kNone = kBlockFull;  // no code ends within the index

  unsigned MakeEntry(unsigned index) const;

  /// Passes one symbol. False if there is none, or it passes more than a block.
  bool PassSymbol(CBitReader& bits, unsigned& passed) const;

  const CHuffmanCode Code;
  std::vector<CHuffmanCode::Entry> Single;  // by the next bits; without bits where the code is longer
  std::vector<std::uint16_t> Entries;
};
