#include <gmock/gmock.h>

#include "base/Folders.h"
#include "base/Format.h"
#include "base/Texts.h"
#include "sharing/ServiceFixture.h"
#include "sharing/ServiceHost.h"

using testing::ElementsAre;
using Ending = Reply::Ending;

namespace {

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

class ServiceSessionTest : public CServiceFixture {
 protected:
  ServiceSessionTest() { std::filesystem::remove(Log); }
  ~ServiceSessionTest() override { std::filesystem::remove(Log); }

  const std::string Log = GetProgramFolder() + "upload.log";
};

TEST_F(ServiceSessionTest, TheHostIsWhatIsConfiguredAndCanBeAHost) {
  CSettingsRef().SetString("ServiceHost", "photos.home");
  const std::pair<const char*, const char*> rows[] = {
      {"", "photos.home"},      {"10.0.0.2:8080", "10.0.0.2:8080"},
      {"http://host/", "host"}, {"x.example:80", ""},
      {"user@evil.org", ""},    {"host/path", ""},
      {"host:80x", ""}};
  for (const auto& [configured, host] : rows) {
    const CEnvironmentVariable variable("VELLUMAR_SERVICE_HOST", configured);
    EXPECT_EQ(GetServiceHost(), host) << configured;
  }
  EXPECT_EQ(MakeServiceAddress("host", "/a b@c://"), "http://host/a b@c://");
  for (const char* path : {"@evil.org/", "/a\nb"}) EXPECT_EQ(MakeServiceAddress("host", path), "");
}

TEST_F(ServiceSessionTest, ALoginIsTriedAgainUnlessThereIsNoSuchMember) {
  const Reply failed = MakeReply(500, "<ID>x</ID>");
  const std::tuple<std::vector<Reply>, bool, std::size_t> rows[] = {
      {{kMember}, true, 1},
      {{{"HTTP/1.1 200 OK\r\n\r\n<ID>9</ID>", Ending::Close}}, true, 1},
      {{{"HTTP/1.1 200 OK\r\n\r\n<ID>9</ID>", Ending::Reset}}, false, 3},
      {{kTaken}, false, 3},
      {{failed}, false, 3},
      {{failed, kTaken, kMember}, true, 3},
      {{MakeReply(200, "<id>7</id>")}, false, 1},
      {{MakeReply(200, "</ID><ID>7</ID>")}, false, 1},
  };
  for (const auto& [replies, isLoggedIn, requests] : rows) {
    Serve(replies);
    CServiceSession session(Desktop);
    EXPECT_EQ(session.Login("a", "b"), isLoggedIn) << replies[0].Bytes;
    EXPECT_EQ(session.OpenCart(), isLoggedIn) << replies[0].Bytes;
    EXPECT_EQ(Server->GetRequests().size(), requests) << replies[0].Bytes;
  }
}

TEST_F(ServiceSessionTest, TheLoginDialogKeepsTheNameAloneAndTheLinksHoldWhatWasTyped) {
  Serve({MakeReply(500, ""), kMember, MakeReply(500, "")});
  CServiceSession session(Desktop);
  const std::string headers = "\r\nHost: " + Server->GetHost() + "\r\nUser-Agent: quillaraOrg/1.0\r\n\r\n";
  const std::string site = "http://" + Server->GetHost();
  EXPECT_FALSE(session.OpenCart() || session.OpenAlbum("x"));
  Desktop.Entries = {{"Ann B", ""}, {"Ann B", "p&q"}, {"Bob", "secret"}};
  EXPECT_TRUE(CServiceSession::ShowLoginDialog(session));
  EXPECT_THAT(Messages.Texts, ElementsAre(LoadText(StringId::LoginNeedsNameAndPassword)));
  EXPECT_EQ(
      Server->GetRequests()[1],
      "GET /Vellumar/CheckLogin.asp?Login=Ann%20B&Password=p%26q&Registered=Y&Source=Vellumar HTTP/1.1" +
          headers);
  EXPECT_TRUE(session.OpenCart() && session.OpenAlbum("May 5, 2026") &&
              CServiceSession::OpenJoinPage(Desktop));
  EXPECT_THAT(Desktop.Pages, ElementsAre(site + "/Vellumar/DoLogin.asp?l=Ann B&p=p&q&Cart=Y",
                                         site + "/Vellumar/DoLogin.asp?l=Ann B&p=p&q&Album=May 5, 2026",
                                         site + "/Join.asp?Source=Vellumar"));

  // A failure is told and ends the old login. Its name is there the next time; the password never is.
  EXPECT_FALSE(CServiceSession::ShowLoginDialog(session) || session.OpenCart());
  EXPECT_EQ(Messages.Texts.back(), LoadText(StringId::LoginFailed));
  EXPECT_FALSE(CServiceSession::ShowLoginDialog(session));  // cancelled
  EXPECT_THAT(Desktop.Prompts, ElementsAre("", "Ann B", "Ann B", "Bob"));
  EXPECT_EQ(ReadBytes(Scratch.File("settings")).find("secret"), std::string::npos);
}

TEST_F(ServiceSessionTest, APhotoIsSentAsAFormByteForByte) {
  Serve({kMember, kTaken});
  CServiceSession session(Desktop);
  std::string photo(std::size_t{20} << 20, '\0');  // more than a socket or a slice takes at once
  for (std::size_t i = 0; i < photo.size(); ++i) photo[i] = static_cast<char>(i * 2654435761U >> 24);
  UploadForm form{Scratch.Write("a \"b\".jpg", photo), "May 5, 2026", 0, 2, 1, false, "", ""};
  EXPECT_FALSE(session.UploadPhoto(form));  // not logged in
  ASSERT_TRUE(session.Login("a", "b"));

  const auto expect = [&](const std::string& fields) {
    const std::string start = MakeParts(fields) + kLine +
                              "\nContent-Disposition: form-data; name=\"File1\"; filename=\"" + form.Path +
                              "\"\r\nContent-Type: image/jpeg\r\nContent-Transfer-Encoding: binary\r\n\r\n";
    const std::string end = "\r\n" + kLine + "--\r\n\r\n";
    EXPECT_TRUE(session.UploadPhoto(form));
    std::string request = Server->GetRequests().back();
    const std::size_t at = request.find(photo);
    if (at != std::string::npos) request.replace(at, photo.size(), "PHOTO");
    EXPECT_EQ(request, "POST /MemUploadUtilitySend.asp HTTP/1.1\r\nHost: " + Server->GetHost() +
                           "\r\nUser-Agent: quillaraOrg/1.0\r\nContent-Type: multipart/form-data; "
                           "boundary=----------qUiLlArAfOrMbOuNdArY$\r\nContent-Length: " +
                           std::to_string(start.size() + photo.size() + end.size()) + "\r\n\r\n" + start +
                           "PHOTO" + end);
  };
  expect("MemberID=m 1;AlbumName=May 5, 2026;WatermarkSize=0;Quantity=1;ProductID=2;DirectPrint=N;");
  form = {form.Path, "x", 7, 8, 9, true, "a \"b\"", "100% & more"};
  CSettingsRef().SetBool("QuillaraResponseLogging", true);
  expect(
      "MemberID=m 1;AlbumName=x;WatermarkSize=7;Quantity=9;ProductID=8;DirectPrint=Y;Debug=1;Caption=a \"b\";"
      "Description=100% & more;");
}

TEST_F(ServiceSessionTest, OnlyWhatNeverReachedTheServerIsSentAgain) {
  CSettingsRef().SetBool("QuillaraResponseLogging", true);
  const UploadForm form{Scratch.Write("a.jpg", "photo"), "May", 0, 2, 1, false, "", ""};
  const std::string unanswered = "No response received\n";
  const std::tuple<Reply, bool, std::string, int> rows[] = {
      // 3 attempts: the server is gone
      {MakeReply(200, "fine\r\n"), true, "Response code = 200\nfine\r\n", 1},
      {kTaken, true, unanswered, 1},
      {MakeReply(500, "no"), false, "Response code = 500\nno", 1},
      {{"", Ending::Close}, false, unanswered, 1},
      {{"", Ending::Reset}, false, unanswered, 1},
      {kTaken, false, unanswered, 3}};
  for (const auto& [answer, isTaken, logged, attempts] : rows) {
    std::filesystem::remove(Log);
    Serve({kMember, answer});
    CServiceSession session(Desktop);
    ASSERT_TRUE(session.Login("a", "b"));
    if (attempts == 3) Server.reset();
    EXPECT_EQ(session.UploadPhoto(form), isTaken) << logged;
    const std::string head = "\n======== Downloading photo " + form.Path + " on 99/99/99 99:99:99:\n";
    std::string log = ReadBytes(Log), expected;
    for (int i = 0; i < attempts; ++i) expected += head + logged + "\n==================================\n";
    for (std::string* text : {&log, &expected}) std::replace_if(text->begin(), text->end(), IsDigit, '9');
    EXPECT_EQ(log, expected);
  }
}

}  // namespace
