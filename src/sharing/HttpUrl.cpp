#include "sharing/HttpUrl.h"

#include <algorithm>

#include "base/Format.h"

namespace {

constexpr std::string_view kScheme = "http://";
constexpr std::string_view kEscaped = " '!#$%&()/:;[\\]^`{|}+<=>";
constexpr unsigned char kLastPlain = 0x7E;

/// The digits at the start; what is behind them doesn't count, and a number too large loses its upper bits.
std::uint16_t ParsePort(std::string_view text) {
  std::uint16_t port = 0;
  for (const char digit : text) {
    if (digit < '0' || digit > '9') break;
    port = static_cast<std::uint16_t>(port * 10 + (digit - '0'));
  }
  return port;
}

}  // namespace

std::optional<HttpUrl> SplitUrl(std::string_view address) {
  if (address.starts_with(kScheme)) address.remove_prefix(kScheme.size());
  if (address.find_first_of(std::string_view("\r\n\0", 3)) != std::string_view::npos) return std::nullopt;
  const std::size_t slash = std::min(address.find('/'), address.size());
  const std::string_view authority = address.substr(0, slash);
  if (authority.empty()) return std::nullopt;

  HttpUrl url;
  url.Authority = authority;
  url.Target = slash < address.size() ? address.substr(slash) : "/";
  const std::size_t colon = authority.find(':');
  url.Host = authority.substr(0, colon);
  const std::string_view port = authority.substr(std::min(colon, authority.size() - 1) + 1);
  if (!port.empty()) url.Port = ParsePort(port);
  return url;
}

std::string EscapeQueryValue(std::string_view value) {
  std::string escaped;
  escaped.reserve(3 * value.size());  // a password leaves no copy behind by growing
  for (const char c : value) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte > kLastPlain || kEscaped.find(c) != std::string_view::npos) {
      escaped += Format("%%%02X", static_cast<unsigned>(byte));
    } else {
      escaped += c;
    }
  }
  return escaped;
}
