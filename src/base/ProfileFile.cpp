#include "base/ProfileFile.h"

#include <algorithm>
#include <limits>

#include "platform/Unicode.h"

namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr std::string_view kBlanks = " \t\r\n";

std::string_view Trimmed(std::string_view text) {
  text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
  return text.substr(0, text.find_last_not_of(kBlanks) + 1);
}

/// What a line says, without the mark that editors put in front of a file.
std::string_view ContentOf(std::string_view line) {
  if (line.starts_with(kByteOrderMark)) line.remove_prefix(kByteOrderMark.size());
  return Trimmed(line);
}

bool IsSectionLine(std::string_view content) { return content.starts_with('['); }

bool IsSection(std::string_view content, std::string_view name) {
  return platform::EqualNoCase(Trimmed(content.substr(1, content.find(']') - 1)), name);
}

bool IsKeyLine(std::string_view content, std::string_view key) {
  const std::size_t equals = content.find('=');
  return !content.starts_with(';') && equals != std::string_view::npos &&
         platform::EqualNoCase(Trimmed(content.substr(0, equals)), key);
}

bool IsQuoted(std::string_view text) {
  return text.size() >= 2 && (text.front() == '"' || text.front() == '\'') && text.back() == text.front();
}

/// The value in the form in which it reads back as it is.
std::string ValueText(std::string_view value) {
  std::string text(value.substr(0, value.find_first_of(std::string_view("\r\n\0", 3))));
  return IsQuoted(text) || Trimmed(text) != text ? '"' + text + '"' : text;
}

bool CanBeKey(std::string_view key) {
  return !key.empty() && Trimmed(key) == key && !key.starts_with('[') && !key.starts_with(';') &&
         key.find_first_of("=\r\n") == std::string_view::npos;
}

int DigitValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  return std::numeric_limits<int>::max();
}

}  // namespace

CProfileFile::CProfileFile(std::string_view text) {
  while (!text.empty()) {
    const std::size_t length = std::min(text.find('\n'), text.size() - 1) + 1;
    Lines.emplace_back(text.substr(0, length));
    text.remove_prefix(length);
  }
}

std::optional<std::string> CProfileFile::GetValue(std::string_view section, std::string_view key) const {
  const auto line = FindLine(section, key);
  if (!line) return std::nullopt;
  const std::string_view content = ContentOf(Lines[*line]);
  std::string_view value = Trimmed(content.substr(content.find('=') + 1));
  if (IsQuoted(value)) value = value.substr(1, value.size() - 2);
  return std::string(value);
}

void CProfileFile::SetValue(std::string_view section, std::string_view key, std::string_view value) {
  if (!CanBeKey(key)) return;
  const auto line = FindLine(section, key);
  if (!line) {
    const std::string text = std::string(key) + '=' + ValueText(value) + LineEnd();
    const std::size_t place = FindPlaceForKey(section);
    Lines.insert(Lines.begin() + static_cast<std::ptrdiff_t>(place), text);
    return;
  }
  std::string& old = Lines[*line];
  const std::size_t end = old.find_last_not_of("\r\n") + 1;
  old = old.substr(0, old.find('=') + 1) + ValueText(value) + old.substr(end);
}

std::string CProfileFile::GetText() const {
  std::string text;
  for (const std::string& line : Lines) text += line;
  return text;
}

std::optional<std::size_t> CProfileFile::FindLine(std::string_view section, std::string_view key) const {
  bool isInside = false;
  for (std::size_t i = 0; i < Lines.size(); ++i) {
    const std::string_view content = ContentOf(Lines[i]);
    if (IsSectionLine(content)) {
      isInside = IsSection(content, section);
    } else if (isInside && IsKeyLine(content, key)) {
      return i;
    }
  }
  return std::nullopt;
}

/// Behind the last line of the section that isn't blank; makes the section if there is none.
std::size_t CProfileFile::FindPlaceForKey(std::string_view section) {
  const std::string end = LineEnd();
  if (!Lines.empty() && !Lines.back().ends_with('\n')) Lines.back() += end;
  std::optional<std::size_t> place;
  for (std::size_t i = 0; i < Lines.size(); ++i) {
    const std::string_view content = ContentOf(Lines[i]);
    if (IsSectionLine(content)) {
      if (place) break;
      if (IsSection(content, section)) place = i + 1;
    } else if (place && !content.empty()) {
      place = i + 1;
    }
  }
  if (place) return *place;
  Lines.push_back('[' + std::string(section) + ']' + end);
  return Lines.size();
}

std::string CProfileFile::LineEnd() const {
  return !Lines.empty() && Lines.front().ends_with("\r\n") ? "\r\n" : "\n";
}

std::int32_t ParseProfileInt(std::string_view text) {
  text = Trimmed(text);
  const bool isNegative = text.starts_with('-');
  if (isNegative || text.starts_with('+')) text.remove_prefix(1);
  const bool isHexadecimal = text.starts_with("0x") || text.starts_with("0X");
  if (isHexadecimal) text.remove_prefix(2);
  const int base = isHexadecimal ? 16 : 10;
  constexpr std::int64_t kBeyond = std::int64_t{1} << 32;
  std::int64_t number = 0;
  for (std::size_t i = 0; i < text.size() && DigitValue(text[i]) < base; ++i) {
    number = std::min(number * base + DigitValue(text[i]), kBeyond);
  }
  return static_cast<std::int32_t>(std::clamp<std::int64_t>(isNegative ? -number : number,
                                                            std::numeric_limits<std::int32_t>::min(),
                                                            std::numeric_limits<std::int32_t>::max()));
}

std::string EncodeProfileStruct(std::span<const std::uint8_t> data) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::string text;
  unsigned sum = 0;
  const auto append = [&text, kDigits](unsigned byte) {
    text += kDigits[byte >> 4U];
    text += kDigits[byte & 0x0FU];
  };
  for (const std::uint8_t byte : data) {
    append(byte);
    sum += byte;
  }
  append(sum & 0xFFU);
  return text;
}

bool DecodeProfileStruct(std::string_view text, std::span<std::uint8_t> data) {
  if (text.size() != (data.size() + 1) * 2) return false;
  std::vector<std::uint8_t> bytes;
  for (std::size_t i = 0; i < text.size(); i += 2) {
    const int high = DigitValue(text[i]);
    const int low = DigitValue(text[i + 1]);
    if (high > 15 || low > 15) return false;
    bytes.push_back(static_cast<std::uint8_t>(high * 16 + low));
  }
  unsigned sum = 0;
  for (std::size_t i = 0; i < data.size(); ++i) sum += bytes[i];
  if ((sum & 0xFFU) != bytes.back()) return false;
  std::copy(bytes.begin(), bytes.end() - 1, data.begin());
  return true;
}
