#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// The parts of an address that a request needs.
struct HttpUrl {
  std::string Authority;  // host and port as they stood in the address: what the header Host says
  std::string Host;
  std::uint16_t Port = 80;
  std::string Target;  // path and query; begins with "/"
};

/// Cuts an address, with or without "http://" in front. None if it has no host, or holds a line break, which
/// would begin another header.
std::optional<HttpUrl> SplitUrl(std::string_view address);

/// A value for a query: whatever might mean something there becomes "%" and two hexadecimal digits.
std::string EscapeQueryValue(std::string_view value);
