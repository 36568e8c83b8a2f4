#pragma once

#include <array>
#include <cstdint>
#include <string_view>

/// The order of texts in a storage: by bytes, with the ASCII capital letters taken as small ones. Any
/// bytes are a text, NUL and broken UTF-8 included; a text stands before its own continuations.
int CompareTexts(std::string_view left, std::string_view right);

bool TextsAreEqual(std::string_view left, std::string_view right);

constexpr std::array<std::uint8_t, 256> MakeFoldTable() {
  std::array<std::uint8_t, 256> table{};
  for (std::size_t byte = 0; byte < table.size(); ++byte) {
    const bool capital = byte >= 'A' && byte <= 'Z';
    table[byte] = static_cast<std::uint8_t>(capital ? byte - 'A' + 'a' : byte);
  }
  return table;
}

inline constexpr std::array<std::uint8_t, 256> kFoldTable = MakeFoldTable();

inline std::uint8_t FoldByte(char byte) { return kFoldTable[static_cast<std::uint8_t>(byte)]; }
