#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/LocaleDate.h"
#include "support/EnvironmentVariable.h"

using platform::CalendarDate;
using platform::DateOrder;
using platform::ReadDate;
using testing::Eq;
using testing::Optional;

namespace {

constexpr int kThisYear = 2026;
constexpr CalendarDate kDay{2003, 8, 9};

struct Typed {
  std::string Locale;
  std::string Text;
};

}  // namespace

TEST(LocaleDateTest, TheUsersOrderDecidesWhichNumberIsWhich) {
  for (const Typed& typed : std::vector<Typed>{{"en_US", "8/9/2003"},
                                               {"en_US", "08/09/03"},
                                               {"en_US", "8-9-03"},
                                               {"en_US", "8 9 2003"},
                                               {"en_GB", "9/8/2003"},
                                               {"en_GB", "09/08/03"},
                                               {"en_GB", "9.8.03"},
                                               {"de_DE", "9.8.2003"},
                                               {"de_DE", "09.08.03"},
                                               {"fr_FR", "09/08/2003"},
                                               {"nl_NL", "9-8-03"},
                                               {"pt_BR", "9/8/03"},
                                               {"ja_JP", "2003/08/09"},
                                               {"ja_JP", "03/8/9"},
                                               {"C", "8/9/03"},
                                               {"zh_CN", "2003/8/9"},
                                               {"hu_HU", "2003. 8. 9."},
                                               {"sv_SE", "2003-08-09"},
                                               {"ko_KR", "03. 8. 9."}}) {
    EXPECT_THAT(ReadDate(typed.Text, kThisYear, typed.Locale), Optional(kDay))
        << typed.Locale << " " << typed.Text;
  }
  EXPECT_EQ(platform::GetDateOrder("en_US"), DateOrder::MonthDayYear);
  EXPECT_EQ(platform::GetDateOrder("de_DE"), DateOrder::DayMonthYear);
  EXPECT_EQ(platform::GetDateOrder("ja_JP"), DateOrder::YearMonthDay);
  EXPECT_EQ(platform::GetDateOrder("C"), DateOrder::MonthDayYear);
  EXPECT_EQ(platform::GetDateSeparator("de_DE"), ".");
  EXPECT_EQ(platform::GetDateSeparator("en_US"), "/");
  EXPECT_EQ(platform::GetDateSeparator("C"), "/");
}

TEST(LocaleDateTest, TheLocaleOfDatesIsTheUsers) {
  struct Setting {
    const char* All;
    const char* Time;
    const char* Lang;
    DateOrder Order;
    const char* Separator;
  };
  for (const Setting& set :
       std::vector<Setting>{{"", "de_DE.UTF-8", "en_US.UTF-8", DateOrder::DayMonthYear, "."},
                            {"ja_JP.UTF-8", "de_DE.UTF-8", "en_US.UTF-8", DateOrder::YearMonthDay, "/"},
                            {"", "", "de_DE@euro", DateOrder::DayMonthYear, "."},
                            {"C.UTF-8", "de_DE.UTF-8", "de_DE.UTF-8", DateOrder::MonthDayYear, "/"},
                            {"", "POSIX", "de_DE.UTF-8", DateOrder::MonthDayYear, "/"},
                            {"", "", "", DateOrder::MonthDayYear, "/"}}) {
    const CEnvironmentVariable all("LC_ALL", set.All);
    const CEnvironmentVariable time("LC_TIME", set.Time);
    const CEnvironmentVariable lang("LANG", set.Lang);
    EXPECT_EQ(platform::GetDateOrder(), set.Order) << set.All << " " << set.Time << " " << set.Lang;
    EXPECT_EQ(platform::GetDateSeparator(), set.Separator);
  }
  const CEnvironmentVariable all("LC_ALL", std::nullopt);
  const CEnvironmentVariable time("LC_TIME", "fr_FR.UTF-8");
  EXPECT_THAT(ReadDate("samedi 9 août 2003", kThisYear), Optional(kDay));
}

TEST(LocaleDateTest, YearInFrontIsReadEverywhere) {
  for (const char* locale : {"en_US", "en_GB", "de_DE", "fr_FR", "ja_JP", "ar_EG", "C"}) {
    for (const char* text : {"2003-08-09", "2003-8-9", "2003/8/9", "20030809", " 2003.08.09 "}) {
      EXPECT_THAT(ReadDate(text, kThisYear, locale), Optional(kDay)) << locale << " " << text;
    }
  }
}

TEST(LocaleDateTest, MonthsMayBeNames) {
  for (const Typed& typed : std::vector<Typed>{{"en_US", "Aug 9, 2003"},
                                               {"en_US", "9 august 03"},
                                               {"en_US", "August 9th, 2003"},
                                               {"en_US", "Sat, Aug 9, 2003"},
                                               {"de_DE", "9. August 2003"},
                                               {"de_DE", "Samstag, 9. Aug. 2003"},
                                               {"fr_FR", "9 août 2003"},
                                               {"fr_FR", "samedi 9 AOUT 2003"},
                                               {"fr_FR", "Aug 9, 2003"},
                                               {"es_ES", "9 de agosto de 2003"},
                                               {"fi_FI", "9. elokuuta 2003"},
                                               {"ru_RU", "9 августа 2003 г."},
                                               {"pl_PL", "9 sierpnia 2003"},
                                               {"ja_JP", "2003年8月9日"},
                                               {"ja_JP", "2003年8月9日(土)"},
                                               {"ar_EG", "٩/٨/٢٠٠٣"},
                                               {"en_US", "2003 Aug 9"}}) {
    EXPECT_THAT(ReadDate(typed.Text, kThisYear, typed.Locale), Optional(kDay))
        << typed.Locale << " " << typed.Text;
  }
  EXPECT_THAT(ReadDate("4 sept 03", kThisYear, "en_US"), Optional(CalendarDate{2003, 9, 4}));
  EXPECT_THAT(ReadDate("4 mai 03", kThisYear, "de_DE"), Optional(CalendarDate{2003, 5, 4}));
  EXPECT_THAT(ReadDate("4 juin 03", kThisYear, "fr_FR"), Optional(CalendarDate{2003, 6, 4}));
  EXPECT_EQ(ReadDate("4 jui 03", kThisYear, "fr_FR"), std::nullopt) << "June or July";

  // "mar" is a Tuesday and a month.
  for (const Typed& typed : std::vector<Typed>{{"fr_FR", "mar. 5 mars 2024"},
                                               {"fr_FR", "5 mar 2024"},
                                               {"es_ES", "mar, 5 de marzo de 2024"},
                                               {"es_ES", "mar, 5 mar 2024"},
                                               {"it_IT", "mar 5 mar 2024"},
                                               {"it_IT", "martedì 5 marzo 2024"}}) {
    EXPECT_THAT(ReadDate(typed.Text, kThisYear, typed.Locale), Optional(CalendarDate{2024, 3, 5}))
        << typed.Locale << " " << typed.Text;
  }
  EXPECT_THAT(ReadDate("mar. 6 août 2024", kThisYear, "fr_FR"), Optional(CalendarDate{2024, 8, 6}));
  EXPECT_EQ(ReadDate("mars 6 août 2024", kThisYear, "fr_FR"), std::nullopt);
}

TEST(LocaleDateTest, ShortYearsSlideWithTheCentury) {
  const auto yearOf = [](const std::string& text, int thisYear) {
    const auto date = ReadDate(text, thisYear, "en_US");
    return date ? date->Year : 0;
  };
  EXPECT_EQ(yearOf("5/9/24", 2026), 2024);
  EXPECT_EQ(yearOf("5/9/46", 2026), 2046);
  EXPECT_EQ(yearOf("5/9/47", 2026), 1947);
  EXPECT_EQ(yearOf("5/9/99", 2026), 1999);
  EXPECT_EQ(yearOf("5/9/3", 2026), 2003);
  EXPECT_EQ(yearOf("5/9/00", 1999), 2000);
  EXPECT_EQ(yearOf("5/9/1899", 2026), 1899);
}

TEST(LocaleDateTest, DaysThatDoNotExistAndOtherTextsAreRefused) {
  for (const char* text : {"",
                           "   ",
                           "2/30/03",
                           "13/1/2003",
                           "30/8/2003",
                           "2/29/2003",
                           "0/9/2003",
                           "8/0/2003",
                           "8/9",
                           "8/9/2003/1",
                           "8/9/20033",
                           "8/9/203",
                           "123/9/2003",
                           "yesterday",
                           "Aug 2003",
                           "Aug Sep 2003",
                           "Foo 9, 2003",
                           "2003-13-01",
                           "2003-02-30",
                           "20030230",
                           "200308091",
                           "99999999999999999999",
                           "Aug 99, 2003",
                           "8x9x2003"}) {
    EXPECT_EQ(ReadDate(text, kThisYear, "en_US"), std::nullopt) << text;
  }
  EXPECT_THAT(ReadDate("2/29/04", kThisYear, "en_US"), Optional(CalendarDate{2004, 2, 29}));
  EXPECT_EQ(ReadDate(std::string(100000, '9'), kThisYear), std::nullopt);
  EXPECT_EQ(ReadDate("\xff\xfe 8/9", kThisYear), std::nullopt);
}
