#include "base/IniSettings.h"

#include <utility>

#include "base/Folders.h"
#include "base/ProfileFile.h"
#include "base/SettingsFile.h"
#include "base/Texts.h"
#include "platform/Unicode.h"

namespace {

constexpr std::string_view kSection = "prefs";

// The profile calls can't tell a missing key from an empty value; this default, which no value should be,
// stands for a missing one.
constexpr std::string_view kMarker = "x@@@@x";

std::string ReadValue(const std::string& path, std::string_view name) {
  const CProfileFile file(ReadSettingsFile(path));
  return file.GetValue(kSection, name).value_or(std::string(kMarker));
}

}  // namespace

CIniSettings::CIniSettings() : CIniSettings(GetProgramFolder() + LoadText(StringId::SettingsFile)) {}

CIniSettings::CIniSettings(std::string path) : Path(std::move(path)) {}

bool CIniSettings::HasValue(std::string_view name) const {
  return !platform::EqualNoCase(ReadValue(Path, name), kMarker);
}

std::string CIniSettings::GetString(std::string_view name) const {
  std::string value = ReadValue(Path, name);
  return value == kMarker ? std::string() : value;
}

void CIniSettings::SetString(std::string_view name, std::string_view value) {
  EditSettingsFile(Path, [name, value](const std::string& text) {
    CProfileFile file(text);
    file.SetValue(kSection, name, value);
    return file.GetText();
  });
}

std::int32_t CIniSettings::GetInt(std::string_view name) const {
  const CProfileFile file(ReadSettingsFile(Path));
  const std::string value = file.GetValue(kSection, name).value_or("");
  return value.empty() ? -1 : ParseProfileInt(value);
}

void CIniSettings::SetInt(std::string_view name, std::int32_t value) {
  SetString(name, std::to_string(value));
}

void CIniSettings::SetBinary(std::string_view name, std::span<const std::uint8_t> data) {
  SetString(name, EncodeProfileStruct(data));
}

bool CIniSettings::GetBinary(std::string_view name, std::span<std::uint8_t> data, std::size_t& size) const {
  size = 0;
  const CProfileFile file(ReadSettingsFile(Path));
  const auto value = file.GetValue(kSection, name);
  if (!value || !DecodeProfileStruct(*value, data)) return false;
  size = data.size();
  return true;
}
