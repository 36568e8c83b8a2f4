#include "ui/back/DateText.h"

#include <ctime>
#include <vector>

#include "base/Texts.h"
#include "base/Times.h"
#include "platform/LocalTime.h"
#include "platform/LocaleDate.h"

namespace {

constexpr int kFirstYear = 1900;  // of std::tm

int GetThisYear() {
  std::tm local{};
  platform::ToLocalTime(std::time(nullptr), local);
  return local.tm_year + kFirstYear;
}

/// The letters of a format's fields in that order.
const char* LettersOf(platform::DateOrder order) {
  switch (order) {
    case platform::DateOrder::DayMonthYear:
      return "dmy";
    case platform::DateOrder::YearMonthDay:
      return "ymd";
    case platform::DateOrder::MonthDayYear:
      break;
  }
  return "mdy";
}

/// The field of a format that ends with that letter, "%#d"; empty if there is none.
std::string FindField(const std::string& format, char letter) {
  for (std::size_t start = format.find('%'); start != std::string::npos;
       start = format.find('%', start + 1)) {
    const std::size_t end = format.find_first_not_of('#', start + 1);
    if (end != std::string::npos && format[end] == letter) return format.substr(start, end + 1 - start);
  }
  return {};
}

/// A format of month, day and year with its fields in the order of the locale.
std::string LocalizeDateFormat(const std::string& format, const std::string& locale) {
  const std::string separator = platform::GetDateSeparator(locale);
  std::string result;
  for (const char* letter = LettersOf(platform::GetDateOrder(locale)); *letter != '\0'; ++letter) {
    if (!result.empty()) result += separator;
    result += FindField(format, *letter);
  }
  return result;
}

std::tm MakeLocal(const platform::CalendarDate& date, int hour) {
  std::tm local{};
  local.tm_year = date.Year - kFirstYear;
  local.tm_mon = date.Month - 1;
  local.tm_mday = date.Day;
  local.tm_hour = hour;
  return local;
}

bool IsOnDay(std::int32_t time, const platform::CalendarDate& date) {
  const std::tm local = LocalTime(time);
  return local.tm_year + kFirstYear == date.Year && local.tm_mon + 1 == date.Month &&
         local.tm_mday == date.Day;
}

}  // namespace

std::string FormatEditDate(std::int32_t time, const std::string& locale) {
  return time == 0 ? std::string()
                   : FormatLocalTime(time, LocalizeDateFormat(LoadText(StringId::DateEditFormat), locale));
}

std::int32_t ReadEditDate(const std::string& text, const std::string& locale) {
  const auto date = platform::ReadDate(text, GetThisYear(), locale);
  if (!date) return 0;
  // Times are made without daylight saving. Where winter counts as such, as in Ireland, midnight then falls
  // on the day before.
  constexpr int kMidnight = 0;
  constexpr int kNoon = 12;
  for (const int hour : {kMidnight, kNoon}) {
    const std::int32_t time = TimeFromLocal(MakeLocal(*date, hour));
    if (time != 0 && IsOnDay(time, *date)) return time;
  }
  return 0;
}

bool IsSameDay(std::int32_t a, std::int32_t b) {
  const std::tm first = LocalTime(a);
  const std::tm second = LocalTime(b);
  return first.tm_year == second.tm_year && first.tm_yday == second.tm_yday;
}
