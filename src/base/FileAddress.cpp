#include "base/FileAddress.h"

#include <charconv>
#include <cstddef>

#include "platform/Ascii.h"

namespace {

constexpr std::string_view kScheme = "file:";
constexpr std::string_view kThisHost = "//localhost/";

/// The byte that two hexadecimal digits stand for; 0 if they are none.
char ReadEscape(std::string_view digits) {
  unsigned value = 0;
  const char* end = digits.data() + digits.size();
  const bool isWhole = digits.size() == 2 && std::from_chars(digits.data(), end, value, 16).ptr == end;
  return isWhole ? static_cast<char>(value) : '\0';
}

std::string DecodeEscapes(std::string_view text) {
  std::string path;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char escaped = text[i] == '%' ? ReadEscape(text.substr(i + 1, 2)) : '\0';
    path += escaped == '\0' ? text[i] : escaped;
    if (escaped != '\0') i += 2;
  }
  return path;
}

bool StartsWithNoCase(std::string_view text, std::string_view start) {
  return platform::EqualNoCaseAscii(text.substr(0, start.size()), start);
}

}  // namespace

std::string ReadFileAddress(std::string_view address) {
  if (!StartsWithNoCase(address, kScheme)) return {};
  address.remove_prefix(kScheme.size());
  if (address.starts_with("///")) {
    address.remove_prefix(2);
  } else if (StartsWithNoCase(address, kThisHost)) {
    address.remove_prefix(kThisHost.size() - 1);
  }
  return address.starts_with('/') && !address.starts_with("//") ? DecodeEscapes(address) : std::string();
}
