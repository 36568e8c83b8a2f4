#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <string_view>

/// The letters of ASCII in either case. All other bytes stay as they are, so parts of UTF-8 do.
namespace platform {

constexpr std::array<std::uint8_t, 256> MakeSmallLetters() {
  std::array<std::uint8_t, 256> table{};
  for (std::size_t byte = 0; byte < table.size(); ++byte) {
    const bool isCapital = byte >= 'A' && byte <= 'Z';
    table[byte] = static_cast<std::uint8_t>(isCapital ? byte - 'A' + 'a' : byte);
  }
  return table;
}

inline constexpr std::array<std::uint8_t, 256> kSmallLetters = MakeSmallLetters();

constexpr std::uint8_t FoldByte(char byte) { return kSmallLetters[static_cast<std::uint8_t>(byte)]; }

/// Eight bytes at a time: long lists of texts are looked through.
inline bool IsAscii(std::string_view text) {
  constexpr std::uint64_t kBeyond = 0x8080808080808080;
  std::size_t at = 0;
  for (; at + 8 <= text.size(); at += 8) {
    std::uint64_t word = 0;
    std::memcpy(&word, text.data() + at, 8);
    if ((word & kBeyond) != 0) return false;
  }
  return std::all_of(text.begin() + static_cast<std::ptrdiff_t>(at), text.end(),
                     [](char c) { return static_cast<std::uint8_t>(c) < 0x80; });
}

constexpr bool EqualNoCaseAscii(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](char left, char right) { return FoldByte(left) == FoldByte(right); });
}

}  // namespace platform
