#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>

/// The user's few preferences: a flat store of named, typed values. Names are compared without regard to
/// case. Each write reaches the disk before it returns and each read goes there, so nothing is cached
/// and a kill leaves the old values or the new. No operation reports a failure: a read gives its default,
/// a failed write is lost. Main thread only.
class CSettings {
 public:
  virtual ~CSettings() = default;

  virtual bool HasValue(std::string_view name) const = 0;

  /// Empty if the value is missing.
  virtual std::string GetString(std::string_view name) const = 0;
  virtual void SetString(std::string_view name, std::string_view value) = 0;

  /// -1 if the value is missing.
  virtual std::int32_t GetInt(std::string_view name) const = 0;
  virtual void SetInt(std::string_view name, std::int32_t value) = 0;

  virtual void SetBinary(std::string_view name, std::span<const std::uint8_t> data) = 0;

  /// Reads as much as `data` has room for; `size` receives the real size in bytes, 0 when false.
  virtual bool GetBinary(std::string_view name, std::span<std::uint8_t> data, std::size_t& size) const = 0;

  /// True for any stored integer but -1 and 0.
  virtual bool GetBool(std::string_view name) const;
  virtual void SetBool(std::string_view name, bool value);

  /// GetInt, with 0 in place of -1.
  virtual std::int32_t GetIntOrZero(std::string_view name) const;
  virtual void SetIntValue(std::string_view name, std::int32_t value);

 protected:
  CSettings() = default;
  CSettings(const CSettings&) = default;
  CSettings& operator=(const CSettings&) = default;
};

/// The program's store, null before SetSettings. Lives to the end of the process or the next SetSettings.
CSettings* GetSettings();
void SetSettings(std::unique_ptr<CSettings> settings);

/// A settings object for code that keeps one of its own: each call goes to the program's store. Without
/// a store every value is missing and nothing is written.
class CSettingsRef : public CSettings {
 public:
  bool HasValue(std::string_view name) const override;
  std::string GetString(std::string_view name) const override;
  void SetString(std::string_view name, std::string_view value) override;
  std::int32_t GetInt(std::string_view name) const override;
  void SetInt(std::string_view name, std::int32_t value) override;
  void SetBinary(std::string_view name, std::span<const std::uint8_t> data) override;
  bool GetBinary(std::string_view name, std::span<std::uint8_t> data, std::size_t& size) const override;

 private:
  static CSettings& GetStore();
};

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
