#include <gmock/gmock.h>

#include "base/Format.h"
#include "sharing/HttpRequest.h"
#include "sharing/HttpUrl.h"
#include "sharing/ScriptedServer.h"

using testing::ElementsAre;
using Found = CHttpResponseParser::Found;
using Ending = Reply::Ending;

namespace {

const std::string kOk = "HTTP/1.1 200 OK\r\nContent-Length: 5\r\n\r\nhello";
constexpr int kShort = 50;  // milliseconds, for what times out

std::string Describe(int status, std::uint32_t length) {
  return Format("%d %d", status, length == kNoContentLength ? -1 : static_cast<int>(length));
}

/// Notes what it is told. `OnEvent` may do anything to the request.
class CNotes : public CHttpListener {
 public:
  void OnConnect(bool connected, int error) override {
    Note(connected ? "connect" : "end " + std::to_string(error));
  }
  void OnResponse(int status, std::uint32_t length) override { Note(Describe(status, length)); }
  void OnData(const char* data, std::uint32_t length) override {
    Body.append(data, length);
    if (OnEvent) OnEvent("data");
  }
  void Note(const std::string& event) {
    Events += event + "; ";
    if (OnEvent) OnEvent(event);
  }

  std::function<void(const std::string& event)> OnEvent;
  std::string Events, Body;
};

class HttpRequestTest : public CEventLoopFixture {
 protected:
  HttpRequestTest() { Request->Create(&Notes); }

  bool Get(const std::string& url) const { return Request->Get(url) && Request->Send(nullptr, 0); }
  /// Only a request that isn't started takes a new address.
  void RunToEnd() const {
    while (Request && !Request->Get("127.0.0.1")) platform::HandleEvents(1000);
  }

  CNotes Notes;
  std::unique_ptr<CHttpRequest> Request = std::make_unique<CHttpRequest>();
};

TEST(HttpUrlTest, AddressesAreCutAndValuesEscaped) {
  const std::pair<const char*, const char*> rows[] = {
      {"www.host.org", "www.host.org www.host.org 80 /"},
      {"http://host/a?b=c", "host host 80 /a?b=c"},
      {"host:8080/x:y/", "host:8080 host 8080 /x:y/"},
      {"/path", "refused"},
      {"host:80\r\nX: y/", "refused"},
  };
  for (const auto& [address, parts] : rows) {
    const auto url = SplitUrl(address);
    EXPECT_EQ(url ? Format("%s %s %d %s", url->Authority, url->Host, url->Port, url->Target) : "refused",
              parts);
  }
  const std::string plain = "\x01\x1F\"*,-.09?@AZ_az~";
  EXPECT_EQ(EscapeQueryValue(plain), plain);
  EXPECT_EQ(EscapeQueryValue(" '!#$%&()/:;[\\]^`{|}+<=>\x7F\xC3\xFF"),
            "%20%27%21%23%24%25%26%28%29%2F%3A%3B%5B%5C%5D%5E%60%7B%7C%7D%2B%3C%3D%3E%7F%C3%FF");
}

TEST(HttpResponseParserTest, HeadersAreFoundHoweverTheBytesAreCut) {
  std::string many = "HTTP/1.0 200\r\n";
  for (int i = 1; i <= 64; ++i) many += Format("H%d: v\r\n", i);
  const std::string ok = "HTTP/1.1 200 OK\r\n";
  const std::string largest = ok + std::string(CHttpResponseParser::kLargestBlock - ok.size() - 4, 'x');
  const std::pair<std::string, const char*> rows[] = {
      {kOk, "200 5 hello"},
      {"HTTP/1.1 100 Go\r\nContent-Length: 9\r\n\r\nHTTP/1.1 102\r\n\r\n" + kOk, "200 5 hello"},
      {"HTTP/1.1 99999999999999\r\n\r\n", "0 -1 "},
      {ok + "no colon\r\ncontent-LENGTH:   7 \r\nContent-Length: 8\r\n\r\n", "200 7 "},
      {ok + "A: b\nContent-Length: 7\nC: d\r\n\r\n", "200 7 "},
      {ok + "Content-Length: 12abc\r\n\r\n", "200 -1 "},
      {ok + "Content-Length: 4294967297\r\n\r\n", "200 -1 "},
      {many + "Content-Length: 1\r\n\r\nbody", "200 -1 body"},
      {"SSH-2.0\r\n\r\n" + kOk, "no HTTP"},
      {largest + "\r\n\r\nbody", "200 -1 body"},
      {largest + "x\r\n\r\nbody", "no HTTP"},
      {std::string(CHttpResponseParser::kLargestBlock + 1, 'x'), "no HTTP"},
  };
  for (const auto& [bytes, expected] : rows) {
    for (std::size_t cut = 0; cut < bytes.size(); cut += 1 + bytes.size() / 1000) {
      CHttpResponseParser parser;
      Found found = Found::Nothing;
      std::string body;
      for (const std::string& piece : {bytes.substr(0, cut), bytes.substr(cut)}) {
        std::string_view rest = piece;
        if (found == Found::Nothing) found = parser.Take(rest);
        body += rest;
      }
      const std::string headers = Describe(parser.GetStatus(), parser.GetContentLength());
      ASSERT_EQ(found == Found::Headers ? headers + " " + body : "no HTTP", expected) << bytes << cut;
    }
  }
}

TEST_F(HttpRequestTest, TheListenerHearsHowARequestEnds) {
  const std::string head = "HTTP/1.1 200 OK\r\nContent-Length: ";
  const int patient = 60000;
  const std::tuple<Reply, int, const char*, const char*> rows[] = {
      {{kOk + " and more"}, patient, "connect; 200 5; ", "hello"},
      {{head + "0\r\n\r\nmore"}, patient, "connect; 200 0; ", ""},
      {{"HTTP/1.1 200\r\n\r\nall", Ending::Close}, patient, "connect; 200 -1; end 0; ", "all"},
      {{"", Ending::Close}, patient, "connect; end 0; ", ""},
      {{"", Ending::Reset}, patient, "connect; end 10054; ", ""},
      {{""}, kShort, "connect; end 10050; ", ""},
      {{head + "50\r\n\r\nhalf"}, kShort, "connect; 200 50; end 10050; ", "half"},
      {{""}, 0, "connect; ", ""},
      {{"220 ready\r\n\r\n"}, patient, "connect; 500 0; ", ""},
  };
  for (const auto& [reply, patience, events, body] : rows) {
    const CScriptedServer server({reply});
    Notes.Events = Notes.Body = "";
    Request->SetResponseTimeout(patience);
    ASSERT_TRUE(Get(server.GetHost()));
    RunToEnd();
    EXPECT_EQ(Notes.Events + Notes.Body, std::string(events) + body) << reply.Bytes;
  }
}

TEST_F(HttpRequestTest, AServerThatCannotBeReachedIsTold) {
  const std::string gone = CScriptedServer({Reply{}}).GetHost();
  EXPECT_TRUE(Get(gone));
  RunToEnd();
  const CScriptedServer busy({});
  Request->SetConnectTimeout(kShort);
  EXPECT_TRUE(Get(busy.GetHost()));
  RunToEnd();
  EXPECT_EQ(Notes.Events, "end 10061; end 10060; ");
  for (const char* url : {"", "/x", "no such host", "255.255.255.255"}) EXPECT_FALSE(Get(url)) << url;
}

TEST_F(HttpRequestTest, AServerThatTakesNothingIsGivenUp) {
  const CScriptedServer server({Reply{}});
  const std::string body(std::size_t{20} << 20, 'x');
  CHttpRequest first;  // as long as this one isn't answered the server reads no other
  ASSERT_TRUE(first.Create(&Notes) && first.Get(server.GetHost()) && first.Send(nullptr, 0));
  Request->SetResponseTimeout(kShort);
  ASSERT_TRUE(Request->Post(server.GetHost(), 20 << 20) && Request->Send(body.data(), body.size()));
  RunToEnd();
  EXPECT_EQ(Notes.Events, "connect; connect; end 10050; ");
}

TEST_F(HttpRequestTest, ARequestIsWrittenAsItWasDescribed) {
  CScriptedServer server({{kOk}});
  const std::string host = server.GetHost("localhost");
  EXPECT_FALSE(Request->AddHeader("A", "b") || Request->AddQueryParam("a", "b") || Request->Send(nullptr, 0));
  ASSERT_TRUE(Request->Get(host + "/a?b=c") && Request->AddQueryParam("d", "") &&
              Request->AddHeader("A", "1"));
  EXPECT_FALSE(Request->AddQueryParam("", "x") || Request->AddHeader("", "x") || Request->AddHeader("x", ""));
  EXPECT_FALSE(Request->AddHeader("X", "a\r\nEvil: b") || Request->AddHeader("X\nY", "a"));
  ASSERT_TRUE(Request->Send("ignored", 7));
  EXPECT_FALSE(Request->Send(nullptr, 0) || Request->AddHeader("B", "3") || Request->Get(host));
  RunToEnd();

  // A body in pieces, of which the last is too long and comes when the connection stands.
  ASSERT_TRUE(Request->Post(host, 10) && Request->AddQueryParam("a", "b") && Request->Send("0123", 4));
  Notes.OnEvent = [&](const std::string& event) {
    EXPECT_TRUE(event != "connect" || Request->Send("456789abc", 9));
  };
  RunToEnd();
  const std::string end = " HTTP/1.1\r\nHost: " + host + "\r\n";
  EXPECT_THAT(server.GetRequests(), ElementsAre("GET /a?b=c&d=" + end + "A: 1\r\n\r\n",
                                                "POST /?a=b" + end + "Content-Length: 10\r\n\r\n0123456789"));
}

// Whatever the listener does in a call, nothing of the old connection comes afterwards.
TEST_F(HttpRequestTest, AListenerMayEndOrRenewTheRequestInAnyCall) {
  const std::pair<std::string, Reply> rows[] = {{"connect", {kOk}},
                                                {"200 5", {kOk}},
                                                {"data", {kOk}},
                                                {"500 0", {"no\r\n\r\n"}},
                                                {"end 0", {"", Ending::Close}}};
  for (const auto& [during, answer] : rows) {
    for (const std::string action : {"reset", "renew", "destroy"}) {
      const CScriptedServer server({answer, {kOk}});
      Request = std::make_unique<CHttpRequest>();
      Request->Create(&Notes);
      bool isDone = false;
      Notes.OnEvent = [&](const std::string& event) {
        if (event != during || std::exchange(isDone, true)) return;
        Notes.Events = Notes.Body = "";
        if (action == "destroy") {
          Request.reset();
          return;
        }
        Request->Reset();
        EXPECT_TRUE(action != "renew" || Get(server.GetHost()));
      };
      ASSERT_TRUE(Get(server.GetHost()));
      while (!isDone) platform::HandleEvents(1000);
      RunToEnd();
      EXPECT_EQ(Notes.Events + Notes.Body, action == "renew" ? "connect; 200 5; hello" : "")
          << during << action;
    }
  }
}

}  // namespace
