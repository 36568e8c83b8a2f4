#pragma once

#include <optional>
#include <string>
#include <string_view>

/// Dates as people type them in their own language and order. A locale is a name like "de_DE"; empty stands
/// for the one that LC_ALL, LC_TIME or LANG names, the first of them that is set. Any thread.
namespace platform {

/// A day of the calendar that exists.
struct CalendarDate {
  int Year = 0;   // all four digits
  int Month = 1;  // 1 to 12
  int Day = 1;    // 1 to 31
  friend bool operator==(const CalendarDate&, const CalendarDate&) = default;
};

enum class DateOrder { DayMonthYear, MonthDayYear, YearMonthDay };

/// The order of the fields in short dates. Without a locale, as in "C", the order of US English.
DateOrder GetDateOrder(const std::string& locale = {});

/// What stands between the fields of short dates, "/" or "." for example.
std::string GetDateSeparator(const std::string& locale = {});

/// Reads a typed date. Its fields stand in the locale's order, between any separators, or with four digits
/// of a year in front, or as eight digits. A month can be a name or its beginning, in the locale's language
/// or in English, at any place. A year of one or two digits lies between 79 years before and 20 years after
/// `thisYear`. The day of the week is ignored, even if its short name is also that of a month. nullopt if the
/// text can't be read or the day doesn't exist.
std::optional<CalendarDate> ReadDate(std::string_view text, int thisYear, const std::string& locale = {});

}  // namespace platform
