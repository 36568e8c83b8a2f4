#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

/// The code of a Huffman table of a JPEG (ITU-T T.81, annex C): symbols in the order of their codes, which
/// have 1 to 16 bits.
class CHuffmanCode {
 public:
  static constexpr unsigned kMostBits = 16;

  struct Entry {
    std::uint8_t Bits = 0;  // of the code; 0 if there is no such code
    std::uint8_t Symbol = 0;
  };

  /// `counts` tells how many codes there are of 1 to 16 bits; `symbols` has at least as many. None if so many
  /// codes of these lengths can't be, or a code would be of ones alone.
  static std::optional<CHuffmanCode> Make(std::span<const std::uint8_t, kMostBits> counts,
                                          std::span<const std::uint8_t> symbols);

  /// The code that the highest of 16 bits begin with.
  Entry Find(unsigned bits) const;

  /// In the order of their codes.
  const std::vector<Entry>& GetEntries() const { return Entries; }

 private:
  CHuffmanCode() = default;

  std::vector<Entry> Entries;
  std::array<std::uint32_t, kMostBits + 1> Ends{};   // behind the last code of that many bits, as 16 bits
  std::array<std::uint32_t, kMostBits + 1> First{};  // the first code of that many bits
  std::array<std::size_t, kMostBits + 1> Places{};   // of its entry
};
