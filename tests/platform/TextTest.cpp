#include <gtest/gtest.h>

#include "platform/Ascii.h"
#include "platform/TextCompare.h"
#include "platform/Unicode.h"

using platform::EqualLetters;
using platform::EqualNoCase;
using platform::MakeLetterOrderKey;
using platform::Truncated;

TEST(Unicode, OnlyLettersChangeCaseAndTextIsCutBetweenCharacters) {
  EXPECT_EQ(platform::ToLower("ÅNGSTRÖM ЖУК ΣΟΦΙΑ 𐐀.JPG"), "ångström жук σοφια 𐐨.jpg");
  // Stray bytes, a cut character, an overlong form, a surrogate and a code beyond the last one.
  EXPECT_EQ(platform::ToLower("\xFF\xC3 B\xC0\xAF\xED\xA0\x80\xF5\x80\x80\x80Ä\xE2\x82"),
            "\xFF\xC3 b\xC0\xAF\xED\xA0\x80\xF5\x80\x80\x80ä\xE2\x82");
  EXPECT_TRUE(EqualNoCase("/Photos/A.JPG", "/photos/a.jpg"));
  EXPECT_TRUE(EqualNoCase("ΟΔΟΣ", "οδος")) << "a small sigma of its own at the end";
  EXPECT_FALSE(EqualNoCase("abc", "abcd") || EqualNoCase("[", "{") || EqualNoCase("a\xFE", "a\xFF"));

  EXPECT_EQ(platform::CountCharacters("aé€😀\xFF\xC3"), 6U);
  EXPECT_EQ(Truncated("aé€😀", 10), "aé€😀");
  EXPECT_EQ(Truncated("aé€😀", 5), "aé");
  EXPECT_EQ(Truncated("\x80\x80\x80\x80\x80", 3), "\x80\x80\x80");
  EXPECT_TRUE(platform::IsValidUtf8("aé€😀"));
  EXPECT_FALSE(platform::IsValidUtf8("a\xE2\x82"));
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
  for (const char* text : {"12345678\x80", "1234567\x80"}) EXPECT_FALSE(platform::IsAscii(text));
}

TEST(TextCompare, TitlesOfOneFirstLetterStandTogether) {
  const std::vector<std::string> ordered = {"",        "10",      "Apfel",        "Azur",  "ähre",
                                            "Äpfel 1", "äpfel2",  "A\xCC\x88sop", "b\xFC", "Madam",
                                            "Mädchen", "Madeira", "Zug",          "\x80",  "жук"};
  for (std::size_t i = 1; i < ordered.size(); ++i) {
    EXPECT_LT(MakeLetterOrderKey(ordered[i - 1]), MakeLetterOrderKey(ordered[i])) << ordered[i];
  }
  EXPECT_EQ(MakeLetterOrderKey("ÄPFEL"), MakeLetterOrderKey("a\xCC\x88pfel"));
  EXPECT_EQ(platform::GetFirstLetter("A\xCC\x88sop"), "ä");
  EXPECT_EQ(platform::GetFirstLetter("\x80x"), "\x80");
}
