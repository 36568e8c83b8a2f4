#include <fcntl.h>

#include <QByteArrayList>
#include <filesystem>

#include "base/Exceptions.h"
#include "base/Format.h"
#include "imaging/ImageFile.h"
#include "sharing/DesktopPrograms.h"
#include "sharing/FakeEmailPortal.h"
#include "sharing/MailClient.h"
#include "sharing/MailFolder.h"
#include "sharing/MailNames.h"
#include "support/EnvironmentVariable.h"
#include "support/FaultSteps.h"
#include "support/ScratchFolder.h"
#include "support/ScriptedMessages.h"
#include "support/TestJpeg.h"

namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::SizeIs;

constexpr const char* kFooter =
    "\n\n\nI use Vellumar Photo Organizer to find, print, and share my photos.\nYou can too because it's "
    "free and installs in under a minute:\nhttp://www.vellumar.example/download";

/// A user without a desktop: no bus, no mail program but what a test puts into the home.
class CMailTest : public testing::Test {
 protected:
  std::string InHome(const std::string& name) const { return Scratch.GetPath() + "/" + name; }

  std::string AddPhoto(const std::string& name, unsigned width = 64, unsigned height = 48) const {
    return Scratch.Write(name, MakeJpeg(width, height, 200, 100, 50, "2004:05:06 07:08:09"));
  }

  /// A mail program that writes down its arguments and its open files.
  std::string AddMailer(const std::string& name) const {
    const std::string path =
        Scratch.Write("bin/" + name,
                      "#!/bin/sh\nls -l /proc/$$/fd >\"$HOME/open\"\n"
                      "printf '%s\\n' \"$@\" >\"$HOME/new\"\nmv \"$HOME/new\" \"$HOME/mail\"\n");
    fs::permissions(path, fs::perms::owner_all);
    return path;
  }
  void AddThunderbird() const {
    Scratch.Write("data/applications/thunderbird.desktop",
                  "[Desktop Entry]\nExec=" + AddMailer("thunderbird") + " %u\n");
    Scratch.Write(".config/mimeapps.list",
                  "[Default Applications]\nx-scheme-handler/mailto=gone.desktop;thunderbird.desktop\n");
  }

  /// What Thunderbird reads in its argument, and others in an address.
  NotedMail AwaitMail() const {
    for (int i = 0; i < 60'000 && !fs::exists(InHome("mail")); ++i) ::usleep(1000);
    const QByteArrayList arguments = QByteArray::fromStdString(ReadBytes(InHome("mail"))).split('\n');
    fs::remove(InHome("mail"));
    const auto decode = [](const QByteArray& text) { return QByteArray::fromPercentEncoding(text); };
    const bool isThunderbird = arguments[0] == "-compose";
    NotedMail mail;
    for (const QByteArray& field :
         isThunderbird ? arguments[1].split(',') : arguments[0].sliced(8).split('&')) {
      const QByteArray name = field.left(field.indexOf('=')), value = decode(field.sliced(name.size() + 1));
      if (name == "subject") mail.Subject = value.toStdString();
      if (name == "body") mail.Text = QByteArray(value).replace('\r', "").toStdString();
      if (name == "attach") mail.Files.push_back(value.toStdString());
      if (name != "attachment") continue;
      for (const QByteArray& file : value.split(','))
        mail.Files.push_back(decode(file.sliced(7)).toStdString());
    }
    return mail;
  }

  /// Names and sizes, of photos that can be read although the mail was handed over long ago.
  static std::vector<std::string> Describe(const std::vector<std::string>& files) {
    std::vector<std::string> described;
    for (const std::string& file : files) {
      const ImageSize size = ReadImageSize(file);
      described.push_back(fs::path(file).filename().string() + Format(" %dx%d", size.Width, size.Height));
    }
    return described;
  }

  std::ptrdiff_t CountMails() const {
    return std::distance(fs::directory_iterator(InHome(".cache/vellumar/mail")), {});
  }

  const CScratchFolder Scratch;
  const CEnvironmentVariable Home{"HOME", Scratch.GetPath()},
      Path{"PATH", InHome("bin:") + std::getenv("PATH")}, Config{"XDG_CONFIG_HOME", std::nullopt},
      Cache{"XDG_CACHE_HOME", std::nullopt}, Data{"XDG_DATA_HOME", InHome("data")},
      DataDirs{"XDG_DATA_DIRS", InHome("share")}, ConfigDirs{"XDG_CONFIG_DIRS", InHome("etc")},
      Mailer{"MAILER", std::nullopt}, Bus{"DBUS_SESSION_BUS_ADDRESS", "unix:path=" + InHome("bus")},
      Desktop{"XDG_CURRENT_DESKTOP", "Alpha:Beta"};
  CScriptedMessages Messages;
  CMailClient Client;
};

// The real xdg-email is on the first road.
TEST_F(CMailTest, HandsOddNamesToTheMailProgramsAsTheyAreForSevenDays) {
  const std::vector<std::string> photos = {AddPhoto("a/Sun, \"sea\" & 'sand' 100%.jpg", 3208, 2401),
                                           AddPhoto("a/-n.JPG", 1200, 1600),
                                           AddPhoto("b/\xE6\x97\xA5\xE6\x9C\xAC #1?=+;$HOME`.jpeg"),
                                           Scratch.Write("b/broken.jpg", "no photo"),
                                           AddPhoto("a/same.jpg"),
                                           AddPhoto("b/same.jpg", 32, 24),
                                           AddPhoto("b/two\nlines.jpg", 4000, 2)};
  // The height of the first would be 599 if it followed from the picture as it was decoded.
  const auto areHandedOver = ElementsAre("Sun, \"sea\" & 'sand' 100%.jpg 800x598", "-n.JPG 450x600",
                                         "\xE6\x97\xA5\xE6\x9C\xAC #1?=+;$HOME`.jpeg 64x48", "same.jpg 64x48",
                                         "same.jpg 32x24", "two_lines.jpg 800x1");
  const int leaked = ::open(Scratch.Write("leaked", "").c_str(), O_RDONLY);
  const CEnvironmentVariable mailer("MAILER", AddMailer("mailer"));
  for (const bool isThunderbird : {false, true}) {
    if (isThunderbird) AddThunderbird();
    Client.Send(photos, std::nullopt);
    const NotedMail mail = AwaitMail();
    EXPECT_EQ(mail.Subject, "7 photos");
    EXPECT_EQ(mail.Text, kFooter);
    EXPECT_THAT(Describe(mail.Files), areHandedOver);
    EXPECT_THAT(ReadBytes(mail.Files.at(0)), Not(HasSubstr("Exif")));
    EXPECT_THAT(ReadBytes(InHome("open")), Not(HasSubstr("leaked")));
    const fs::path folder = fs::path(mail.Files.at(0)).parent_path();
    EXPECT_EQ(fs::status(folder).permissions(), fs::perms::owner_all);
    EXPECT_EQ(fs::status(folder.parent_path()).permissions(), fs::perms::owner_all);
    const auto age = std::chrono::hours(7 * 24 + (isThunderbird ? 1 : -1));
    fs::last_write_time(folder, fs::file_time_type::clock::now() - age);
    RemoveOldMailFolders();
    EXPECT_EQ(fs::exists(folder), !isThunderbird);
  }
  ::close(leaked);
  EXPECT_THAT(Messages.Texts, testing::IsEmpty());
}

TEST_F(CMailTest, ThePortalGetsTheFilesUnlessItCannotShowThem) {
  const std::string plain = "Sun, 'sea' \xC3\xA9.jpg", odd = "a #1.jpg";
  const CEnvironmentVariable mailer("MAILER", AddMailer("mailer"));
  for (const auto& [response, name, isShown] :
       {std::tuple(0U, plain, true), std::tuple(2U, plain, false), std::tuple(0U, odd, false)}) {
    const CFakeEmailPortal portal(response);
    Client.Send({AddPhoto(name)}, "Sea");
    const NotedMail mail = isShown ? portal.Mail : AwaitMail();
    EXPECT_EQ(mail.Subject, "Sea");
    EXPECT_EQ(mail.Text, kFooter);
    EXPECT_THAT(Describe(mail.Files), ElementsAre(name + " 64x48"));
  }
}

TEST_F(CMailTest, WithoutAMailNothingStaysBehind) {
  const std::string photo = AddPhoto("1.jpg"), broken = Scratch.Write("2.jpg", "no photo");
  Client.Send({photo}, std::nullopt);
  EXPECT_THAT(Messages.Texts, ElementsAre("No mail program was found that takes these photos."));
  EXPECT_FALSE(fs::exists(InHome(".cache")));
  {
    const CFakeEmailPortal refusing(2);
    Client.Send({photo}, std::nullopt);
    EXPECT_THAT(Messages.Texts, SizeIs(2)) << "nobody took the mail";
    EXPECT_EQ(CountMails(), 0);
  }

  AddThunderbird();
  Client.Send({broken, broken}, std::nullopt);
  EXPECT_THAT(Messages.Texts.back(), HasSubstr("None of the photos can be read"));
  EXPECT_EQ(CountMails(), 0);

  class CStop : public CEmailProgress {
    void Progress(std::size_t done, std::size_t count) override { IsEarly = done < count; }
    bool IsStopped() const override { return IsEarly; }
    bool IsEarly = false;
  } stop;
  Client.Send(std::vector(20, photo), std::nullopt, &stop);
  EXPECT_EQ(CountMails(), 0);

  const CFileSizeLimit full(200);
  EXPECT_THROW(Client.Send({photo, photo}, std::nullopt), CStorageException);
  EXPECT_EQ(CountMails(), 0);
  EXPECT_FALSE(fs::exists(InHome("mail")));
}

TEST_F(CMailTest, TheProgramOfATypeIsChosenAsTheDesktopChoosesIt) {
  // From the last choice to the first one; each file that is added goes before those above it.
  const std::array<std::string, 3> steps[] = {
      {"share/applications/1.desktop", "[Desktop Entry]\nExec=" + AddMailer("one") + " %u\n", ""},
      {"share/applications/mimeinfo.cache", "[MIME Cache]\nt=absent.desktop;1.desktop;\n", "one"},
      {"share/applications/a/b-c.desktop", "[Desktop Entry]\nExec=\"" + AddMailer("with blank") + "\" -m",
       "one"},
      {".config/mimeapps.list", "[Added Associations]\nt=a-b-c.desktop\n", "with blank"},
      {"etc/beta-mimeapps.list", "[Default Applications]\nt=1.desktop\n", "one"},
      {".config/alpha-mimeapps.list", "[Default Applications]\nt=a-b-c.desktop\n", "with blank"},
      {"data/applications/a-b-c.desktop", "[Desktop Entry]\nExec=one\nHidden=true\n", "one"}};
  for (const auto& [file, text, program] : steps) {
    Scratch.Write(file, text);
    EXPECT_EQ(FindDefaultProgram("t"), program.empty() ? "" : InHome("bin/") + program) << file;
  }
}

TEST(MailNames, NamesAndSubjectsAreThoseOfThePhotos) {
  EXPECT_EQ(GetAttachmentName("/p/a.b.tif"), "a.b.jpg");
  EXPECT_EQ(GetAttachmentName("/p/a\\b\t\x7F\xC2\x85\xFF.Jpeg"), "a_b____.Jpeg");
  EXPECT_EQ(GetAttachmentName("/p/" + std::string(255, 'x')), std::string(251, 'x') + ".jpg");
  EXPECT_EQ(GetMailSubject({"/p/My photo.old.jpg"}, std::nullopt), "My photo.old");
  EXPECT_EQ(GetMailSubject({"/p/1.jpg"}, "x\nBcc: y"), "x_Bcc: y");
}

}  // namespace
