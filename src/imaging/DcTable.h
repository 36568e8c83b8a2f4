#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include "imaging/BitReader.h"
#include "imaging/HuffmanCode.h"

/// Reads DC coefficients of a JPEG by a table of short codes.
class CDcTable {
 public:
  explicit CDcTable(CHuffmanCode code) : Code(std::move(code)), Short(Code.MakeIndex(kIndexBits)) {}

  /// Reads a difference (ITU-T T.81, F.2.2.1), which takes up to 27 bits: they have to be there. False if no
  /// code of a file of 8 bits a sample stands there.
  bool Read(CBitReader& bits, int& difference) const {
    constexpr unsigned kMostSize = 11;
    const std::uint64_t window = bits.GetWindow();
    CHuffmanCode::Entry entry = Short[window >> (64 - kIndexBits)];
    if (entry.Bits == 0) [[unlikely]] {
      entry = Code.Find(window);
      if (entry.Bits == 0) return false;
    }
    const unsigned size = entry.Symbol;
    if (size > kMostSize) return false;
    difference = ReadValue(window << entry.Bits, size);
    bits.Drop(entry.Bits + size);
    return true;
  }

 private:
  static constexpr unsigned kIndexBits = 9;

  const CHuffmanCode Code;
  const std::vector<CHuffmanCode::Entry> Short;  // by the next bits
};
