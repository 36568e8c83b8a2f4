#include "platform/LocalTime.h"

#include <clocale>
#include <vector>

namespace platform {
namespace {

constexpr std::size_t kLongestText = 4096;

locale_t EnglishNames() {
  static const locale_t locale = ::newlocale(LC_ALL_MASK, "C", nullptr);
  return locale;
}

/// The format in the C library's terms, where "-" is the flag that drops leading zeros.
std::string TranslateFormat(const std::string& format) {
  std::string result;
  for (std::size_t i = 0; i < format.size(); ++i) {
    result += format[i];
    if (format[i] != '%' || i + 1 == format.size()) continue;
    ++i;
    result += format[i] == '#' ? '-' : format[i];
  }
  return result;
}

}  // namespace

bool ToLocalTime(std::int64_t seconds, std::tm& local) {
  local = {};
  ::tzset();  // localtime_r alone may go on with the time zone it began with
  const std::time_t time = seconds;
  if (::localtime_r(&time, &local) != nullptr) return true;
  local = {};
  return false;
}

std::optional<std::int64_t> FromLocalTime(const std::tm& local, DaylightSaving daylightSaving) {
  std::tm copy = local;
  copy.tm_isdst = daylightSaving == DaylightSaving::Off ? 0 : -1;
  // -1 is a time like others; that the week day was filled in tells it from a failure.
  copy.tm_wday = -1;
  const std::time_t time = ::mktime(&copy);
  if (time == -1 && copy.tm_wday == -1) return std::nullopt;
  return time;
}

std::string FormatTime(const std::tm& local, const std::string& format) {
  if (format.empty()) return {};
  // One character more, so that an empty text differs from a buffer that is too small.
  const std::string translated = TranslateFormat(format) + ' ';
  std::vector<char> buffer(64);
  while (buffer.size() <= kLongestText) {
    const std::size_t length =
        ::strftime_l(buffer.data(), buffer.size(), translated.c_str(), &local, EnglishNames());
    if (length > 0) return {buffer.data(), length - 1};
    buffer.resize(buffer.size() * 4);
  }
  return {};
}

}  // namespace platform
