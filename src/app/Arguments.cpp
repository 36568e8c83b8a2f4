#include "app/Arguments.h"

#include <charconv>
#include <cstddef>
#include <string_view>

#include "platform/Ascii.h"

namespace {

constexpr std::string_view kActiveDiskSwitch = "/activedisk";
constexpr std::string_view kEndOfOptions = "--";

/// The byte that two hexadecimal digits stand for; 0 if they are none.
char ReadEscape(std::string_view digits) {
  unsigned value = 0;
  const char* end = digits.data() + digits.size();
  const bool isWhole = digits.size() == 2 && std::from_chars(digits.data(), end, value, 16).ptr == end;
  return isWhole ? static_cast<char>(value) : '\0';
}

/// An escape that is none, or stands for the byte 0, which no path has, is kept as text.
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

/// file:/path, file:///path and file://localhost/path.
std::string ToPath(const std::string& word) {
  constexpr std::string_view kScheme = "file:";
  constexpr std::string_view kThisHost = "//localhost/";
  if (!StartsWithNoCase(word, kScheme)) return word;
  std::string_view rest = std::string_view(word).substr(kScheme.size());
  if (rest.starts_with("///")) {
    rest.remove_prefix(2);
  } else if (StartsWithNoCase(rest, kThisHost)) {
    rest.remove_prefix(kThisHost.size() - 1);
  }
  return rest.starts_with('/') && !rest.starts_with("//") ? DecodeEscapes(rest) : word;
}

void TakeOption(const std::string& word, Arguments& arguments) {
  if (word == "--help") {
    arguments.WantsHelp = true;
  } else if (word == "--version") {
    arguments.WantsVersion = true;
  } else if (arguments.Unknown.empty()) {
    arguments.Unknown = word;
  }
}

}  // namespace

Arguments ParseArguments(const std::vector<std::string>& words) {
  Arguments arguments;
  bool mayBeOption = true;
  for (const std::string& word : words) {
    const bool isSwitch = mayBeOption && word.find(kActiveDiskSwitch) != std::string::npos;
    const bool isOption = mayBeOption && word.size() > 1 && word.starts_with('-');
    if (isSwitch) arguments.ActiveDisk = true;
    if (mayBeOption && word == kEndOfOptions) {
      mayBeOption = false;
    } else if (isOption) {
      if (!isSwitch) TakeOption(word, arguments);
    } else if (!word.empty() && !(isSwitch && word == kActiveDiskSwitch)) {
      arguments.Paths.push_back(ToPath(word));
    }
  }
  return arguments;
}
