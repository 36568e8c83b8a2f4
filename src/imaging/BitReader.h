#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>

/// Reads the bits of an entropy-coded segment of a JPEG, the highest bit of a byte first (ITU-T T.81,
/// F.2.2.5), from bytes in which nothing but coded bits is left. Behind the last byte come zeros without end,
/// so no code can lead a reader out of its bytes; GetPosition tells that it has gone too far.
class CBitReader {
 public:
  /// Bits that are there after a call of Refill.
  static constexpr unsigned kBits = 56;

  /// Reads `bytes` from the byte `first` on. The bytes must outlive the object.
  CBitReader(std::span<const std::uint8_t> bytes, std::size_t first)
      : Bytes(bytes.data()), End(bytes.size()), Next(first) {}

  void Refill() {
    Window |= Load() >> Count;
    Next += (63 - Count) >> 3;
    Count |= kBits;
  }

  /// The next bits, the first one highest; below the bits that are there may be anything.
  std::uint64_t GetWindow() const { return Window; }

  /// Passes `bits` bits, at most as many as are there.
  void Drop(unsigned bits) {
    Shift(bits);
    NoteShifted(bits);
  }

  /// Drop in two steps: a loop that passes bits several times notes their sum once.
  void Shift(unsigned bits) { Window <<= bits; }
  void NoteShifted(unsigned bits) { Count -= bits; }

  /// Bits from the first byte to the next bit to read.
  std::size_t GetPosition() const { return Next * 8 - Count; }

  /// Whether bits were read that aren't there.
  bool HasRunOut() const { return GetPosition() > End * 8; }

 private:
  // The next eight bytes as one number.
  std::uint64_t Load() const {
    if (Next + sizeof(std::uint64_t) > End) [[unlikely]] {
      return LoadLast();
    }
    std::uint64_t word = 0;
    std::memcpy(&word, Bytes + Next, sizeof word);
    return std::endian::native == std::endian::little ? __builtin_bswap64(word) : word;
  }

  std::uint64_t LoadLast() const {
    std::uint64_t word = 0;
    for (std::size_t k = 0; k < sizeof word; ++k) {
      word = word << 8 | (Next + k < End ? Bytes[Next + k] : 0U);
    }
    return word;
  }

  const std::uint8_t* Bytes;
  std::size_t End;
  std::size_t Next;          // the first byte that isn't in the window as a whole
  std::uint64_t Window = 0;  // bits below the first `Count` are those of the following bytes, or 0
  unsigned Count = 0;
};
