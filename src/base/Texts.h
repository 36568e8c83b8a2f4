#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "base/Format.h"
#include "resources/StringIds.h"

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
