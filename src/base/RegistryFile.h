#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

/// A value with the type it was written with.
using RegistryValue = std::variant<std::string, std::int32_t, std::vector<std::uint8_t>>;

/// The text of a file of typed values, one a line:
///
///     "Login"="Ann \"the eye\" Lee"
///     "Sort"=dword:000000e2
///     "Window"=hex:0a,ff
///
/// Names are matched without regard to case. Lines of any other form are no values and are kept as they
/// stand. A pure value: it reads and writes no file.
class CRegistryFile {
 public:
  CRegistryFile() = default;
  explicit CRegistryFile(std::string_view text);

  std::optional<RegistryValue> GetValue(std::string_view name) const;

  /// Changes the value's line or adds one.
  void SetValue(std::string_view name, const RegistryValue& value);

  std::string GetText() const;

 private:
  std::vector<std::string> Lines;  // without line ends
};
