#pragma once

#include <string>

#include "base/Settings.h"

/// The settings of normal mode: one text file of typed values in the user's configuration folder. A value
/// has the type it was written with and reads as that type alone.
class CRegistrySettings : public CSettings {
 public:
  /// Makes the program's folder in the configuration folder if it is missing.
  CRegistrySettings();

  /// Keeps the values in the file of that path, in a folder that stands.
  explicit CRegistrySettings(std::string path);

  bool HasValue(std::string_view name) const override;
  std::string GetString(std::string_view name) const override;
  void SetString(std::string_view name, std::string_view value) override;
  std::int32_t GetInt(std::string_view name) const override;
  void SetInt(std::string_view name, std::int32_t value) override;
  void SetBinary(std::string_view name, std::span<const std::uint8_t> data) override;
  bool GetBinary(std::string_view name, std::span<std::uint8_t> data, std::size_t& size) const override;

 private:
  std::string Path;
};
