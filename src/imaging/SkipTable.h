#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "imaging/BitReader.h"
#include "imaging/HuffmanCode.h"

/// The coefficients of a block that make its detail at 2 by 2 pixels, not dequantized.
struct BlockDetail {
  std::int16_t Across = 0;    // of the wave with half a period across the block
  std::int16_t Down = 0;      // the same down
  std::int16_t Diagonal = 0;  // of the product of both
};

/// Passes the AC coefficients of a block of a JPEG without decoding them (ITU-T T.81, F.2.2.2). A look-up
/// takes all symbols, with the bits that follow each, that begin and whose codes end within the next 13 bits.
/// The tables for luminance and chrominance take 16 KB each, so that both stay in a first-level cache.
class CSkipTable {
 public:
  explicit CSkipTable(CHuffmanCode code);

  /// Passes the AC coefficients of one block from `next` on, which is 1 to 64. False if no code stands there,
  /// or there are more coefficients than a block has.
  bool PassBlock(CBitReader& bits, unsigned next) const {
    unsigned sum = next * kCoefficient;  // of entries, and what comes before them
    while (next < 64) {
      bits.Refill();
      for (unsigned k = 0; k < kLookUpsPerRefill; ++k) {
        unsigned entry = Entries[bits.GetWindow() >> (64 - kIndexBits)];
        if (IsBeyondBlock(sum + entry)) [[unlikely]] {
          // Only the first symbol may be taken. It may have so many bits that it needs a refill before and
          // after.
          if (k > 0) break;
          entry = FindFirst(bits.GetWindow());
          if (IsBeyondBlock(sum + entry)) return false;
          k = kLookUpsPerRefill;
        }
        sum += entry;
        bits.Shift(entry & kBitsMask);
        if (sum >= kBlockFull) {
          bits.NoteShifted(sum & kBitsMask);
          return true;
        }
      }
      bits.NoteShifted(sum & kBitsMask);
      sum &= ~kBitsMask;
    }
    return true;
  }

  /// Reads the first AC coefficients of a block; `next` becomes the place of the next one, 64 behind the
  /// last. The same failures, and values that a file of 8 bits can't have.
  bool ReadDetail(CBitReader& bits, BlockDetail& detail, unsigned& next) const {
    constexpr unsigned kMostSize = 10;
    std::array<std::int16_t, 5> values{};  // in zigzag order (ITU-T T.81, figure 5)
    next = 1;
    while (next < values.size()) {
      bits.Refill();
      const std::uint64_t window = bits.GetWindow();
      CHuffmanCode::Entry code = Single[window >> (64 - kIndexBits)];
      if (code.Bits == 0) [[unlikely]] {
        code = Code.Find(window);
        if (code.Bits == 0) return false;
      }
      const Step step = GetStep(code.Symbol);
      bits.Drop(code.Bits + step.Bits);
      next = step.EndsBlock ? 64 : next + step.Coefficients;
      if (next > 64 || step.Bits > kMostSize) return false;
      if (!step.EndsBlock && next <= values.size()) {
        values[next - 1] = static_cast<std::int16_t>(ReadValue(window << code.Bits, step.Bits));
      }
    }
    detail = {values[1], values[2], values[4]};
    return true;
  }

 private:
  static constexpr unsigned kIndexBits = 13;
  static constexpr unsigned kLookUpsPerRefill = 3;
  static constexpr unsigned kMostEntryBits = CBitReader::kBits / kLookUpsPerRefill;

  // Of an entry: the bits that its symbols take, the coefficients that they pass, whether the last one ends
  // the block. In a sum kBlockFull shows that there are at least as many coefficients as a block has.
  static constexpr unsigned kBitsMask = 63;
  static constexpr unsigned kCoefficient = 64;
  static constexpr unsigned kBlockFull = 64 * kCoefficient;
  static constexpr unsigned kEndOfBlock = 2 * kBlockFull;
  static constexpr unsigned kNone = kBlockFull;  // no code ends within the index: beyond any block

  /// What a symbol means.
  struct Step {
    bool EndsBlock = false;
    unsigned Coefficients = 0;  // that it passes
    unsigned Bits = 0;          // of the last coefficient's value, behind the code
  };

  static Step GetStep(unsigned symbol) {
    constexpr unsigned kZeroRun = 0xF0;  // 16 coefficients of zero
    const unsigned size = symbol & 15;
    if (size == 0 && symbol != kZeroRun) return {true, 0, 0};
    return {false, (symbol >> 4) + 1, size};
  }

  static bool IsBeyondBlock(unsigned sum) { return (sum & kBlockFull) && (sum & ~kBitsMask) != kBlockFull; }

  unsigned MakeEntry(unsigned index) const;

  /// An entry for the first symbol alone, of up to 31 bits; kNone if there is no such code.
  unsigned FindFirst(std::uint64_t window) const;

  const CHuffmanCode Code;
  std::vector<CHuffmanCode::Entry> Single;  // by the next bits; without bits where the code is longer
  std::vector<std::uint16_t> Entries;
};
