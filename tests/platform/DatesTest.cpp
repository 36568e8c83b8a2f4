#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "platform/LocalTime.h"
#include "platform/LocaleDate.h"
#include "support/EnvironmentVariable.h"

using platform::CalendarDate;
using platform::DaylightSaving;
using platform::ReadDate;
using testing::Optional;

namespace {

constexpr int kThisYear = 2026;
constexpr CalendarDate kDay{2003, 8, 9};

struct Typed {
  const char* Locale;
  const char* Text;
};

std::tm Date(int year, int month, int day, int hour, int minute = 0) {
  std::tm date{};
  date.tm_year = year - 1900;
  date.tm_mon = month - 1;
  date.tm_mday = day;
  date.tm_hour = hour;
  date.tm_min = minute;
  return date;
}

}  // namespace

TEST(LocaleDate, ReadsWhatUsersOfALocaleType) {
  const Typed texts[] = {{"en_US", "8/9/2003"},
                         {"en_US", "8 9 2003"},
                         {"en_GB", "09/08/03"},
                         {"en_GB", "9.8.03"},
                         {"de_DE", "9.8.2003"},
                         {"ja_JP", "03/8/9"},
                         {"C", "8/9/03"},
                         {"hu_HU", "2003. 8. 9."},
                         {"en_US", "2003-08-09"},
                         {"fr_FR", "20030809"},
                         {"de_DE", " 2003.08.09 "},
                         {"en_US", "Sat, Aug 9, 2003"},
                         {"en_US", "August 9th, 2003"},
                         {"en_US", "2003 Aug 9"},
                         {"de_DE", "9. August 2003"},
                         {"fr_FR", "samedi 9 AOUT 2003"},
                         {"fr_FR", "Aug 9, 2003"},
                         {"es_ES", "9 de agosto de 2003"},
                         {"fi_FI", "9. elokuuta 2003"},
                         {"ru_RU", "9 августа 2003 г."},
                         {"ja_JP", "2003年8月9日(土)"},
                         {"ar_EG", "٩/٨/٢٠٠٣"}};
  for (const auto& [locale, text] : texts) {
    EXPECT_THAT(ReadDate(text, kThisYear, locale), Optional(kDay)) << locale << " " << text;
  }
  const Typed tuesdays[] = {
      {"fr_FR", "mar. 5 mars 2024"}, {"es_ES", "mar, 5 mar 2024"}, {"it_IT", "martedì 5 marzo 2024"}};
  for (const auto& [locale, text] : tuesdays) {
    EXPECT_THAT(ReadDate(text, kThisYear, locale), Optional(CalendarDate{2024, 3, 5})) << "a day and a month";
  }
  EXPECT_EQ(ReadDate("4 jui 03", kThisYear, "fr_FR"), std::nullopt) << "June or July";
  EXPECT_EQ(ReadDate("mars 6 août 2024", kThisYear, "fr_FR"), std::nullopt);
}

TEST(LocaleDate, LocaleOfDatesIsTheUsers) {
  const char* const settings[][4] = {{"", "de_DE.UTF-8", "en_US.UTF-8", "."},
                                     {"ja_JP.UTF-8", "de_DE.UTF-8", "en_US.UTF-8", "/"},
                                     {"", "", "de_DE@euro", "."},
                                     {"C.UTF-8", "de_DE.UTF-8", "de_DE.UTF-8", "/"}};
  for (const auto& [forAll, forTime, language, separator] : settings) {
    const CEnvironmentVariable all("LC_ALL", forAll), time("LC_TIME", forTime), lang("LANG", language);
    EXPECT_EQ(platform::GetDateSeparator(), separator) << forAll << forTime << language;
  }
}

TEST(LocaleDate, ShortYearsSlideWithTheCentury) {
  const int years[][2] = {{46, 2046}, {47, 1947}, {3, 2003}, {1899, 1899}};
  for (const auto& [typed, year] : years) {
    EXPECT_THAT(ReadDate("5/9/" + std::to_string(typed), kThisYear, "en_US"),
                Optional(CalendarDate{year, 5, 9}));
  }
}

TEST(LocaleDate, DaysThatDoNotExistAndOtherTextsAreRefused) {
  const char* const texts[] = {
      "",           "2/30/03",      "13/1/2003",   "2/29/2003", "0/9/2003",     "8/0/2003",   "8/9",
      "8/9/2003/1", "8/9/20033",    "8/9/203",     "yesterday", "Aug Sep 2003", "2003-13-01", "20030230",
      "200308091",  "Aug 99, 2003", "Foo 9, 2003", "8x9x2003",  "\xff\xfe 8/9"};
  for (const char* text : texts) EXPECT_EQ(ReadDate(text, kThisYear, "en_US"), std::nullopt) << text;
  EXPECT_THAT(ReadDate("2/29/04", kThisYear, "en_US"), Optional(CalendarDate{2004, 2, 29}));
  EXPECT_EQ(ReadDate(std::string(100000, '9'), kThisYear), std::nullopt);
}

TEST(LocalTime, CanLeaveDaylightSavingOffInSummer) {
  const CEnvironmentVariable zone("TZ", "Europe/Berlin");
  const auto winter = platform::FromLocalTime(Date(2003, 1, 15, 12), DaylightSaving::Off);
  EXPECT_EQ(winter, platform::FromLocalTime(Date(2003, 1, 15, 12), DaylightSaving::AsInForce));
  EXPECT_EQ(winter, 1042628400);

  const auto summer = platform::FromLocalTime(Date(2003, 7, 15, 12), DaylightSaving::AsInForce);
  EXPECT_EQ(summer, 1058263200);
  EXPECT_EQ(platform::FromLocalTime(Date(2003, 7, 15, 12), DaylightSaving::Off), *summer + 3600);

  // 2:30 on 26 October 2003 came twice; with daylight saving off it is the later one.
  EXPECT_EQ(platform::FromLocalTime(Date(2003, 10, 26, 2, 30), DaylightSaving::Off), 1067131800);
  std::tm local{};
  const CEnvironmentVariable other("TZ", "Asia/Tokyo");
  ASSERT_TRUE(platform::ToLocalTime(0, local));
  EXPECT_EQ(local.tm_hour, 9) << "a change of the zone is followed";
}

TEST(FormatTime, DropsLeadingZerosAndSpeaksEnglish) {
  std::tm date = Date(2003, 3, 5, 9, 7);
  date.tm_wday = 3;
  EXPECT_EQ(platform::FormatTime(date, "%a, %b %#d, %Y"), "Wed, Mar 5, 2003");
  EXPECT_EQ(platform::FormatTime(date, "%#m/%d/%y %#H:%M 100%% %%#d"), "3/05/03 9:07 100% %#d");
  EXPECT_EQ(platform::FormatTime(date, std::string(1000, 'x')), std::string(1000, 'x'));
}
