#include "base/Times.h"

#include <limits>

#include "platform/LocalTime.h"

std::int32_t TimeFromFile(std::int64_t seconds) {
  return seconds < 0 || seconds > std::numeric_limits<std::int32_t>::max()
             ? 0
             : static_cast<std::int32_t>(seconds);
}

std::tm LocalTime(std::int32_t time) {
  std::tm local{};
  platform::ToLocalTime(time, local);
  return local;
}

std::int32_t TimeFromLocal(const std::tm& local) {
  return TimeFromFile(platform::FromLocalTime(local, platform::DaylightSaving::Off).value_or(0));
}

std::string FormatLocalTime(std::int32_t time, const std::string& format) {
  return platform::FormatTime(LocalTime(time), format);
}
