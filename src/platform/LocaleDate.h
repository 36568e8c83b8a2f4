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

/// The order of the fields in short dates. Without a locale, as in "C", it is that of English in the USA.
DateOrder GetDateOrder(const std::string& locale = {});

/// What stands between the fields of short dates, "/" or "." for example.
std::string GetDateSeparator(const std::string& locale = {});

/// Reads a typed date. Its fields stand in the locale's order, between any separators, or with four digits
/// of a year in front, or as eight digits; a month can be a name or its beginning, of the locale or English,
/// and then stands anywhere. A year of one or two digits is the one from 79 years before to 20 years behind
/// `thisYear`. A day of the week is passed over,
/// also one whose short name is a month's too. None for what can't be read or a day that doesn't exist.
std::optional<CalendarDate> ReadDate(std::string_view text, int thisYear, const std::string& locale = {});

}  // namespace platform
