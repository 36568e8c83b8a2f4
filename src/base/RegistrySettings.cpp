#include "base/RegistrySettings.h"

#include <algorithm>
#include <utility>

#include "base/Paths.h"
#include "base/RegistryFile.h"
#include "base/SettingsFile.h"
#include "base/Texts.h"
#include "platform/Files.h"
#include "platform/SpecialFolders.h"

namespace {

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
std::optional<T> ReadValue(const std::string& path, std::string_view name) {
  const CRegistryFile file(ReadSettingsFile(path));
  const auto value = file.GetValue(name);
  const T* typed = value ? std::get_if<T>(&*value) : nullptr;
  return typed == nullptr ? std::nullopt : std::optional<T>(*typed);
}

void WriteValue(const std::string& path, std::string_view name, const RegistryValue& value) {
  EditSettingsFile(path, [name, &value](const std::string& text) {
    CRegistryFile file(text);
    file.SetValue(name, value);
    return file.GetText();
  });
}

}  // namespace

CRegistrySettings::CRegistrySettings() : CRegistrySettings(DefaultPath()) {}

CRegistrySettings::CRegistrySettings(std::string path) : Path(std::move(path)) {}

bool CRegistrySettings::HasValue(std::string_view name) const {
  return CRegistryFile(ReadSettingsFile(Path)).GetValue(name).has_value();
}

std::string CRegistrySettings::GetString(std::string_view name) const {
  return ReadValue<std::string>(Path, name).value_or("");
}

void CRegistrySettings::SetString(std::string_view name, std::string_view value) {
  WriteValue(Path, name, std::string(value));
}

std::int32_t CRegistrySettings::GetInt(std::string_view name) const {
  return ReadValue<std::int32_t>(Path, name).value_or(-1);
}

void CRegistrySettings::SetInt(std::string_view name, std::int32_t value) { WriteValue(Path, name, value); }

void CRegistrySettings::SetBinary(std::string_view name, std::span<const std::uint8_t> data) {
  WriteValue(Path, name, std::vector<std::uint8_t>(data.begin(), data.end()));
}

bool CRegistrySettings::GetBinary(std::string_view name, std::span<std::uint8_t> data,
                                  std::size_t& size) const {
  const auto value = ReadValue<std::vector<std::uint8_t>>(Path, name);
  size = value ? value->size() : 0;
  if (value) std::copy_n(value->begin(), std::min(value->size(), data.size()), data.begin());
  return value.has_value();
}
