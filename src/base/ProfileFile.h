#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// The text of a profile file: section lines "[name]" and lines of key=value below them. Sections and keys
/// are matched without regard to case; the first match counts. Whatever else the text holds stays as it is,
/// line ends (LF or CRLF) included. A pure value: it reads and writes no file.
class CProfileFile {
 public:
  CProfileFile() = default;
  explicit CProfileFile(std::string_view text);

  /// The value without surrounding blanks, and without quotes around it.
  std::optional<std::string> GetValue(std::string_view section, std::string_view key) const;

  /// Changes the key's line or adds one at the end of its section, which is added too if need be. A value
  /// is written up to its first line end, and in quotes where it would else read back changed. A key that
  /// has no place in such a file (empty, with "=", "[" or ";" in front) is not written.
  void SetValue(std::string_view section, std::string_view key, std::string_view value);

  std::string GetText() const;

 private:
  std::optional<std::size_t> FindLine(std::string_view section, std::string_view key) const;
  std::size_t FindPlaceForKey(std::string_view section);
  std::string LineEnd() const;

  std::vector<std::string> Lines;  // each with its line end
};

/// Reads a number as the profile calls do: blanks, a sign, decimal digits or "0x" and hexadecimal ones; what
/// follows is ignored, no digits are 0, and a number beyond 32 bits is the nearest one that fits.
std::int32_t ParseProfileInt(std::string_view text);

/// The text form of a block of bytes: each in two upper-case hexadecimal digits, then their sum modulo 256.
std::string EncodeProfileStruct(std::span<const std::uint8_t> data);

/// Reads a block of exactly the size of `data`. False, with `data` unchanged, for another size, a wrong sum
/// or other digits.
bool DecodeProfileStruct(std::string_view text, std::span<std::uint8_t> data);
