#include <gtest/gtest.h>

#include <limits>

#include "platform/LocalTime.h"
#include "support/EnvironmentVariable.h"

using platform::DaylightSaving;
using platform::FormatTime;
using platform::FromLocalTime;
using platform::ToLocalTime;

namespace {

std::tm Date(int year, int month, int day, int hour, int minute = 0) {
  std::tm date{};
  date.tm_year = year - 1900;
  date.tm_mon = month - 1;
  date.tm_mday = day;
  date.tm_hour = hour;
  date.tm_min = minute;
  return date;
}

TEST(LocalTime, CanLeaveDaylightSavingOffInSummer) {
  const CEnvironmentVariable zone("TZ", "Europe/Berlin");
  const auto winter = FromLocalTime(Date(2003, 1, 15, 12), DaylightSaving::Off);
  EXPECT_EQ(winter, FromLocalTime(Date(2003, 1, 15, 12), DaylightSaving::AsInForce));
  EXPECT_EQ(winter, 1042628400);

  const auto summer = FromLocalTime(Date(2003, 7, 15, 12), DaylightSaving::AsInForce);
  EXPECT_EQ(summer, 1058263200);
  EXPECT_EQ(FromLocalTime(Date(2003, 7, 15, 12), DaylightSaving::Off), *summer + 3600);

  // 2:30 on 26 October 2003 came twice; with daylight saving off it is the later one.
  EXPECT_EQ(FromLocalTime(Date(2003, 10, 26, 2, 30), DaylightSaving::Off), 1067131800);
  std::tm local{};
  const CEnvironmentVariable other("TZ", "Asia/Tokyo");
  ASSERT_TRUE(ToLocalTime(0, local));
  EXPECT_EQ(local.tm_hour, 9) << "a change of the zone is followed";
}

TEST(LocalTime, TellsTheLastSecondBefore1970FromAFailure) {
  const CEnvironmentVariable zone("TZ", "UTC");
  std::tm date = Date(1969, 12, 31, 23, 59);
  date.tm_sec = 59;
  EXPECT_EQ(FromLocalTime(date, DaylightSaving::Off), -1);
  date.tm_year = std::numeric_limits<int>::max();
  date.tm_mon = std::numeric_limits<int>::max();
  EXPECT_EQ(FromLocalTime(date, DaylightSaving::Off), std::nullopt);
  std::tm local = date;
  EXPECT_FALSE(ToLocalTime(std::numeric_limits<std::int64_t>::max(), local));
  EXPECT_EQ(local.tm_year, 0);
}

TEST(FormatTime, DropsLeadingZerosAndSpeaksEnglish) {
  std::tm date = Date(2003, 3, 5, 9, 7);
  date.tm_wday = 3;
  EXPECT_EQ(FormatTime(date, "%a, %b %#d, %Y"), "Wed, Mar 5, 2003");
  EXPECT_EQ(FormatTime(date, "%#m/%d/%y %#H:%M 100%% %%#d"), "3/05/03 9:07 100% %#d");
  EXPECT_EQ(FormatTime(date, ""), "");
  EXPECT_EQ(FormatTime(date, std::string(1000, 'x')), std::string(1000, 'x'));
}

}  // namespace
