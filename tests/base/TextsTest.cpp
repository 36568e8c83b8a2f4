#include <gmock/gmock.h>

#include <limits>
#include <regex>

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
  EXPECT_EQ(LoadExpandedString("%1|%2|%3|%%1 %4 %d 100%"),
            "Vellumar Photo Organizer|1.2.2|Vellumar|%Vellumar Photo Organizer %4 %d 100%");
  // The template is expanded first, so a "%1" in what is filled in stays.
  EXPECT_EQ(Format(LoadExpandedString(StringId::FatalProblem), "no %1 and no %s"),
            "The following problem has occurred:\n\n    no %1 and no %s\n\n"
            "Vellumar Photo Organizer will now exit.");
}

TEST(Texts, FormatPlaceholdersAndSurviveWrongOnes) {
  EXPECT_EQ(Format("%08x %X %u", -1, 255, -1), "ffffffff FF 4294967295");
  EXPECT_EQ(Format("%d %u", std::numeric_limits<std::int64_t>::min(), std::uint64_t{1} << 63),
            "-9223372036854775808 9223372036854775808");
  EXPECT_EQ(Format("[%5d|%-5d|%05d|%3d]", 42, 42, -42, 12345), "[   42|42   |-0042|12345]");
  EXPECT_EQ(Format("[%4s|%-4s|%.3s|%.1s]", "é", "é", "aé€", "é"), "[   é|é   |aé|]");
  EXPECT_EQ(Format("%c%c %.2f 100%%", 'a', 0, -0.005), "a -0.01 100%");
  EXPECT_EQ(Format("%d of %d|%s", 1, "x"), "1 of |");
  EXPECT_EQ(Format("%s|%d|%f|%c|%x", 5, "text", "text", "text", 1.5), "||||");
  EXPECT_EQ(Format("%-0099999999999999999999d %n %q %", 1).size(), 99U + 8);
  EXPECT_EQ(Format("%s %%s %s", "%s", "%d"), "%s %s %d");
}

TEST(Times, FollowTheLocalCalendarAndNeverWrap) {
  const CEnvironmentVariable zone("TZ", "America/New_York");
  constexpr std::int32_t kNewYear = 1041397200, kLast = std::numeric_limits<std::int32_t>::max();
  EXPECT_EQ(FormatDate(kNewYear, false), "Jan 1, 2003");
  EXPECT_EQ(FormatDate(kNewYear - 1, true), "Tue, Dec 31, 2002");
  EXPECT_EQ(TimeFromLocal(LocalTime(1057032000)), 1057032000 + 3600) << "summer";
  std::tm date = LocalTime(kLast);
  EXPECT_EQ(TimeFromLocal(date), kLast);
  ++date.tm_sec;
  EXPECT_EQ(TimeFromLocal(date), 0);
  EXPECT_EQ(TimeFromFile(-1), 0);
}

}  // namespace
