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

  /// The code that the highest bits of a window begin with.
  Entry Find(std::uint64_t window) const;

  /// The same for all values of the next `bits` bits; without bits where the code is longer, or none.
  std::vector<Entry> MakeIndex(unsigned bits) const;

  /// In the order of their codes.
  const std::vector<Entry>& GetEntries() const { return Entries; }

 private:
  CHuffmanCode() = default;

  std::vector<Entry> Entries;
  std::array<std::uint32_t, kMostBits + 1> Ends{};   // behind the last code of that many bits, as 16 bits
  std::array<std::uint32_t, kMostBits + 1> First{};  // the first code of that many bits
  std::array<std::size_t, kMostBits + 1> Places{};   // of its entry
};

/// The value of `size` bits, 0 to 15, at the top of a window (ITU-T T.81, F.2.2.1).
inline int ReadValue(std::uint64_t window, unsigned size) {
  // In two steps, since a size of 0 would shift by all bits.
  const auto value = static_cast<int>(window >> 1 >> (63 - size));
  const int range = 1 << size;
  return value < range >> 1 ? value - range + 1 : value;
}
