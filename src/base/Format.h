#pragma once

#include <concepts>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <variant>

/// One value for FormatText.
using FormatArgument = std::variant<std::int64_t, std::uint64_t, double, std::string_view>;

/// Any integer, floating-point number or text; a null text pointer is an empty text.
template <typename T>
FormatArgument MakeFormatArgument(const T& value) {
  if constexpr (std::floating_point<T>) {
    return static_cast<double>(value);
  } else if constexpr (std::signed_integral<T>) {
    return static_cast<std::int64_t>(value);
  } else if constexpr (std::unsigned_integral<T>) {
    return static_cast<std::uint64_t>(value);
  } else if constexpr (std::is_pointer_v<T>) {
    return value == nullptr ? std::string_view() : std::string_view(value);
  } else {
    return std::string_view(value);
  }
}

/// Fills the placeholders of a text in the order of the arguments: %d %i %u %x %X %c %s %f and %%, with
/// the flags "-" and "0", a width and a precision of at most 99; the length letters l and h are skipped.
/// A width counts characters. The precision of a text counts bytes and never cuts a character.
///
/// A text from a table must never crash the program: a placeholder without an argument, or with one of
/// the other kind, gives nothing; an unknown one is kept as it stands; arguments left over are ignored.
/// %d writes any integer as it is; for %u and %x a negative one counts as the 32-bit pattern of its
/// value, or the 64-bit one where it needs that. %f writes integers too, always with a point.
std::string FormatText(std::string_view text, std::span<const FormatArgument> arguments);

template <typename... Arguments>
std::string Format(std::string_view text, const Arguments&... arguments) {
  if constexpr (sizeof...(arguments) == 0) {
    return FormatText(text, {});
  } else {
    const FormatArgument list[] = {MakeFormatArgument(arguments)...};
    return FormatText(text, list);
  }
}
