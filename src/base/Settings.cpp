#include "base/Settings.h"

#include <algorithm>
#include <functional>
#include <utility>
#include <vector>

#include "base/Folders.h"
#include "base/Paths.h"
#include "base/ProfileFile.h"
#include "base/RegistryFile.h"
#include "base/Texts.h"
#include "platform/Files.h"
#include "platform/SpecialFolders.h"
#include "platform/Unicode.h"
#include "platform/WholeFiles.h"

namespace {

constexpr std::int32_t kMissing = -1;

std::unique_ptr<CSettings>& CurrentSettings() {
  static std::unique_ptr<CSettings> settings;
  return settings;
}

constexpr std::size_t kLargestFile = std::size_t{1} << 24;

std::error_code ReadText(const std::string& path, std::string& text) {
  std::vector<std::uint8_t> bytes;
  const std::error_code error = platform::ReadWholeFile(path, bytes, kLargestFile);
  text.assign(bytes.begin(), bytes.end());
  return error;
}

/// The values of a file, a CProfileFile or CRegistryFile; none if it can't be read.
template <typename Values>
Values ReadValues(const std::string& path) {
  std::string text;
  return Values(ReadText(path, text) ? std::string() : text);
}

/// Lets `change` change the values of a file and replaces the file in one step. Nothing is written if its
/// text stays the same, or if there is a file that can't be read: it may hold values that must not be lost.
template <typename Values>
void ChangeValues(const std::string& path, const std::function<void(Values&)>& change) {
  if (path.empty()) return;
  std::string text;
  const std::error_code error = ReadText(path, text);
  if (error && error != std::errc::no_such_file_or_directory) return;
  Values values(text);
  change(values);
  const std::string changed = values.GetText();
  if (!error && changed == text) return;
  // A failed write is lost: the settings are no reason to disturb the user.
  static_cast<void>(platform::WriteFileAtomically(path, changed.data(), changed.size()));
}

constexpr std::string_view kSection = "prefs";

// The profile calls can't tell a missing key from an empty value; this default, which no value should be,
// stands for a missing one.
constexpr std::string_view kMarker = "x@@@@x";

std::optional<std::string> FindProfileValue(const std::string& path, std::string_view name) {
  return ReadValues<CProfileFile>(path).GetValue(kSection, name);
}

/// The file in the program's folder of the user's configuration; empty if the user has no home.
std::string DefaultPath() {
  const std::string configuration = platform::ConfigHome();
  if (configuration.empty()) return {};
  // The key is "Software\" and the program's name; the configuration folder is what "Software" was.
  const std::string key = ToPlatformPath(LoadExpandedString(StringId::RegistryKey));
  const std::string folder = JoinPath(configuration, SplitPath(key).Name);
  // Where it can't be made, reads give their defaults and writes are lost.
  static_cast<void>(platform::CreateFolders(folder));
  return JoinPath(folder, "settings");
}

/// The value if it is there and of type T.
template <typename T>
std::optional<T> FindTypedValue(const std::string& path, std::string_view name) {
  const auto value = ReadValues<CRegistryFile>(path).GetValue(name);
  const T* typed = value ? std::get_if<T>(&*value) : nullptr;
  return typed == nullptr ? std::nullopt : std::optional<T>(*typed);
}

void WriteTypedValue(const std::string& path, std::string_view name, const RegistryValue& value) {
  ChangeValues<CRegistryFile>(path, [&](CRegistryFile& values) { values.SetValue(name, value); });
}

}  // namespace

bool CSettings::GetBool(std::string_view name) const {
  const std::int32_t value = GetInt(name);
  return value != kMissing && value != 0;
}

void CSettings::SetBool(std::string_view name, bool value) { SetInt(name, value ? 1 : 0); }

std::int32_t CSettings::GetIntOrZero(std::string_view name) const {
  const std::int32_t value = GetInt(name);
  return value == kMissing ? 0 : value;
}

void CSettings::SetIntValue(std::string_view name, std::int32_t value) { SetInt(name, value); }

CSettings* GetSettings() { return CurrentSettings().get(); }

void SetSettings(std::unique_ptr<CSettings> settings) { CurrentSettings() = std::move(settings); }

CSettings& CSettingsRef::GetStore() {
  static CRegistrySettings none("");
  return GetSettings() != nullptr ? *GetSettings() : none;
}

bool CSettingsRef::HasValue(std::string_view name) const { return GetStore().HasValue(name); }

std::string CSettingsRef::GetString(std::string_view name) const { return GetStore().GetString(name); }

void CSettingsRef::SetString(std::string_view name, std::string_view value) {
  GetStore().SetString(name, value);
}

std::int32_t CSettingsRef::GetInt(std::string_view name) const { return GetStore().GetInt(name); }

void CSettingsRef::SetInt(std::string_view name, std::int32_t value) { GetStore().SetInt(name, value); }

void CSettingsRef::SetBinary(std::string_view name, std::span<const std::uint8_t> data) {
  GetStore().SetBinary(name, data);
}

bool CSettingsRef::GetBinary(std::string_view name, std::span<std::uint8_t> data, std::size_t& size) const {
  return GetStore().GetBinary(name, data, size);
}

CIniSettings::CIniSettings() : CIniSettings(GetProgramFolder() + LoadText(StringId::SettingsFile)) {}

CIniSettings::CIniSettings(std::string path) : Path(std::move(path)) {}

bool CIniSettings::HasValue(std::string_view name) const {
  const std::optional<std::string> value = FindProfileValue(Path, name);
  return value && !platform::EqualNoCase(*value, kMarker);
}

std::string CIniSettings::GetString(std::string_view name) const {
  const std::string value = FindProfileValue(Path, name).value_or("");
  return value == kMarker ? std::string() : value;
}

void CIniSettings::SetString(std::string_view name, std::string_view value) {
  ChangeValues<CProfileFile>(Path, [&](CProfileFile& values) { values.SetValue(kSection, name, value); });
}

std::int32_t CIniSettings::GetInt(std::string_view name) const {
  const std::string value = FindProfileValue(Path, name).value_or("");
  return value.empty() ? -1 : ParseProfileInt(value);
}

void CIniSettings::SetInt(std::string_view name, std::int32_t value) {
  SetString(name, std::to_string(value));
}

void CIniSettings::SetBinary(std::string_view name, std::span<const std::uint8_t> data) {
  SetString(name, EncodeProfileStruct(data));
}

bool CIniSettings::GetBinary(std::string_view name, std::span<std::uint8_t> data, std::size_t& size) const {
  const std::optional<std::string> value = FindProfileValue(Path, name);
  const bool isRead = value && DecodeProfileStruct(*value, data);
  size = isRead ? data.size() : 0;
  return isRead;
}

CRegistrySettings::CRegistrySettings() : CRegistrySettings(DefaultPath()) {}

CRegistrySettings::CRegistrySettings(std::string path) : Path(std::move(path)) {}

bool CRegistrySettings::HasValue(std::string_view name) const {
  return ReadValues<CRegistryFile>(Path).GetValue(name).has_value();
}

std::string CRegistrySettings::GetString(std::string_view name) const {
  return FindTypedValue<std::string>(Path, name).value_or("");
}

void CRegistrySettings::SetString(std::string_view name, std::string_view value) {
  WriteTypedValue(Path, name, std::string(value));
}

std::int32_t CRegistrySettings::GetInt(std::string_view name) const {
  return FindTypedValue<std::int32_t>(Path, name).value_or(-1);
}

void CRegistrySettings::SetInt(std::string_view name, std::int32_t value) {
  WriteTypedValue(Path, name, value);
}

void CRegistrySettings::SetBinary(std::string_view name, std::span<const std::uint8_t> data) {
  WriteTypedValue(Path, name, std::vector<std::uint8_t>(data.begin(), data.end()));
}

bool CRegistrySettings::GetBinary(std::string_view name, std::span<std::uint8_t> data,
                                  std::size_t& size) const {
  const auto value = FindTypedValue<std::vector<std::uint8_t>>(Path, name);
  size = value ? value->size() : 0;
  if (value) std::copy_n(value->begin(), std::min(value->size(), data.size()), data.begin());
  return value.has_value();
}
