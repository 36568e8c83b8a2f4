#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "platform/Ascii.h"
#include "platform/TextCompare.h"

using platform::EqualLetters;
using platform::GetFirstLetter;

TEST(TextCompare, LettersAreEqualInEitherCaseAndForm) {
  const std::vector<std::vector<std::string>> equal = {
      {"IMG_1.JPG", "img_1.jpg"},
      {"Zürich", "zu\xCC\x88rich", "ZÜRICH", "ZU\xCC\x88RICH"},
      {"\xC7\xB0", "J\xCC\x8C"},  // a small letter with a mark in one character, whose capital has none
      {"Σοφός", "ΣΟΦΌΣ"},
      {"각", "\xE1\x84\x80\xE1\x85\xA1\xE1\x86\xA8"},
      {"𐐀x", "𐐨X"},
      {"A\xFFÄ\xC3",
       "a\xFF"
       "a\xCC\x88\xC3"}};
  for (const auto& texts : equal) {
    for (const std::string& text : texts) EXPECT_TRUE(EqualLetters(texts.front(), text)) << text;
  }
  for (const auto& [a, b] : {std::pair("Maße", "Masse"), {"a", "ä"}, {"a\xFE", "a\xFF"}, {"[", "{"}}) {
    EXPECT_FALSE(EqualLetters(a, b)) << a;
  }
  EXPECT_TRUE(platform::IsAscii("12345678x"));
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
  EXPECT_EQ(GetFirstLetter("Apfel"), "a");
  EXPECT_EQ(GetFirstLetter("\x80x"), "\x80");
  EXPECT_EQ(GetFirstLetter(""), "");
}
