#include "base/Guid.h"

#include <algorithm>
#include <string_view>

#include "platform/Uuid.h"

CGuid CGuid::Generate() {
  CGuid guid;
  guid.Valid = platform::GenerateUuid(guid.Bytes);
  return guid;
}

CGuid CGuid::FromBytes(std::span<const std::uint8_t> bytes) {
  CGuid guid;
  guid.Valid = bytes.size() == guid.Bytes.size();
  if (guid.Valid) std::copy(bytes.begin(), bytes.end(), guid.Bytes.begin());
  return guid;
}

std::vector<std::uint8_t> CGuid::ToBytes() const { return {Bytes.begin(), Bytes.end()}; }

std::string CGuid::ToString() const {
  if (!Valid) return {};
  constexpr std::string_view kDigits = "0123456789abcdef";
  std::string text;
  for (std::size_t i = 0; i < Bytes.size(); ++i) {
    if (i == 4 || i == 6 || i == 8 || i == 10) text += '-';
    text += kDigits[Bytes[i] >> 4U];
    text += kDigits[Bytes[i] & 0x0FU];
  }
  return text;
}
