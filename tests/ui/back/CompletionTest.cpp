#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <vector>

#include "ui/back/Completion.h"
#include "ui/back/TokenList.h"

namespace {

const std::vector<std::string> kChoices = {"Émile", "lake", "Lakeside", "Łódź", "New York", "Straße"};

std::string CompleteList(const std::string& text, std::size_t caret) {
  return CCompletion(kChoices, ",;").Complete(text, caret);
}
std::string CompleteList(const std::string& text) { return CompleteList(text, text.size()); }

std::string CompleteWhole(const std::string& text) {
  return CCompletion(kChoices).Complete(text, text.size());
}

}  // namespace

TEST(TokenListTest, TokensEndAtEitherSeparatorAndLoseTheirBlanks) {
  const CTokenList list("  Anna ;Ben,, Carla van der Meer , ;", ",;");
  EXPECT_EQ(list.GetTokens(), (std::vector<std::string>{"Anna", "Ben", "Carla van der Meer"}));
  EXPECT_EQ(list.GetText(), "Anna, Ben, Carla van der Meer");
  EXPECT_EQ(CTokenList(" , ;", ",;").GetText(), "");
  EXPECT_EQ(GetListSeparators(), ",;");
}

TEST(TokenListTest, TokensAreFoundAndRemovedWithoutRegardToCase) {
  CTokenList list("Émile, lake, LAKE", ",;");
  EXPECT_TRUE(list.Contains("émile"));
  EXPECT_FALSE(list.Contains("mile"));
  list.Remove("Lake");
  list.Add("Anna");
  EXPECT_EQ(list.GetText(), "Émile, Anna");
}

TEST(CompletionTest, FirstChoiceThatBeginsWithTheTokenWins) {
  EXPECT_EQ(CompleteWhole("new"), " York");
  EXPECT_EQ(CompleteWhole("New Y"), "ork");
  EXPECT_EQ(CompleteWhole("la"), "ke") << "the first one, though others are longer";
  EXPECT_EQ(CompleteWhole("lake"), "") << "the first one is no longer than what was typed";
  EXPECT_EQ(CompleteWhole("lakes"), "ide");
  EXPECT_EQ(CompleteWhole("york"), "") << "inside of a choice";
  EXPECT_EQ(CompleteWhole(""), "");
  EXPECT_EQ(CompleteWhole("a, new"), "") << "one text, no list";
}

TEST(CompletionTest, LettersOfEveryLanguageAreComparedWithoutCase) {
  EXPECT_EQ(CompleteWhole("émi"), "le");
  EXPECT_EQ(CompleteWhole("łó"), "dź");
  EXPECT_EQ(CompleteWhole("STRA"), "ße");
  // The sign of Kelvin takes three bytes, the small letter one.
  EXPECT_EQ(CCompletion({"\xE2\x84\xAAnut"}).Complete("kn", 2), "ut");
  EXPECT_EQ(CCompletion({"knut"}).Complete("\xE2\x84\xAAn", 4), "ut");
  EXPECT_EQ(CCompletion({"Zu\xCC\x88rich"}).Complete("zü", 3), "rich");
  EXPECT_EQ(CompleteWhole("e\xCC\x81m"), "ile");
}

TEST(CompletionTest, ACompletedTokenTakesOverTheSpellingOfItsChoice) {
  CCompletion completion(kChoices, ",;");
  EXPECT_EQ(completion.TakeOverSpelling(" LAKE ;new york"), " LAKE ;new york") << "nothing was completed";
  completion.Complete("la", 2);
  completion.Complete("la, new", 7);
  EXPECT_EQ(completion.TakeOverSpelling(" LAKE ;new york,, Newt"), " lake ;New York,, Newt");
  completion.Complete("LAKE", 4);
  EXPECT_EQ(completion.TakeOverSpelling("LAKE, new york"), "LAKE, New York") << "typed to its end";
}

TEST(CompletionTest, InAListTheTokenBeforeTheCaretIsCompleted) {
  EXPECT_EQ(CompleteList("boats,  new"), " York");
  EXPECT_EQ(CompleteList("boats; new"), " York");
  EXPECT_EQ(CompleteList("new, boats", 3), " York");
  EXPECT_EQ(CompleteList("boats, "), "");
  EXPECT_EQ(CompleteList("", 0), "");
  EXPECT_EQ(CompleteList(",", 0), "");
  EXPECT_EQ(CompleteList("newt", 3), "") << "the token goes on behind the caret";
  EXPECT_EQ(CompleteList("new", 9), "") << "outside";
}

TEST(CompletionTest, TenThousandChoicesKeepUpWithTyping) {
  std::vector<std::string> choices;
  for (int i = 0; i < 10000; ++i) choices.push_back("Ünterwegs " + std::to_string(i));
  CCompletion completion(choices, ",;");
  const auto start = std::chrono::steady_clock::now();
  constexpr int kKeys = 100;
  for (int i = 0; i < kKeys; ++i) EXPECT_EQ(completion.Complete("a, ünterwegs 999", 17), "");
  for (int i = 0; i < kKeys; ++i) EXPECT_EQ(completion.Complete("a, ünterwegs 9998", 18), "");
  const std::chrono::duration<double, std::milli> spent = std::chrono::steady_clock::now() - start;
  RecordProperty("MicrosecondsPerKey", static_cast<int>(spent.count() * 1000 / (2 * kKeys)));
}
