#include <gmock/gmock.h>

#include <limits>
#include <regex>

#include "base/Guid.h"
#include "base/Texts.h"
#include "base/Times.h"
#include "resources/StringTable.h"
#include "support/EnvironmentVariable.h"
#include "support/ScratchFolder.h"

namespace {

TEST(StringTable, HasATextForEveryId) {
  const std::string source =
      ReadBytes((std::filesystem::path(__FILE__).parent_path() / "../../src/resources/StringIds.h").string());
  const std::regex line("\n +(\\w+) = (\\d+),");
  int count = 0;
  for (std::sregex_iterator it(source.begin(), source.end(), line), end; it != end; ++it, ++count) {
    EXPECT_NE(FindString(static_cast<StringId>(std::stoi((*it)[2]))), nullptr) << (*it)[1];
  }
  EXPECT_GT(count, 150);
}

TEST(Texts, ExpandTheProductInTheTemplateAlone) {
  EXPECT_EQ(LoadExpandedString("%1|%2|%3"), "Vellumar Photo Organizer|1.2.2|Vellumar");
  EXPECT_EQ(LoadExpandedString("%%1 %4 %d 100%"), "%Vellumar Photo Organizer %4 %d 100%");
  EXPECT_EQ(LoadExpandedString(StringId::RegistryKey), "Software\\Vellumar Photo Organizer");
  // The template is expanded first, so a "%1" in what is filled in stays.
  EXPECT_EQ(Format(LoadExpandedString(StringId::FatalProblem), "no %1 and no %s"),
            "The following problem has occurred:\n\n    no %1 and no %s\n\n"
            "Vellumar Photo Organizer will now exit.");
  EXPECT_EQ(LoadExpandedString(static_cast<StringId>(109)), "");
  EXPECT_EQ(GetVersionText({"P", "C", {1, 2, 0, 43}, ""}), "1.2");
  EXPECT_EQ(GetVersionText({"P", "C", {1, 0, 3, 43}, ""}), "1.0.3");
  EXPECT_EQ(GetVersionText({"P", "C", {2, 0, 0, 43}, "Beta"}), "2.0 (Beta Build 43)");
}

TEST(Texts, FormatPlaceholdersAndSurviveWrongOnes) {
  EXPECT_EQ(FormatString(StringId::RollLabel, 3, 1, 20U), "Roll 3 - 1 of 20");
  EXPECT_EQ(FormatString(StringId::SizeInMegabytes, 3.14159), "3.14 MB");
  EXPECT_EQ(Format("%08x %X %u", -1, 255, -1), "ffffffff FF 4294967295");
  EXPECT_EQ(Format("%d %u", std::numeric_limits<std::int64_t>::min(), std::uint64_t{1} << 63),
            "-9223372036854775808 9223372036854775808");
  EXPECT_EQ(Format("[%5d|%-5d|%05d|%3d]", 42, 42, -42, 12345), "[   42|42   |-0042|12345]");
  EXPECT_EQ(Format("[%4s|%-4s|%.3s|%.1s]", "é", "é", "aé€", "é"), "[   é|é   |aé|]");
  EXPECT_EQ(Format("%c%c %.2f 100%%", 'a', 0, -0.005), "a -0.01 100%");
  EXPECT_EQ(Format("%d of %d|%s", 1, "x"), "1 of |");
  EXPECT_EQ(Format("%s|%d|%f|%c|%x", 5, "text", "text", "text", 1.5), "||||");
  EXPECT_EQ(Format("%n %q %", 1), "%n %q %");
  EXPECT_EQ(Format("%-0099999999999999999999d", 1).size(), 99U);
  EXPECT_EQ(Format("%.99999f", std::numeric_limits<double>::max()).size(), 309U + 1 + 99);
  EXPECT_EQ(Format("%s %%s %s", "%s", "%d"), "%s %s %d");
}

TEST(Times, FollowTheLocalCalendar) {
  const CEnvironmentVariable zone("TZ", "America/New_York");
  constexpr std::int32_t kNewYear = 1041397200;  // 2003-01-01 00:00 there
  EXPECT_EQ(FormatDate(kNewYear, false), "Jan 1, 2003");
  EXPECT_EQ(FormatDate(kNewYear - 1, true), "Tue, Dec 31, 2002");

  std::tm summer = LocalTime(1057032000);  // 2003-07-01 00:00
  EXPECT_EQ(summer.tm_hour, 0);
  EXPECT_EQ(TimeFromLocal(summer), 1057032000 + 3600);
}

TEST(Times, NeverWrap) {
  const CEnvironmentVariable zone("TZ", "UTC");
  constexpr std::int64_t kLast = std::numeric_limits<std::int32_t>::max();
  EXPECT_EQ(TimeFromFile(kLast), kLast);
  EXPECT_EQ(TimeFromFile(kLast + 1), 0);
  EXPECT_EQ(TimeFromFile(-1), 0);
  std::tm date = LocalTime(static_cast<std::int32_t>(kLast));
  EXPECT_EQ(TimeFromLocal(date), kLast);
  ++date.tm_sec;
  EXPECT_EQ(TimeFromLocal(date), 0);
  EXPECT_EQ(TimeFromLocal(std::tm{}), 0);  // the day before 1 January 1900
  EXPECT_EQ(FormatDate(std::numeric_limits<std::int32_t>::min(), false), "Dec 13, 1901");
}

TEST(Guid, GoesThroughItsBytes) {
  const CGuid made = CGuid::Generate();
  EXPECT_TRUE(made.IsValid());
  EXPECT_NE(CGuid::Generate(), made);
  EXPECT_EQ(CGuid::FromBytes(made.ToBytes()), made);
  const std::vector<std::uint8_t> bytes = {0,   17,  34,  51,  68,  85,  102, 119,
                                           136, 153, 170, 187, 204, 221, 238, 255};
  EXPECT_EQ(CGuid::FromBytes(bytes).ToString(), "00112233-4455-6677-8899-aabbccddeeff");
  EXPECT_FALSE(CGuid::FromBytes(std::vector<std::uint8_t>(17)).IsValid());
}

}  // namespace
