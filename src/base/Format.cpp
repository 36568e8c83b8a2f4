#include "base/Format.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>

#include "platform/Unicode.h"

namespace {

constexpr int kWidestField = 99;
constexpr int kDefaultPrecision = 6;

struct Placeholder {
  bool AlignLeft = false;
  bool FillZeros = false;
  int Width = 0;
  int Precision = -1;      // -1 for none given
  char Conversion = 0;     // 0 where the text ends before it
  std::size_t Length = 0;  // of the placeholder in the text, with its "%"
};

int ReadNumber(std::string_view text, std::size_t& position) {
  int number = 0;
  for (; position < text.size() && text[position] >= '0' && text[position] <= '9'; ++position) {
    number = std::min(number * 10 + (text[position] - '0'), kWidestField);
  }
  return number;
}

/// Reads the placeholder at the start of `text`.
Placeholder ReadPlaceholder(std::string_view text) {
  Placeholder result;
  std::size_t position = 1;
  for (; position < text.size() && (text[position] == '-' || text[position] == '0'); ++position) {
    (text[position] == '-' ? result.AlignLeft : result.FillZeros) = true;
  }
  result.Width = ReadNumber(text, position);
  if (position < text.size() && text[position] == '.') {
    ++position;
    result.Precision = ReadNumber(text, position);
  }
  while (position < text.size() && (text[position] == 'l' || text[position] == 'h')) ++position;
  if (position < text.size()) result.Conversion = text[position++];
  result.Length = position;
  return result;
}

template <typename Number>
std::string NumberText(Number number, int base) {
  std::array<char, 24> buffer{};
  const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), number, base).ptr;
  return {buffer.data(), end};
}

std::uint64_t BitsOf(std::int64_t number) {
  const bool fits = number >= std::numeric_limits<std::int32_t>::min();
  return number < 0 && fits ? static_cast<std::uint32_t>(number) : static_cast<std::uint64_t>(number);
}

std::string IntegerText(const Placeholder& placeholder, const FormatArgument& argument) {
  const bool isSigned = placeholder.Conversion == 'd' || placeholder.Conversion == 'i';
  const int base = placeholder.Conversion == 'x' || placeholder.Conversion == 'X' ? 16 : 10;
  std::string text;
  if (const auto* number = std::get_if<std::int64_t>(&argument)) {
    text = isSigned ? NumberText(*number, base) : NumberText(BitsOf(*number), base);
  } else if (const auto* bits = std::get_if<std::uint64_t>(&argument)) {
    text = NumberText(*bits, base);
  }
  if (placeholder.Conversion == 'X') {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](char c) { return c >= 'a' ? static_cast<char>(c - 'a' + 'A') : c; });
  }
  return text;
}

std::string RealText(const Placeholder& placeholder, const FormatArgument& argument) {
  double number = 0;
  if (const auto* real = std::get_if<double>(&argument)) {
    number = *real;
  } else if (const auto* integer = std::get_if<std::int64_t>(&argument)) {
    number = static_cast<double>(*integer);
  } else if (const auto* bits = std::get_if<std::uint64_t>(&argument)) {
    number = static_cast<double>(*bits);
  } else {
    return {};
  }
  // Room for the largest double, with all its digits, behind a sign and before the longest precision.
  std::array<char, 512> buffer{};
  const int precision = placeholder.Precision < 0 ? kDefaultPrecision : placeholder.Precision;
  const auto end =
      std::to_chars(buffer.data(), buffer.data() + buffer.size(), number, std::chars_format::fixed, precision)
          .ptr;
  return {buffer.data(), end};
}

std::string CharacterText(const FormatArgument& argument) {
  std::uint64_t code = 0;
  if (const auto* number = std::get_if<std::int64_t>(&argument)) code = static_cast<std::uint64_t>(*number);
  if (const auto* bits = std::get_if<std::uint64_t>(&argument)) code = *bits;
  // A byte above ASCII would be no valid text.
  return code > 0 && code < 0x80 ? std::string(1, static_cast<char>(code)) : std::string();
}

std::string StringText(const Placeholder& placeholder, const FormatArgument& argument) {
  const auto* text = std::get_if<std::string_view>(&argument);
  if (text == nullptr) return {};
  if (placeholder.Precision < 0) return std::string(*text);
  return std::string(platform::Truncated(*text, static_cast<std::size_t>(placeholder.Precision)));
}

std::string Padded(const Placeholder& placeholder, std::string text) {
  const std::size_t length = platform::CountCharacters(text);
  const auto width = static_cast<std::size_t>(placeholder.Width);
  if (length >= width) return text;
  const std::size_t missing = width - length;
  if (placeholder.AlignLeft) return text.append(missing, ' ');
  const bool isText = placeholder.Conversion == 's' || placeholder.Conversion == 'c';
  if (!placeholder.FillZeros || isText || text.empty()) return text.insert(0, missing, ' ');
  return text.insert(text.front() == '-' ? 1 : 0, missing, '0');
}

bool IsKnown(char conversion) {
  return std::string_view("diuxXcsf").find(conversion) != std::string_view::npos;
}

std::string Convert(const Placeholder& placeholder, const FormatArgument& argument) {
  switch (placeholder.Conversion) {
    case 's':
      return StringText(placeholder, argument);
    case 'c':
      return CharacterText(argument);
    case 'f':
      return RealText(placeholder, argument);
    default:
      return IntegerText(placeholder, argument);
  }
}

}  // namespace

std::string FormatText(std::string_view text, std::span<const FormatArgument> arguments) {
  std::string result;
  std::size_t used = 0;
  while (!text.empty()) {
    const std::size_t plain = std::min(text.find('%'), text.size());
    result.append(text.substr(0, plain));
    text.remove_prefix(plain);
    if (text.empty()) break;
    const Placeholder placeholder = ReadPlaceholder(text);
    if (placeholder.Conversion == '%') {
      result += '%';
    } else if (placeholder.Conversion == 0 || !IsKnown(placeholder.Conversion)) {
      result.append(text.substr(0, placeholder.Length));
    } else if (used < arguments.size()) {
      result += Padded(placeholder, Convert(placeholder, arguments[used++]));
    }
    text.remove_prefix(placeholder.Length);
  }
  return result;
}
