#pragma once

#include <cstdint>
#include <string>

/// The date of a photo as the user edits it. Times are seconds since 1970, 0 for none. `locale` is a name as
/// platform/LocaleDate.h takes it; empty for the user's.

/// In the order of the locale, with a year of two digits; empty for no date.
std::string FormatEditDate(std::int32_t time, const std::string& locale = {});

/// The day that the user typed; 0 if the text is no date, or one before 1970 or beyond 32 bits.
std::int32_t ReadEditDate(const std::string& text, const std::string& locale = {});

/// Whether the two are of one day of the local calendar.
bool IsSameDay(std::int32_t a, std::int32_t b);
