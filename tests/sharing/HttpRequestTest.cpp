#include <gmock/gmock.h>

#include "base/Format.h"
#include "platform/SocketErrors.h"
#include "sharing/EventLoopFixture.h"
#include "sharing/HttpRequest.h"
#include "sharing/HttpUrl.h"
#include "sharing/ScriptedServer.h"

using testing::ElementsAre;

namespace {

const std::string kOk = "HTTP/1.1 200 OK\r\nContent-Length: 5\r\n\r\nhello";
constexpr int kShort = 50;  // milliseconds, for what times out

/// Notes what it is told. `OnEvent` may do anything to the request.
class CNotes : public CHttpListener {
 public:
  void OnConnect(bool connected, int error) override {
    Note(connected ? "connect" : "end " + std::to_string(error));
  }
  void OnResponse(int status, std::uint32_t contentLength) override {
    Note(Format("%d %d", status, contentLength == kNoContentLength ? -1 : static_cast<int>(contentLength)));
  }
  void OnData(const char* data, std::uint32_t length) override {
    Body.append(data, length);
    if (OnEvent) OnEvent("data");
  }

  std::function<void(const std::string& event)> OnEvent;
  std::vector<std::string> Events;
  std::string Body;

 private:
  void Note(const std::string& event) {
    Events.push_back(event);
    if (OnEvent) OnEvent(event);
  }
};

class HttpRequestTest : public CEventLoopFixture {
 protected:
  HttpRequestTest() { Request->Create(&Notes); }

  /// Only a request that isn't started takes a new address.
  void RunToEnd() const {
    while (Request && !Request->Get("127.0.0.1")) platform::HandleEvents(1000);
  }

  CNotes Notes;
  std::unique_ptr<CHttpRequest> Request = std::make_unique<CHttpRequest>();
};

TEST(HttpUrlTest, AnAddressIsCutAsTold) {
  struct Row {
    const char* Address;
    const char* Parts;  // authority, host, port, target; empty for refused
  };
  const Row rows[] = {
      {"www.host.org", "www.host.org www.host.org 80 /"},
      {"http://host/a?b=c", "host host 80 /a?b=c"},
      {"host:8080/x:y/", "host:8080 host 8080 /x:y/"},
      {"host:", "host: host 80 /"},
      {"host:12x4", "host:12x4 host 12 /"},
      {"HTTP://host", "HTTP: HTTP 80 //host"},
      {"/path", ""},
      {"http:///path", ""},
      {"", ""},
      {"host:80\r\nX: y/", ""},
  };
  for (const Row& row : rows) {
    const auto url = SplitUrl(row.Address);
    EXPECT_EQ(url ? Format("%s %s %d %s", url->Authority, url->Host, url->Port, url->Target) : "", row.Parts);
  }
}

TEST(HttpUrlTest, OnlyWhatMeansNothingStaysUnescaped) {
  std::string plain;
  for (int byte = 0; byte < 256; ++byte) {
    const std::string one(1, static_cast<char>(byte));
    const std::string escaped = EscapeQueryValue(one);
    if (escaped == one) {
      plain += one;
    } else {
      EXPECT_EQ(escaped, Format("%%%02X", byte));
    }
  }
  std::string expected;
  for (char c = 0; c < ' '; ++c) expected += c;
  expected += "\"*,-.0123456789?@ABCDEFGHIJKLMNOPQRSTUVWXYZ_abcdefghijklmnopqrstuvwxyz~";
  EXPECT_EQ(plain, expected);
}

TEST(HttpResponseParserTest, HeadersAreFoundHoweverTheBytesAreCut) {
  struct Row {
    const char* What;
    std::string Bytes;
    const char* Found;  // status, content length and body
  };
  std::string many = "HTTP/1.0 200\r\n";
  for (int i = 1; i <= 65; ++i) many += i == 65 ? "Content-Length: 1\r\n" : Format("H%d: v\r\n", i);
  const std::string start = "HTTP/1.1 200 OK\r\nLong: ";
  const std::string filled = start + std::string(CHttpResponseParser::kLargestBlock - start.size() - 4, 'x');
  const Row rows[] = {
      {"plain", kOk, "200 5 hello"},
      {"interim first", "HTTP/1.1 100 Go\r\nContent-Length: 9\r\n\r\nHTTP/1.1 102\r\n\r\n" + kOk,
       "200 5 hello"},
      {"no length", "HTTP/1.1 404 No\r\n\r\nbody", "404 -1 body"},
      {"no status", "HTTP/1.1\r\n\r\n", "0 -1 "},
      {"odd status", "HTTP/1.1 99999999999999\r\n\r\n", "0 -1 "},
      {"odd spelling", "HTTP/1.1 200 OK\r\nno colon\r\ncontent-LENGTH:   7 \r\n\r\n", "200 7 "},
      {"bare line feeds", "HTTP/1.1 200 OK\r\nA: b\nContent-Length: 7\nC: d\r\n\r\n", "200 7 "},
      {"the first of two", "HTTP/1.1 200 OK\r\nContent-Length: 3\r\nContent-Length: 4\r\n\r\n", "200 3 "},
      {"a length with a tail", "HTTP/1.1 200 OK\r\nContent-Length: 12abc\r\n\r\n", "200 -1 "},
      {"a negative length", "HTTP/1.1 200 OK\r\nContent-Length: -1\r\n\r\n", "200 -1 "},
      {"a huge length", "HTTP/1.1 200 OK\r\nContent-Length: 4294967297\r\n\r\n", "200 -1 "},
      {"an empty length", "HTTP/1.1 200 OK\r\nContent-Length:\r\n\r\n", "200 -1 "},
      {"a 65th header", many + "\r\nbody", "200 -1 body"},
      {"not HTTP", "SSH-2.0\r\n\r\nHTTP/1.1 200\r\n\r\n", "no HTTP"},
      {"another case", "http/1.1 200\r\n\r\n", "no HTTP"},
      {"the largest block", filled + "\r\n\r\nbody", "200 -1 body"},
      {"a block too large", filled + "x\r\n\r\nbody", "no HTTP"},
      {"no end", std::string(CHttpResponseParser::kLargestBlock + 1, 'x'), "no HTTP"},
  };
  for (const Row& row : rows) {
    const std::size_t step = 1 + row.Bytes.size() / 1000;
    for (std::size_t cut = 0; cut < row.Bytes.size(); cut += step) {
      CHttpResponseParser parser;
      std::string found = "nothing";
      for (std::string_view piece :
           {std::string_view(row.Bytes).substr(0, cut), std::string_view(row.Bytes).substr(cut)}) {
        if (found != "nothing") {
          if (found != "no HTTP") found += piece;
          continue;
        }
        const auto result = parser.Take(piece);
        if (result == CHttpResponseParser::Found::NoHttp) found = "no HTTP";
        if (result != CHttpResponseParser::Found::Headers) continue;
        const std::uint32_t length = parser.GetContentLength();
        found = Format("%d %d %s", parser.GetStatus(),
                       length == kNoContentLength ? -1 : static_cast<int>(length), piece);
      }
      ASSERT_EQ(found, row.Found) << row.What << " cut at " << cut;
    }
  }
}

TEST_F(HttpRequestTest, TheListenerHearsHowARequestEnds) {
  const std::string head = "HTTP/1.1 200 OK\r\nContent-Length: ";
  struct Row {
    const char* What;
    CScriptedServer::Script Script;
    std::vector<std::string> Events;
    const char* Body;
    int Patience = 60000;
  };
  const Row rows[] = {
      {"an answer", CScriptedServer::Answer(kOk), {"connect", "200 5"}, "hello"},
      {"byte by byte",
       [](CPeer& peer) {
         peer.ReadRequest();
         peer.WriteSlowly(kOk);
         peer.StaySilent();
       },
       {"connect", "200 5"},
       "hello"},
      {"interim first",
       CScriptedServer::Answer("HTTP/1.1 100 Go\r\n\r\n" + kOk),
       {"connect", "200 5"},
       "hello"},
      {"length 0", CScriptedServer::Answer(head + "0\r\n\r\nmore"), {"connect", "200 0"}, ""},
      {"more than told", CScriptedServer::Answer(kOk + " and more"), {"connect", "200 5"}, "hello"},
      {"no length",
       [](CPeer& peer) {
         peer.ReadRequest();
         peer.Write("HTTP/1.1 200 OK\r\n\r\nall of it");
       },
       {"connect", "200 -1", "end 0"},
       "all of it"},
      {"closed in the body",
       [&](CPeer& peer) {
         peer.ReadRequest();
         peer.Write(head + "50\r\n\r\nhalf");
       },
       {"connect", "200 50", "end 0"},
       "half"},
      {"closed at once", [](CPeer& peer) { peer.ReadRequest(); }, {"connect", "end 0"}, ""},
      {"reset",
       [](CPeer& peer) {
         peer.ReadRequest();
         peer.Break();
       },
       {"connect", "end 10054"},
       ""},
      {"silence", [](CPeer& peer) { peer.StaySilent(); }, {"connect", "end 10050"}, "", kShort},
      {"silence in the body",
       CScriptedServer::Answer(head + "50\r\n\r\nhalf"),
       {"connect", "200 50", "end 10050"},
       "half",
       kShort},
      {"no patience", [](CPeer& peer) { peer.StaySilent(); }, {"connect"}, "", 0},
      {"not HTTP", CScriptedServer::Answer("220 ready\r\n\r\n"), {"connect", "500 0"}, ""},
  };
  for (const Row& row : rows) {
    CScriptedServer server({row.Script});
    Notes.Events.clear();
    Notes.Body.clear();
    Request->Reset();
    Request->SetResponseTimeout(row.Patience);
    ASSERT_TRUE(Request->Get(server.GetHost() + "/x") && Request->Send(nullptr, 0)) << row.What;
    RunToEnd();
    EXPECT_EQ(Notes.Events, row.Events) << row.What;
    EXPECT_EQ(Notes.Body, row.Body) << row.What;
  }
}

TEST_F(HttpRequestTest, AServerThatCannotBeReachedIsTold) {
  std::string host;
  {
    const CScriptedServer gone(std::vector<CScriptedServer::Script>{});
    host = gone.GetHost();
  }
  EXPECT_TRUE(Request->Get(host) && Request->Send(nullptr, 0));
  RunToEnd();
  const CScriptedServer full(CScriptedServer::FullQueue{});
  Request->SetConnectTimeout(kShort);
  EXPECT_TRUE(Request->Get(full.GetHost()) && Request->Send(nullptr, 0));
  RunToEnd();
  EXPECT_THAT(Notes.Events, ElementsAre("end 10061", "end 10060"));
  for (const char* url : {"", "/x", "no such host", "255.255.255.255"})
    EXPECT_FALSE(Request->Get(url)) << url;
}

TEST_F(HttpRequestTest, TheRequestIsWrittenByteForByte) {
  std::string received;
  CScriptedServer server({[&](CPeer& peer) {
    received = peer.ReadRequest();
    peer.Write(kOk);
  }});
  const std::string host = server.GetHost("localhost");

  EXPECT_FALSE(Request->AddHeader("A", "b") || Request->AddQueryParam("a", "b") || Request->Send(nullptr, 0));
  ASSERT_TRUE(Request->Get("http://" + host + "/a?b=c"));
  EXPECT_TRUE(Request->AddQueryParam("user", "A b&\xC3\xA9") && Request->AddQueryParam("none", ""));
  EXPECT_TRUE(Request->AddHeader("First", "1") && Request->AddHeader("Second", "2"));
  EXPECT_FALSE(Request->AddQueryParam("", "x") || Request->AddHeader("", "x") || Request->AddHeader("x", ""));
  EXPECT_FALSE(Request->AddHeader("X", "a\r\nEvil: b") || Request->AddHeader("X\nY", "a"));
  ASSERT_TRUE(Request->Send("ignored", 7));
  EXPECT_FALSE(Request->Send(nullptr, 0) || Request->AddHeader("Third", "3") || Request->Get(host));
  RunToEnd();
  EXPECT_EQ(received, "GET /a?b=c&user=A%20b%26%C3%A9&none= HTTP/1.1\r\nHost: " + host +
                          "\r\nFirst: 1\r\nSecond: 2\r\n\r\n");

  // A body in pieces, the last too long and sent when the connection stands; then one for which there's none.
  ASSERT_TRUE(Request->Post(host, 10) && Request->AddQueryParam("a", "b") &&
              Request->AddHeader("First", "1"));
  ASSERT_TRUE(Request->Send("0123", 4));
  bool isSent = false;
  Notes.OnEvent = [&](const std::string& event) {
    if (event == "connect") isSent = Request->Send("456789abc", 9);
  };
  RunToEnd();
  EXPECT_TRUE(isSent);
  EXPECT_EQ(received,
            "POST /?a=b HTTP/1.1\r\nHost: " + host + "\r\nFirst: 1\r\nContent-Length: 10\r\n\r\n0123456789");
}

TEST_F(HttpRequestTest, ALargeBodyArrivesWholeAndIsHeldOnce) {
  std::string received;
  CScriptedServer server({[&](CPeer& peer) {
    received = peer.ReadRequest();
    peer.Write(kOk);
  }});
  std::string body(std::size_t{20} << 20, '\0');
  for (std::size_t i = 0; i < body.size(); ++i) body[i] = static_cast<char>(i * 2654435761U >> 24);
  ASSERT_TRUE(Request->Post(server.GetHost(), static_cast<std::uint32_t>(body.size())));
  ASSERT_TRUE(Request->Send(body.data(), body.size() - 3) && Request->Send(&body[body.size() - 3], 3));
  EXPECT_EQ(Request->GetQueued(), Request->GetTotal());
  RunToEnd();
  EXPECT_TRUE(received.ends_with("\r\n\r\n" + body));
  EXPECT_THAT(Notes.Events, ElementsAre("connect", "200 5"));
}

// Whatever the listener does in a call, nothing of the old connection comes afterwards.
TEST_F(HttpRequestTest, AListenerMayEndOrRenewTheRequestInAnyCall) {
  struct Row {
    std::string During;
    std::string Answer;
  };
  const Row rows[] = {
      {"connect", kOk}, {"200 5", kOk}, {"data", kOk}, {"500 0", "no\r\n\r\n"}, {"end 10050", ""}};
  for (const Row& row : rows) {
    for (const char* action : {"reset", "renew", "destroy"}) {
      CScriptedServer server({CScriptedServer::Answer(row.Answer), CScriptedServer::Answer(kOk)});
      Request = std::make_unique<CHttpRequest>();
      Request->Create(&Notes);
      Request->SetResponseTimeout(row.Answer.empty() ? kShort : CHttpRequest::kResponseTimeout);
      bool isDone = false;
      Notes.Events.clear();
      Notes.Body.clear();
      Notes.OnEvent = [&](const std::string& event) {
        if (event != row.During || std::exchange(isDone, true)) return;
        Notes.Events.clear();
        Notes.Body.clear();
        if (action == std::string("destroy")) {
          Request.reset();
          return;
        }
        Request->Reset();
        Request->SetResponseTimeout(CHttpRequest::kResponseTimeout);
        const bool isIdle = action == std::string("reset");
        EXPECT_TRUE(isIdle || (Request->Get(server.GetHost()) && Request->Send(nullptr, 0)));
      };
      ASSERT_TRUE(Request->Get(server.GetHost()) && Request->Send(nullptr, 0));
      while (!isDone) platform::HandleEvents(1000);
      RunToEnd();
      const bool isRenewed = action == std::string("renew");
      EXPECT_EQ(Notes.Events.size(), isRenewed ? 2U : 0U) << row.During << ": " << action;
      EXPECT_EQ(Notes.Body, isRenewed ? "hello" : "") << row.During << ": " << action;
    }
  }
}

TEST_F(HttpRequestTest, RepeatedHeadersAreFoundOneByOneAlsoAfterTheEnd) {
  CScriptedServer server(
      {CScriptedServer::Answer("HTTP/1.1 200 OK\r\nA: 1\r\nB: 2\r\na: 3\r\nContent-Length: 0\r\n\r\n")});
  ASSERT_TRUE(Request->Get(server.GetHost()) && Request->Send(nullptr, 0));
  while (Notes.Events.size() < 2) platform::HandleEvents(1000);
  std::string value;
  std::size_t index = 0;
  std::string all;
  while (Request->GetHeader("A", value, index)) all += Format("%d=%s ", index, value);
  EXPECT_EQ(all, "1=1 3=3 ");
  EXPECT_TRUE(Request->GetHeader("b", value));
  EXPECT_EQ(value, "2");
}

}  // namespace
