#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/Ascii.h"
#include "platform/TextCompare.h"
#include "platform/Unicode.h"

using platform::EqualLetters;
using platform::EqualNoCase;
using platform::GetFirstLetter;
using platform::ToLower;
using platform::Truncated;

TEST(Unicode, CaseChangesNothingThatIsNoLetter) {
  EXPECT_EQ(ToLower("ÅNGSTRÖM ЖУК ΣΟΦΙΑ 𐐀.JPG"), "ångström жук σοφια 𐐨.jpg");
  // Stray bytes, a cut character, an overlong form, a surrogate and a code beyond the last one.
  EXPECT_EQ(ToLower("\xFF\xC3 B\xC0\xAF\xED\xA0\x80\xF5\x80\x80\x80Ä\xE2\x82"),
            "\xFF\xC3 b\xC0\xAF\xED\xA0\x80\xF5\x80\x80\x80ä\xE2\x82");
  EXPECT_TRUE(EqualNoCase("/Photos/A.JPG", "/photos/a.jpg"));
  EXPECT_TRUE(EqualNoCase("ΟΔΟΣ", "οδος")) << "a small sigma of its own at the end";
  for (const auto& [a, b] : {std::pair("abc", "abcd"), {"[", "{"}, {"a\xFE", "a\xFF"}}) {
    EXPECT_FALSE(EqualNoCase(a, b)) << a;
  }
}

TEST(Unicode, TextIsCutBetweenCharacters) {
  EXPECT_EQ(platform::CountCharacters("aé€😀\xFF\xC3"), 6U);
  EXPECT_EQ(Truncated("aé€😀", 10), "aé€😀");
  EXPECT_EQ(Truncated("aé€😀", 5), "aé");
  EXPECT_EQ(Truncated("\x80\x80\x80\x80\x80", 3), "\x80\x80\x80");
  EXPECT_TRUE(platform::IsValidUtf8("aé€😀"));
  for (const char* bad : {"\x80", "\xC3", "\xC0\xAF", "\xED\xA0\x80", "\xF4\x90\x80\x80", "a\xE2\x82"}) {
    EXPECT_FALSE(platform::IsValidUtf8(bad));
  }
}

TEST(TextCompare, LettersAreEqualInEitherCaseAndForm) {
  const std::vector<std::vector<std::string>> equal = {
      {"IMG_1.JPG", "img_1.jpg"},
      {"Zürich", "zu\xCC\x88rich", "ZÜRICH", "ZU\xCC\x88RICH"},
      {"\xC7\xB0", "J\xCC\x8C"},  // a small letter with a mark in one character, whose capital has none
      {"Σοφός", "ΣΟΦΌΣ"},
      {"각", "\xE1\x84\x80\xE1\x85\xA1\xE1\x86\xA8"},
      {"𐐀x", "𐐨X"},
      {"A\xFFÄ\xC3", "a\xFFä\xC3"}};
  for (const auto& texts : equal) {
    for (const std::string& text : texts) EXPECT_TRUE(EqualLetters(texts.front(), text)) << text;
  }
  for (const auto& [a, b] : {std::pair("Maße", "Masse"), {"a", "ä"}, {"a\xFE", "a\xFF"}, {"[", "{"}}) {
    EXPECT_FALSE(EqualLetters(a, b)) << a;
  }
  EXPECT_FALSE(platform::IsAscii("12345678\x80"));
  EXPECT_FALSE(platform::IsAscii("1234567\x80"));
}

TEST(TextCompare, TitlesOfOneFirstLetterStandTogether) {
  const std::vector<std::string> ordered = {"",        "10",      "Apfel",        "Azur",  "ähre",
                                            "Äpfel 1", "äpfel2",  "A\xCC\x88sop", "b\xFC", "Madam",
                                            "Mädchen", "Madeira", "Zug",          "\x80",  "жук"};
  std::vector<std::string> keys;
  for (const std::string& text : ordered) keys.push_back(platform::MakeLetterOrderKey(text));
  for (std::size_t i = 1; i < keys.size(); ++i) EXPECT_LT(keys[i - 1], keys[i]) << ordered[i];
  EXPECT_EQ(platform::MakeLetterOrderKey("ÄPFEL"), platform::MakeLetterOrderKey("a\xCC\x88pfel"));
  EXPECT_EQ(GetFirstLetter("A\xCC\x88sop"), "ä");
  EXPECT_EQ(GetFirstLetter("\x80x"), "\x80");
}
