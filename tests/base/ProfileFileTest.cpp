#include <gtest/gtest.h>

#include "base/ProfileFile.h"

namespace {

std::string After(std::string_view text, std::string_view key, std::string_view value) {
  CProfileFile file(text);
  file.SetValue("prefs", key, value);
  return file.GetText();
}

TEST(ProfileFile, ChangesOneLineAndKeepsAllOthers) {
  const char* const cases[][2] = {
      {"; x\r\n[other]\r\nSort=1\r\n[Prefs]\r\nfree text\r\n SORT = 2 \r\nSort=3\r\n[last]\r\nSort=4",
       "; x\r\n[other]\r\nSort=1\r\n[Prefs]\r\nfree text\r\n SORT =9\r\nSort=3\r\n[last]\r\nSort=4"},
      {"", "[prefs]\nSort=9\n"},
      {"[a]\nx=1", "[a]\nx=1\n[prefs]\nSort=9\n"},
      {"[PREFS]\r\nx=1\r\n\r\n[b]\r\n", "[PREFS]\r\nx=1\r\nSort=9\r\n\r\n[b]\r\n"},
      {"[prefs]\n[b]\n[prefs]\nSort=2\n", "[prefs]\n[b]\n[prefs]\nSort=9\n"}};
  for (const auto& [before, after] : cases) EXPECT_EQ(After(before, "Sort", "9"), after);
  EXPECT_EQ(After("", "Login", "ann\n[other]\nx=1"), "[prefs]\nLogin=ann\n");
  for (const char* key : {"", "a=b", "[a", ";a", " a", "a\nb"})
    EXPECT_EQ(After("x\n", key, "1"), "x\n") << key;
}

}  // namespace
