#include "platform/Unicode.h"

#include <QChar>
#include <algorithm>
#include <array>
#include <iterator>

#include "platform/Ascii.h"

namespace platform {
namespace {

constexpr char32_t kStrayByte = 0xFFFFFFFF;

struct Character {
  char32_t Code = kStrayByte;
  std::size_t Length = 1;  // bytes
};

/// How many bytes the lead byte announces, with the bits of the code that it holds; 0 for no lead byte.
std::size_t ReadLeadByte(unsigned char lead, char32_t& bits) {
  if (lead < 0x80) return bits = lead, 1;
  if (lead >= 0xC2 && lead < 0xE0) return bits = lead & 0x1FU, 2;
  if (lead >= 0xE0 && lead < 0xF0) return bits = lead & 0x0FU, 3;
  if (lead >= 0xF0 && lead < 0xF5) return bits = lead & 0x07U, 4;
  return 0;
}

/// The character at `offset`, which must be before the end.
Character Decode(std::string_view text, std::size_t offset) {
  constexpr std::array<char32_t, 5> kSmallest = {0, 0, 0x80, 0x800, 0x10000};
  char32_t code = 0;
  const std::size_t length = ReadLeadByte(static_cast<unsigned char>(text[offset]), code);
  if (length == 0 || length > text.size() - offset) return {};
  for (std::size_t i = 1; i < length; ++i) {
    const auto byte = static_cast<unsigned char>(text[offset + i]);
    if ((byte & 0xC0U) != 0x80U) return {};
    code = (code << 6U) | (byte & 0x3FU);
  }
  const bool isSurrogate = code >= 0xD800 && code < 0xE000;
  if (code < kSmallest[length] || code > 0x10FFFF || isSurrogate) return {};
  return {code, length};
}

void AppendUtf8(std::string& text, char32_t code) {
  const auto append = [&text](char32_t byte) { text += static_cast<char>(static_cast<unsigned char>(byte)); };
  if (code < 0x80) {
    append(code);
  } else if (code < 0x800) {
    append(0xC0U | (code >> 6U));
    append(0x80U | (code & 0x3FU));
  } else if (code < 0x10000) {
    append(0xE0U | (code >> 12U));
    append(0x80U | ((code >> 6U) & 0x3FU));
    append(0x80U | (code & 0x3FU));
  } else {
    append(0xF0U | (code >> 18U));
    append(0x80U | ((code >> 12U) & 0x3FU));
    append(0x80U | ((code >> 6U) & 0x3FU));
    append(0x80U | (code & 0x3FU));
  }
}

/// The text with each of its characters mapped. Both maps of this file are the same for ASCII.
template <typename Map>
std::string Mapped(std::string_view text, const Map& map) {
  std::string result;
  result.reserve(text.size());
  if (IsAscii(text)) {
    std::transform(text.begin(), text.end(), std::back_inserter(result),
                   [](char c) { return static_cast<char>(FoldByte(c)); });
    return result;
  }
  for (std::size_t offset = 0; offset < text.size();) {
    const Character character = Decode(text, offset);
    if (character.Code == kStrayByte) {
      result += text[offset];
    } else {
      AppendUtf8(result, map(character.Code));
    }
    offset += character.Length;
  }
  return result;
}

}  // namespace

std::string ToLower(std::string_view text) {
  return Mapped(text, [](char32_t c) { return QChar::toLower(c); });
}

std::string FoldCase(std::string_view text) {
  return Mapped(text, [](char32_t c) { return QChar::toCaseFolded(c); });
}

bool EqualNoCase(std::string_view a, std::string_view b) {
  if (a == b) return true;
  if (IsAscii(a) && IsAscii(b)) return EqualNoCaseAscii(a, b);
  return FoldCase(a) == FoldCase(b);
}

std::size_t CountCharacters(std::string_view text) {
  std::size_t count = 0;
  for (std::size_t offset = 0; offset < text.size(); offset += CharacterLength(text, offset)) ++count;
  return count;
}

std::size_t CharacterLength(std::string_view text, std::size_t offset) {
  return offset < text.size() ? Decode(text, offset).Length : 0;
}

std::string_view FirstCharacter(std::string_view text) { return text.substr(0, CharacterLength(text, 0)); }

std::string_view Truncated(std::string_view text, std::size_t limit) {
  if (text.size() <= limit) return text;
  // A character that would be cut begins at most three bytes before the limit.
  for (std::size_t start = limit - std::min<std::size_t>(3, limit); start < limit; ++start) {
    if (start + CharacterLength(text, start) > limit) return text.substr(0, start);
  }
  return text.substr(0, limit);
}

bool IsValidUtf8(std::string_view text) {
  for (std::size_t offset = 0; offset < text.size();) {
    const Character character = Decode(text, offset);
    if (character.Code == kStrayByte) return false;
    offset += character.Length;
  }
  return true;
}

}  // namespace platform
