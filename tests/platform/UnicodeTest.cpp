#include <gtest/gtest.h>

#include "platform/Unicode.h"

using platform::CountCharacters;
using platform::EqualNoCase;
using platform::PreviousCharacter;
using platform::ToLower;
using platform::Truncated;

namespace {

TEST(Unicode, LowerCaseKeepsWhatIsNoLetterByteForByte) {
  EXPECT_EQ(ToLower("IMG_0042.JPG"), "img_0042.jpg");
  EXPECT_EQ(ToLower("ÅNGSTRÖM ЖУК ΣΟΦΙΑ 𐐀"), "ångström жук σοφια 𐐨");
  // Stray bytes, a cut character, an overlong form, a surrogate and a code beyond the last one.
  const std::string bad =
      "A\xFF\xC3"
      "B\xC0\xAF\xED\xA0\x80\xF5\x80\x80\x80Ä\xE2\x82";
  EXPECT_EQ(ToLower(bad),
            "a\xFF\xC3"
            "b\xC0\xAF\xED\xA0\x80\xF5\x80\x80\x80ä\xE2\x82");
}

TEST(Unicode, ComparesWithoutRegardToCase) {
  EXPECT_TRUE(EqualNoCase("/Photos/A.JPG", "/photos/a.jpg"));
  EXPECT_TRUE(EqualNoCase("ΟΔΟΣ", "οδος"));  // a small sigma of its own at the end
  EXPECT_FALSE(EqualNoCase("abc", "abcd"));
  EXPECT_FALSE(EqualNoCase("[", "{"));  // a case bit apart, but no letters
  EXPECT_TRUE(EqualNoCase("A\xFFÄ", "a\xFFä"));
  EXPECT_FALSE(EqualNoCase("a\xFE", "a\xFF"));
}

TEST(Unicode, CountsAndStepsByCharacters) {
  const std::string text = "aé€😀\xFF\xC3";
  EXPECT_EQ(CountCharacters(text), 6U);

  // Backward steps meet the boundaries that forward steps make.
  std::vector<std::size_t> boundaries = {0};
  while (boundaries.back() < text.size()) {
    boundaries.push_back(boundaries.back() + platform::CharacterLength(text, boundaries.back()));
  }
  for (std::size_t i = 1; i < boundaries.size(); ++i) {
    EXPECT_EQ(PreviousCharacter(text, boundaries[i]), boundaries[i - 1]);
  }
}

TEST(Unicode, TruncatesBetweenCharacters) {
  EXPECT_EQ(Truncated("aé€😀", 10), "aé€😀");
  EXPECT_EQ(Truncated("aé€😀", 5), "aé");
  EXPECT_EQ(Truncated("é", 0), "");
  EXPECT_EQ(Truncated("\x80\x80\x80\x80\x80", 3), "\x80\x80\x80");
}

TEST(Unicode, TellsValidText) {
  EXPECT_TRUE(platform::IsValidUtf8("aé€😀"));
  for (const char* bad : {"\x80", "\xC3", "\xC0\xAF", "\xED\xA0\x80", "\xF4\x90\x80\x80", "a\xE2\x82"}) {
    EXPECT_FALSE(platform::IsValidUtf8(bad));
  }
}

}  // namespace
