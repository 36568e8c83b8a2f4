#include "base/Settings.h"

bool CSettingsRef::HasValue(std::string_view name) const {
  const CSettings* settings = GetSettings();
  return settings != nullptr && settings->HasValue(name);
}

std::string CSettingsRef::GetString(std::string_view name) const {
  const CSettings* settings = GetSettings();
  return settings == nullptr ? std::string() : settings->GetString(name);
}

void CSettingsRef::SetString(std::string_view name, std::string_view value) {
  if (CSettings* settings = GetSettings()) settings->SetString(name, value);
}

std::int32_t CSettingsRef::GetInt(std::string_view name) const {
  const CSettings* settings = GetSettings();
  return settings == nullptr ? -1 : settings->GetInt(name);
}

void CSettingsRef::SetInt(std::string_view name, std::int32_t value) {
  if (CSettings* settings = GetSettings()) settings->SetInt(name, value);
}

void CSettingsRef::SetBinary(std::string_view name, std::span<const std::uint8_t> data) {
  if (CSettings* settings = GetSettings()) settings->SetBinary(name, data);
}

bool CSettingsRef::GetBinary(std::string_view name, std::span<std::uint8_t> data, std::size_t& size) const {
  size = 0;
  const CSettings* settings = GetSettings();
  return settings != nullptr && settings->GetBinary(name, data, size);
}

bool CSettingsRef::GetBool(std::string_view name) const {
  const CSettings* settings = GetSettings();
  return settings != nullptr && settings->GetBool(name);
}

void CSettingsRef::SetBool(std::string_view name, bool value) {
  if (CSettings* settings = GetSettings()) settings->SetBool(name, value);
}

std::int32_t CSettingsRef::GetIntOrZero(std::string_view name) const {
  const CSettings* settings = GetSettings();
  return settings == nullptr ? 0 : settings->GetIntOrZero(name);
}

void CSettingsRef::SetIntValue(std::string_view name, std::int32_t value) {
  if (CSettings* settings = GetSettings()) settings->SetIntValue(name, value);
}
