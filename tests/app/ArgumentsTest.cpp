#include <gmock/gmock.h>

#include "app/Arguments.h"

using testing::ElementsAre;

TEST(Arguments, PathsAreKeptByteForByteAndUrlsDecoded) {
  const struct {
    const char* Word;
    const char* Path;
  } kCases[] = {
      {"\xff\n.jpg", "\xff\n.jpg"},
      {"-", "-"},
      {"file:///p/a%20b%25%C3%bc%FF%0A.jpg", "/p/a b%\xc3\xbc\xff\n.jpg"},
      {"FILE://LocalHost/p/x%2fy", "/p/x/y"},
      {"file:/p", "/p"},
      {"file:///p/%00%zz%4", "/p/%00%zz%4"},
      {"file://host/p%20", "file://host/p%20"},
      {"file:p%20", "file:p%20"},
  };
  for (const auto& [word, path] : kCases) EXPECT_THAT(ParseArguments({word, ""}).Paths, ElementsAre(path));
}

TEST(Arguments, OptionsEndAtTwoHyphens) {
  const Arguments all = ParseArguments({"a", "--version", "--help", "-x", "--helpful", "b"});
  EXPECT_TRUE(all.WantsHelp && all.WantsVersion && !all.ActiveDisk);
  EXPECT_EQ(all.Unknown, "-x");
  EXPECT_THAT(all.Paths, ElementsAre("a", "b"));

  const Arguments none = ParseArguments({"--", "--help", "/activedisk", "--"});
  EXPECT_TRUE(!none.WantsHelp && !none.ActiveDisk && none.Unknown.empty());
  EXPECT_THAT(none.Paths, ElementsAre("--help", "/activedisk", "--"));
}

TEST(Arguments, RemovableDiskIsChosenByTheTextAnywhere) {
  EXPECT_FALSE(ParseArguments({"/ACTIVEDISK"}).ActiveDisk);
  for (const char* word : {"/activedisk", "--really/activedisk-please", "/p/activedisk/a"}) {
    const Arguments arguments = ParseArguments({word});
    EXPECT_TRUE(arguments.ActiveDisk && arguments.Unknown.empty()) << word;
    EXPECT_EQ(arguments.Paths.size(), word[1] == 'p' ? 1U : 0U);
  }
}
