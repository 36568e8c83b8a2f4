#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "platform/LocaleDate.h"
#include "support/EnvironmentVariable.h"

using platform::CalendarDate;
using platform::DateOrder;
using platform::ReadDate;
using testing::Optional;

namespace {

constexpr int kThisYear = 2026;
constexpr CalendarDate kDay{2003, 8, 9};

struct Typed {
  const char* Locale;
  const char* Text;
};

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
  struct Setting {
    const char *All, *Time, *Lang;
    DateOrder Order;
    const char* Separator;
  };
  const Setting settings[] = {{"", "de_DE.UTF-8", "en_US.UTF-8", DateOrder::DayMonthYear, "."},
                              {"ja_JP.UTF-8", "de_DE.UTF-8", "en_US.UTF-8", DateOrder::YearMonthDay, "/"},
                              {"", "", "de_DE@euro", DateOrder::DayMonthYear, "."},
                              {"C.UTF-8", "de_DE.UTF-8", "de_DE.UTF-8", DateOrder::MonthDayYear, "/"},
                              {"", "", "", DateOrder::MonthDayYear, "/"}};
  for (const Setting& set : settings) {
    const CEnvironmentVariable all("LC_ALL", set.All);
    const CEnvironmentVariable time("LC_TIME", set.Time);
    const CEnvironmentVariable lang("LANG", set.Lang);
    EXPECT_EQ(platform::GetDateOrder(), set.Order) << set.All << " " << set.Time << " " << set.Lang;
    EXPECT_EQ(platform::GetDateSeparator(), set.Separator);
  }
}

TEST(LocaleDate, ShortYearsSlideWithTheCentury) {
  struct Case {
    const char* Text;
    int ThisYear, Year;
  };
  const Case cases[] = {{"5/9/46", 2026, 2046},
                        {"5/9/47", 2026, 1947},
                        {"5/9/3", 2026, 2003},
                        {"5/9/00", 1999, 2000},
                        {"5/9/1899", 2026, 1899}};
  for (const auto& [text, thisYear, year] : cases) {
    EXPECT_THAT(ReadDate(text, thisYear, "en_US"), Optional(CalendarDate{year, 5, 9})) << text;
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
