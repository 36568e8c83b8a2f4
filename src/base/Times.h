#pragma once

#include <cstdint>
#include <ctime>
#include <string>

/// Times of photos: seconds since 1970, UTC, in 32 bits, 0 for none. A time that doesn't fit is none;
/// nothing wraps.

/// A file's time; 0 if it is before 1970 or beyond 32 bits.
std::int32_t TimeFromFile(std::int64_t seconds);

/// The local calendar form.
std::tm LocalTime(std::int32_t time);

/// The time of a local calendar date with daylight saving marked as off: in summer it lies one hour after
/// what the clock showed. 0 if it is before 1970 or beyond 32 bits.
std::int32_t TimeFromLocal(const std::tm& local);

/// A time in local time by a strftime format; see platform::FormatTime.
std::string FormatLocalTime(std::int32_t time, const std::string& format);
