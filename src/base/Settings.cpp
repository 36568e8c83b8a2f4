#include "base/Settings.h"

#include <utility>

namespace {

constexpr std::int32_t kMissing = -1;

std::unique_ptr<CSettings>& CurrentSettings() {
  static std::unique_ptr<CSettings> settings;
  return settings;
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
