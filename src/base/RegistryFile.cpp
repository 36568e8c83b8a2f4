#include "base/RegistryFile.h"

#include <algorithm>
#include <charconv>

#include "base/Format.h"
#include "platform/Unicode.h"

namespace {

constexpr std::string_view kDword = "dword:";
constexpr std::string_view kHex = "hex:";

struct NamedValue {
  std::string Name;
  RegistryValue Value;
};

std::string Quoted(std::string_view text) {
  std::string result = "\"";
  for (const char c : text) {
    switch (c) {
      case '\n':
        result += "\\n";
        break;
      case '\r':
        result += "\\r";
        break;
      case '\\':
      case '"':
        result += '\\';
        result += c;
        break;
      default:
        result += c;
    }
  }
  return result + '"';
}

/// Takes a quoted text off the front of the line.
bool TakeQuoted(std::string_view& line, std::string& text) {
  if (!line.starts_with('"')) return false;
  for (std::size_t i = 1; i < line.size(); ++i) {
    if (line[i] == '"') {
      line.remove_prefix(i + 1);
      return true;
    }
    if (line[i] != '\\') {
      text += line[i];
      continue;
    }
    if (++i == line.size()) return false;
    text += line[i] == 'n' ? '\n' : line[i] == 'r' ? '\r' : line[i];
  }
  return false;
}

/// A hexadecimal number of the whole text.
template <typename Number>
bool ParseHex(std::string_view text, Number& number) {
  const char* const end = text.data() + text.size();
  const auto result = std::from_chars(text.data(), end, number, 16);
  return result.ec == std::errc() && result.ptr == end;
}

bool ParseBytes(std::string_view text, std::vector<std::uint8_t>& bytes) {
  while (!text.empty()) {
    const std::size_t end = std::min(text.find(','), text.size());
    std::uint8_t byte = 0;
    if (!ParseHex(text.substr(0, end), byte)) return false;
    bytes.push_back(byte);
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return true;
}

bool ParseValue(std::string_view text, RegistryValue& value) {
  if (text.starts_with('"')) {
    std::string string;
    if (!TakeQuoted(text, string) || !text.empty()) return false;
    value = std::move(string);
  } else if (text.starts_with(kDword)) {
    std::uint32_t number = 0;
    if (!ParseHex(text.substr(kDword.size()), number)) return false;
    value = static_cast<std::int32_t>(number);
  } else if (text.starts_with(kHex)) {
    std::vector<std::uint8_t> bytes;
    if (!ParseBytes(text.substr(kHex.size()), bytes)) return false;
    value = std::move(bytes);
  } else {
    return false;
  }
  return true;
}

bool ParseLine(std::string_view line, NamedValue& value) {
  // Editors may have left blanks or other line ends.
  line = line.substr(0, line.find_last_not_of(" \t\r") + 1);
  if (!TakeQuoted(line, value.Name) || !line.starts_with('=')) return false;
  return ParseValue(line.substr(1), value.Value);
}

std::string BytesText(const std::vector<std::uint8_t>& bytes) {
  std::string text(kHex);
  for (std::size_t i = 0; i < bytes.size(); ++i) text += Format(i == 0 ? "%02x" : ",%02x", bytes[i]);
  return text;
}

std::string ValueText(const RegistryValue& value) {
  if (const auto* text = std::get_if<std::string>(&value)) return Quoted(*text);
  if (const auto* number = std::get_if<std::int32_t>(&value)) {
    return std::string(kDword) + Format("%08x", *number);
  }
  return BytesText(std::get<std::vector<std::uint8_t>>(value));
}

}  // namespace

CRegistryFile::CRegistryFile(std::string_view text) {
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    Lines.emplace_back(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
  }
}

std::optional<RegistryValue> CRegistryFile::GetValue(std::string_view name) const {
  for (const std::string& line : Lines) {
    NamedValue found;
    if (ParseLine(line, found) && platform::EqualNoCase(found.Name, name)) return found.Value;
  }
  return std::nullopt;
}

void CRegistryFile::SetValue(std::string_view name, const RegistryValue& value) {
  for (std::string& line : Lines) {
    NamedValue found;
    if (!ParseLine(line, found) || !platform::EqualNoCase(found.Name, name)) continue;
    line = Quoted(found.Name) + '=' + ValueText(value);
    return;
  }
  Lines.push_back(Quoted(name) + '=' + ValueText(value));
}

std::string CRegistryFile::GetText() const {
  std::string text;
  for (const std::string& line : Lines) text.append(line) += '\n';
  return text;
}
