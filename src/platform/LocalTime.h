#pragma once

#include <cstdint>
#include <ctime>
#include <optional>
#include <string>

/// Time in the user's time zone. Seconds are since 1970, UTC, in 64 bits. Any thread.
namespace platform {

/// False, with `local` all 0, where the time has no calendar form.
bool ToLocalTime(std::int64_t seconds, std::tm& local);

enum class DaylightSaving {
  Off,        // the clock shows standard time, in summer too
  AsInForce,  // whatever the time zone has at that date
};

/// The time of a local calendar date. Fields out of their range carry over, as mktime has it; the week
/// day, the day of the year and the daylight field of `local` are not read. None where it has no time.
std::optional<std::int64_t> FromLocalTime(const std::tm& local, DaylightSaving daylightSaving);

/// strftime with English names, whatever the user's language, and with "#" as a flag that drops leading
/// zeros ("%#d" is 5 for the fifth). Empty for an empty format.
std::string FormatTime(const std::tm& local, const std::string& format);

}  // namespace platform
