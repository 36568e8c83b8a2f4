#pragma once

#include <string>

#include "base/Settings.h"

/// The settings of a program that runs from a removable disk: section "prefs" of the profile file
/// "prefs.ini" beside the program. Every value is text; one that is literally "x@@@@x" reads as missing.
class CIniSettings : public CSettings {
 public:
  CIniSettings();

  /// Keeps the values in the file of that path.
  explicit CIniSettings(std::string path);

  bool HasValue(std::string_view name) const override;
  std::string GetString(std::string_view name) const override;
  void SetString(std::string_view name, std::string_view value) override;
  std::int32_t GetInt(std::string_view name) const override;
  void SetInt(std::string_view name, std::int32_t value) override;
  void SetBinary(std::string_view name, std::span<const std::uint8_t> data) override;

  /// True only if the stored block has exactly the size of `data` and its checksum is right.
  bool GetBinary(std::string_view name, std::span<std::uint8_t> data, std::size_t& size) const override;

 private:
  std::string Path;
};
