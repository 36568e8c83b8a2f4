#include "sharing/ServiceHost.h"

#include <algorithm>
#include <cstdlib>

#include "base/Settings.h"
#include "base/Texts.h"

namespace {

constexpr const char* kVariable = "VELLUMAR_SERVICE_HOST";
constexpr std::string_view kSetting = "ServiceHost";
constexpr std::string_view kScheme = "http://";

// Such names belong to nobody, by the rules of the net: one of them only keeps the place of a real host.
constexpr std::string_view kNobodysHost = ".example";

std::string GetConfiguredHost() {
  const char* variable = std::getenv(kVariable);
  if (variable != nullptr && *variable != '\0') return variable;
  const std::string setting = CSettingsRef().GetString(kSetting);
  return setting.empty() ? LoadText(StringId::ServiceHost) : setting;
}

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

bool IsHostCharacter(char c) {
  const bool isLetter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
  return isLetter || IsDigit(c) || c == '.' || c == '-' || c == '_';
}

bool IsControl(char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; }

/// A name or an address with dots, and perhaps a port.
bool IsHost(std::string_view text) {
  const std::size_t colon = std::min(text.find(':'), text.size());
  const std::string_view name = text.substr(0, colon);
  if (name.empty() || !std::all_of(name.begin(), name.end(), IsHostCharacter)) return false;
  if (colon == text.size()) return true;
  const std::string_view port = text.substr(colon + 1);
  return !port.empty() && std::all_of(port.begin(), port.end(), IsDigit);
}

}  // namespace

std::string GetServiceHost() {
  const std::string configured = GetConfiguredHost();
  std::string_view host = configured;
  if (host.starts_with(kScheme)) host.remove_prefix(kScheme.size());
  if (host.ends_with('/')) host.remove_suffix(1);
  if (!IsHost(host) || host.substr(0, host.find(':')).ends_with(kNobodysHost)) return {};
  return std::string(host);
}

std::string MakeServiceAddress(std::string_view host, std::string_view path) {
  const bool isPlain = std::none_of(path.begin(), path.end(), IsControl);
  if (host.empty() || !path.starts_with('/') || !isPlain) return {};
  std::string address;
  address.reserve(kScheme.size() + host.size() + path.size());
  return address.append(kScheme).append(host).append(path);
}
