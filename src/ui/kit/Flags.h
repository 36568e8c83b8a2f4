#pragma once

#include <type_traits>

/// Enumerations whose values are bits that are combined with `|`. One says so by
///     template <>
///     inline constexpr bool kIsFlagSet<TheEnum> = true;
template <typename Enum>
inline constexpr bool kIsFlagSet = false;

template <typename Enum>
requires kIsFlagSet<Enum>
constexpr Enum operator|(Enum left, Enum right) {
  using Bits = std::underlying_type_t<Enum>;
  return static_cast<Enum>(static_cast<Bits>(left) | static_cast<Bits>(right));
}

template <typename Enum>
requires kIsFlagSet<Enum>
constexpr bool HasFlag(Enum flags, Enum flag) {
  using Bits = std::underlying_type_t<Enum>;
  return (static_cast<Bits>(flags) & static_cast<Bits>(flag)) != 0;
}
