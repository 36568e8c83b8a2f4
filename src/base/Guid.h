#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

/// A UUID of 16 bytes with a valid flag.
class CGuid {
 public:
  /// Not valid, all bytes 0.
  CGuid() = default;

  /// A new random one; not valid if the system can't make one.
  static CGuid Generate();

  /// Valid if there are 16 bytes; any other number gives one that is not valid.
  static CGuid FromBytes(std::span<const std::uint8_t> bytes);

  bool IsValid() const { return Valid; }

  /// Always 16 bytes.
  std::vector<std::uint8_t> ToBytes() const;

  /// "12345678-9abc-def0-1234-56789abcdef0"; empty if it isn't valid.
  std::string ToString() const;

  bool operator==(const CGuid&) const = default;

 private:
  std::array<std::uint8_t, 16> Bytes{};
  bool Valid = false;
};
