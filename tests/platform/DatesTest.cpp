#include <gtest/gtest.h>

#include "platform/LocaleDate.h"
#include "support/EnvironmentVariable.h"

using platform::CalendarDate;
using platform::ReadDate;

constexpr int kThisYear = 2026;

TEST(LocaleDate, ReadsWhatUsersOfALocaleType) {
  const std::pair<const char*, const char*> texts[] = {
      {"en_US", "8 9 2003"},         {"en_GB", "9.8.03"},
      {"ja_JP", "03/8/9"},           {"C", "8/9/03"},
      {"en_US", "2003-08-09"},       {"fr_FR", " 20030809 "},
      {"en_US", "Sat, Aug 9, 2003"}, {"en_US", "August 9th, 2003"},
      {"en_US", "2003 Aug 9"},       {"fr_FR", "samedi 9 AOUT 2003"},
      {"fr_FR", "Aug 9, 2003"},      {"es_ES", "9 de agosto de 2003"},
      {"fi_FI", "9. elokuuta 2003"}, {"ja_JP", "2003年8月9日(土)"},
      {"ar_EG", "٩/٨/٢٠٠٣"}};
  for (const auto& [locale, text] : texts) {
    EXPECT_EQ(ReadDate(text, kThisYear, locale), (CalendarDate{2003, 8, 9})) << locale << " " << text;
  }
  for (const auto& [text, year] : {std::pair("5/9/46", 2046), {"5/9/47", 1947}, {"5/9/1899", 1899}}) {
    EXPECT_EQ(ReadDate(text, kThisYear, "en_US"), (CalendarDate{year, 5, 9})) << text;
  }
  EXPECT_EQ(ReadDate("mar. 5 mars 2024", kThisYear, "fr_FR"), (CalendarDate{2024, 3, 5}));
  EXPECT_EQ(ReadDate("4 jui 03", kThisYear, "fr_FR"), std::nullopt) << "June or July";
  EXPECT_EQ(ReadDate("mars 6 août 2024", kThisYear, "fr_FR"), std::nullopt);
}

TEST(LocaleDate, LocaleOfDatesIsTheUsers) {
  const char* const settings[][4] = {{"", "de_DE.UTF-8", "en_US.UTF-8", "."},
                                     {"ja_JP.UTF-8", "de_DE.UTF-8", "en_US.UTF-8", "/"},
                                     {"C.UTF-8", "de_DE.UTF-8", "de_DE.UTF-8", "/"}};
  for (const auto& [forAll, forTime, language, separator] : settings) {
    const CEnvironmentVariable all("LC_ALL", forAll), time("LC_TIME", forTime), lang("LANG", language);
    EXPECT_EQ(platform::GetDateSeparator(), separator) << forAll << forTime << language;
  }
}

TEST(LocaleDate, DaysThatDoNotExistAndOtherTextsAreRefused) {
  const char* const texts[] = {
      "",           "2/30/03",      "13/1/2003",   "2/29/2003", "0/9/2003",     "8/0/2003",   "8/9",
      "8/9/2003/1", "8/9/20033",    "8/9/203",     "yesterday", "Aug Sep 2003", "2003-13-01", "20030230",
      "200308091",  "Aug 99, 2003", "Foo 9, 2003", "8x9x2003",  "\xff\xfe 8/9"};
  for (const char* text : texts) EXPECT_EQ(ReadDate(text, kThisYear, "en_US"), std::nullopt) << text;
  EXPECT_EQ(ReadDate(std::string(100000, '9'), kThisYear), std::nullopt);
}
