#include <gmock/gmock.h>

#include "base/StartRequest.h"

using State = CStartRequestParser::State;
using namespace std::string_literals;

TEST(StartRequest, ComesThroughInAnyPieces) {
  const std::string bytes = EncodeStartRequest({"token_TIME17", {"/a b", "relative", "/b\xfc\n", "/"}});
  for (std::size_t cut = 0; cut <= bytes.size(); ++cut) {
    CStartRequestParser parser;
    EXPECT_EQ(parser.Add(bytes.substr(0, cut)), cut < bytes.size() ? State::Unfinished : State::Whole);
    ASSERT_EQ(parser.Add(bytes.substr(cut)), State::Whole);
    EXPECT_EQ(parser.GetRequest().ActivationToken, "token_TIME17");
    EXPECT_THAT(parser.GetRequest().Paths, testing::ElementsAre("/a b", "/b\xfc\n", "/"));
    EXPECT_EQ(parser.Add("x"), State::Bad) << "nothing follows a request";
  }
}

TEST(StartRequest, ForeignBytesAreRefused) {
  const auto packed = [](const std::string& body) {
    return std::string{0, 0, static_cast<char>(body.size() >> 8U), static_cast<char>(body.size())} + body;
  };
  for (const std::string& bytes :
       {"GET / HTTP/1.1\r\n"s, packed(""), packed("token"), packed("two words\0"s), packed("\0relative\0"s),
        packed("\0\0"s), packed("\0/cut"s), packed("\0"s) + "\0"s, "\0\x40\0\x01"s, "\xff\xff\xff\xff"s,
        packed(std::string(2000, 't') + '\0')}) {
    CStartRequestParser parser;
    EXPECT_EQ(parser.Add(bytes), State::Bad) << testing::PrintToString(bytes);
  }
}
