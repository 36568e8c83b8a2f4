#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "base/Format.h"
#include "resources/StringIds.h"

/// The version information of a program.
struct ProductInfo {
  std::string ProductName;
  std::string CompanyName;
  int Version[4] = {};
  std::string PrivateBuild;  // empty in what is given to users
};

/// That of the running program.
const ProductInfo& GetProductInfo();

/// "1.2", or "1.2.3" when the third number isn't 0; for a private build with its name and build number
/// behind it.
std::string GetVersionText(const ProductInfo& product);

/// The text of the table, unchanged; empty for an id that isn't in it.
std::string LoadText(StringId id);

/// The text of the table with %1, %2 and %3 replaced by the product's name, version and company.
std::string LoadExpandedString(StringId id);

/// The same for a text of the caller's.
std::string LoadExpandedString(std::string_view text);

/// The text of the table, not expanded, with its placeholders filled as Format() does.
template <typename... Arguments>
std::string FormatString(StringId id, const Arguments&... arguments) {
  return Format(LoadText(id), arguments...);
}

/// A date in local time, "Mar 5, 2003" or "Wed, Mar 5, 2003".
std::string FormatDate(std::int32_t time, bool withWeekday);
