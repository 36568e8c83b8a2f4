#include <fcntl.h>
#include <sys/wait.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <functional>
#include <optional>
#include <set>
#include <thread>

#include "base/Exceptions.h"
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
using testing::Pair;

constexpr const char* kFooter =
    "\n\n\nI use Vellumar Photo Organizer to find, print, and share my photos.\nYou can too because it's "
    "free "
    "and installs in under a minute:\nhttp://www.vellumar.example/download";

std::vector<std::string> Split(const std::string& text, char separator) {
  std::vector<std::string> parts = {""};
  for (const char c : text) c == separator ? parts.emplace_back() : parts.back() += c;
  return parts;
}

std::string Decode(const std::string& text) {
  std::string decoded;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool isCode = text[i] == '%';
    decoded += isCode ? static_cast<char>(std::stoi(text.substr(i + 1, 2), nullptr, 16)) : text[i];
    if (isCode) i += 2;
  }
  return decoded;
}

struct Mail {
  std::string Subject, Text;
  std::vector<std::string> Files;
};

/// A user without a desktop: no bus, no mail program but what a test puts into the home.
class CMailTest : public testing::Test {
 protected:
  CMailTest() { ::setenv("PATH", (InHome("bin") + ":" + OldPath).c_str(), 1); }
  ~CMailTest() override { ::setenv("PATH", OldPath.c_str(), 1); }

  std::string InHome(const std::string& name) const { return Scratch.GetPath() + "/" + name; }

  std::string AddPhoto(const std::string& name, unsigned width = 64, unsigned height = 48) const {
    return Scratch.Write(name, MakeJpeg(width, height, 200, 100, 50));
  }

  /// A mail program that writes down its arguments, its open files and its session.
  std::string AddMailer(const std::string& name) const {
    const std::string path =
        Scratch.Write("bin/" + name,
                      "#!/bin/sh\nrm -f \"$HOME/mail\"\n"
                      "for file in /proc/$$/fd/*; do readlink $file; done >\"$HOME/open\"\n"
                      "cut -d ' ' -f 6 /proc/$$/stat >\"$HOME/session\"\n"
                      "printf '%s\\n' \"$@\" >\"$HOME/mail.new\"\n"
                      "mv \"$HOME/mail.new\" \"$HOME/mail\"\n");
    fs::permissions(path, fs::perms::owner_all);
    return path;
  }
  void AddThunderbird() const {
    Scratch.Write("data/applications/thunderbird.desktop",
                  "[Desktop Entry]\nExec=" + AddMailer("thunderbird") + " %u\n");
    Scratch.Write(".config/mimeapps.list",
                  "[Default Applications]\nx-scheme-handler/mailto=gone.desktop;thunderbird.desktop\n");
  }

  static bool ComesTrue(const std::function<bool()>& condition) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::minutes(1);
    while (!condition() && std::chrono::steady_clock::now() < end) {
      std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    return condition();
  }

  std::vector<std::string> AwaitArguments() const {
    EXPECT_TRUE(ComesTrue([this] { return fs::exists(InHome("mail")); }));
    return Split(ReadBytes(InHome("mail")), '\n');
  }

  /// What Thunderbird reads in the one argument.
  Mail AwaitThunderbirdMail() const {
    Mail mail;
    const std::vector<std::string> arguments = AwaitArguments();
    EXPECT_THAT(arguments, ElementsAre("-compose", testing::_, ""));
    for (const std::string& field : Split(arguments.at(1), ',')) {
      const std::string value = Decode(field.substr(field.find('=') + 1));
      if (field.starts_with("subject=")) mail.Subject = value;
      if (field.starts_with("body=")) mail.Text = value;
      if (!field.starts_with("attachment=")) continue;
      for (const std::string& file : Split(value, ',')) {
        EXPECT_THAT(file, testing::StartsWith("file:///"));
        mail.Files.push_back(Decode(file.substr(7)));
      }
    }
    return mail;
  }

  /// What a mail program reads in an address.
  Mail AwaitAddressedMail() const {
    Mail mail;
    const std::vector<std::string> arguments = AwaitArguments();
    EXPECT_THAT(arguments, ElementsAre(testing::StartsWith("mailto:?"), ""));
    for (const std::string& field : Split(arguments.at(0).substr(8), '&')) {
      const std::string value = Decode(field.substr(field.find('=') + 1));
      if (field.starts_with("subject=")) mail.Subject = value;
      if (field.starts_with("attach=")) mail.Files.push_back(value);
      if (!field.starts_with("body=")) continue;
      std::ranges::remove_copy(value, std::back_inserter(mail.Text), '\r');
    }
    return mail;
  }

  /// Names and sizes; each is a photo that can be read although the mail was handed over long ago.
  static std::vector<std::string> Describe(const std::vector<std::string>& files) {
    std::vector<std::string> described;
    for (const std::string& file : files) {
      const ImageSize size = ReadImageSize(file);
      described.push_back(fs::path(file).filename().string() + " " + std::to_string(size.Width));
    }
    return described;
  }

  std::size_t CountLeftBehind() const {
    const std::string mails = InHome(".cache/Vellumar Photo Organizer/mail");
    return fs::exists(mails) ? static_cast<std::size_t>(std::distance(fs::directory_iterator(mails), {})) : 0;
  }

  const CScratchFolder Scratch;
  const std::string OldPath = std::getenv("PATH");
  const CEnvironmentVariable Home{"HOME", Scratch.GetPath()}, Config{"XDG_CONFIG_HOME", std::nullopt},
      Cache{"XDG_CACHE_HOME", std::nullopt}, Data{"XDG_DATA_HOME", InHome("data")},
      DataDirs{"XDG_DATA_DIRS", InHome("share")}, ConfigDirs{"XDG_CONFIG_DIRS", InHome("etc")},
      Bus{"DBUS_SESSION_BUS_ADDRESS", "unix:path=" + InHome("bus")}, Runtime{"XDG_RUNTIME_DIR", std::nullopt},
      Desktop{"XDG_CURRENT_DESKTOP", "Alpha:Beta"}, Mailer{"MAILER", std::nullopt};
  CScriptedMessages Messages;
  CMailClient Client;
};

// The real xdg-email is on the second road.
TEST_F(CMailTest, HandsOddNamesToTheMailProgramsAsTheyAre) {
  const std::vector<std::string> photos = {AddPhoto("a/Sun, \"sea\" & 'sand' 100%.jpg"),
                                           AddPhoto("a/-n.JPG", 1200, 1600),
                                           AddPhoto("b/\xE6\x97\xA5\xE6\x9C\xAC #1?=+;$HOME`.jpeg"),
                                           Scratch.Write("b/broken.jpg", "no photo"),
                                           AddPhoto("a/same.jpg"),
                                           AddPhoto("b/same.jpg", 32, 24),
                                           AddPhoto("b/two\nlines.jpg")};
  const auto areHandedOver = ElementsAre("Sun, \"sea\" & 'sand' 100%.jpg 64", "-n.JPG 450",
                                         "\xE6\x97\xA5\xE6\x9C\xAC #1?=+;$HOME`.jpeg 64", "same.jpg 64",
                                         "same.jpg 32", "two_lines.jpg 64");
  const int leaked = ::open(Scratch.Write("leaked", "").c_str(), O_RDONLY);
  const CEnvironmentVariable mailer("MAILER", AddMailer("mailer"));
  for (const bool isThunderbird : {false, true}) {
    if (isThunderbird) AddThunderbird();
    fs::remove(InHome("mail"));
    Client.Send(photos, std::nullopt);
    const Mail mail = isThunderbird ? AwaitThunderbirdMail() : AwaitAddressedMail();
    EXPECT_EQ(mail.Subject, "7 photos");
    EXPECT_EQ(mail.Text, kFooter);
    EXPECT_THAT(Describe(mail.Files), areHandedOver);
    EXPECT_THAT(ReadBytes(InHome("open")), testing::Not(HasSubstr("leaked")));
    EXPECT_NE(ReadBytes(InHome("session")), std::to_string(::getsid(0)) + "\n");
    const fs::path folder = fs::path(mail.Files[0]).parent_path();
    EXPECT_EQ(fs::status(folder).permissions(), fs::perms::owner_all);
    EXPECT_EQ(fs::status(folder.parent_path()).permissions(), fs::perms::owner_all);
  }
  ::close(leaked);
  const auto hasChildren = [] {
    siginfo_t ended{};
    return ::waitid(P_ALL, 0, &ended, WEXITED | WNOHANG | WNOWAIT) == 0;
  };
  EXPECT_TRUE(ComesTrue([&] { return !hasChildren(); })) << "ended, but still in the table of processes";
  EXPECT_THAT(Messages.Texts, testing::IsEmpty());
}

TEST_F(CMailTest, ThePortalGetsTheFilesUnlessItCannotShowThem) {
  const std::string plain = AddPhoto("Sun, 'sea' \xC3\xA9.jpg"), odd = AddPhoto("a #1.jpg");
  struct Case {
    std::uint32_t Response;
    std::string Photo;
    bool IsShown;
  };
  const CEnvironmentVariable mailer("MAILER", AddMailer("mailer"));
  for (const Case& row :
       {Case{0, plain, true}, Case{1, plain, true}, Case{2, plain, false}, Case{0, odd, false}}) {
    fs::remove(InHome("mail"));
    const CFakeEmailPortal portal(InHome("bus"), row.Response);
    Client.Send({row.Photo}, "Sea");
    const Mail mail = row.IsShown ? Mail{portal.Texts.at("subject"), portal.Texts.at("body"), portal.Files}
                                  : AwaitAddressedMail();
    EXPECT_EQ(fs::exists(InHome("mail")), !row.IsShown);
    EXPECT_EQ(mail.Subject, "Sea");
    EXPECT_EQ(mail.Text, kFooter);
    EXPECT_THAT(Describe(mail.Files), ElementsAre(fs::path(row.Photo).filename().string() + " 64"));
  }
}

TEST_F(CMailTest, WithoutAMailNothingStaysBehind) {
  const std::string photo = AddPhoto("1.jpg"), broken = Scratch.Write("2.jpg", "no photo");
  const std::vector<std::string> photos(20, photo);
  Client.Send({photo}, std::nullopt);
  EXPECT_THAT(Messages.Texts, ElementsAre("No mail program was found that takes these photos."));
  EXPECT_FALSE(fs::exists(InHome(".cache")));

  AddThunderbird();
  Client.Send({broken, broken}, std::nullopt);
  EXPECT_THAT(Messages.Texts.back(), HasSubstr("None of the photos can be read"));
  EXPECT_EQ(CountLeftBehind(), 0U);

  class CStop : public CEmailProgress {
   public:
    void Progress(std::size_t done, std::size_t) override { Done = done; }
    bool IsStopped() const override { return Done > 2; }
    std::size_t Done = 0;
  } stop;
  Client.Send(photos, std::nullopt, &stop);
  EXPECT_LT(stop.Done, photos.size());
  EXPECT_EQ(CountLeftBehind(), 0U);

  const CFileSizeLimit full(200);
  try {
    Client.Send(photos, std::nullopt);
    ADD_FAILURE() << "A full disk wasn't told.";
  } catch (const CStorageException& refusal) {
    EXPECT_THAT(refusal.GetMessage(), HasSubstr("1.jpg\" can't be written: "));
  }
  EXPECT_EQ(CountLeftBehind(), 0U);
  EXPECT_FALSE(fs::exists(InHome("mail")));
}

TEST_F(CMailTest, MailsOfMoreThanSevenDaysGo) {
  AddThunderbird();
  const std::string elsewhere = Scratch.Write("elsewhere/kept", "");
  std::set<fs::path> folders;
  for (int i = 0; i < 3; ++i) {
    fs::remove(InHome("mail"));
    Client.Send({AddPhoto("1.jpg")}, std::nullopt);
    folders.insert(fs::path(AwaitThunderbirdMail().Files.at(0)).parent_path());
  }
  ASSERT_EQ(folders.size(), 3U);
  const auto age = [](const fs::path& path, int hours) {
    fs::last_write_time(path, fs::file_time_type::clock::now() - std::chrono::hours(hours));
  };
  age(*folders.begin(), 7 * 24 + 1);
  age(*std::next(folders.begin()), 7 * 24 - 1);
  fs::create_directory_symlink(fs::path(elsewhere).parent_path(), folders.begin()->string() + "-link");
  age(fs::path(elsewhere).parent_path(), 1000);
  RemoveOldMailFolders();
  EXPECT_FALSE(fs::exists(*folders.begin()));
  EXPECT_EQ(CountLeftBehind(), 3U);
  EXPECT_TRUE(fs::exists(elsewhere));
}

TEST_F(CMailTest, TheProgramOfATypeIsChosenAsTheDesktopChoosesIt) {
  for (const char* name : {"one", "two", "three"}) {
    const std::string entry = "[Desktop Entry]\nExec=" + std::string(name) + " %u\n";
    Scratch.Write("share/applications/" + std::string(name) + ".desktop", entry);
    AddMailer(name);
  }
  Scratch.Write("share/applications/a/b-c.desktop",
                "[Desktop Entry]\nExec=\"" + AddMailer("with blank") + "\" -m");
  Scratch.Write("share/applications/absent.desktop", "[Desktop Entry]\nExec=not-installed\n");
  // From the last choice to the first one; each file that is added goes before those above it.
  constexpr std::array<const char*, 3> kSteps[] = {
      {"share/applications/mimeinfo.cache", "[MIME Cache]\nt=absent.desktop;one.desktop;\n", "one"},
      {".config/mimeapps.list", "[Added Associations]\nt=two.desktop\n", "two"},
      {"share/applications/mimeapps.list", "[Default Applications]\nt=three.desktop\n", "three"},
      {"etc/beta-mimeapps.list", "[Default Applications]\nt=one.desktop\n", "one"},
      {".config/alpha-mimeapps.list", "[Default Applications]\nt=a-b-c.desktop\n", "with blank"},
      {"data/applications/a-b-c.desktop", "[Desktop Entry]\nExec=two\nHidden=true\n", "one"}};
  EXPECT_EQ(FindDefaultProgram("t"), "");
  for (const auto& [file, text, program] : kSteps) {
    Scratch.Write(file, text);
    EXPECT_EQ(FindDefaultProgram("t"), InHome("bin/") + program) << file;
  }
}

TEST(MailNames, NamesAndSubjectsAreThoseOfThePhotos) {
  constexpr std::array<const char*, 2> kNames[] = {{"/p/IMG 1.JPG", "IMG 1.JPG"},
                                                   {"/p/a.b.Jpeg", "a.b.Jpeg"},
                                                   {"/p/plan.tif", "plan.jpg"},
                                                   {"/p/plan", "plan.jpg"},
                                                   {"/p/a\\b\t\x7F\xC2\x85.jpg", "a_b___.jpg"},
                                                   {"/p/bad\xFF.jpg", "bad_.jpg"}};
  for (const auto& [path, name] : kNames) EXPECT_EQ(GetAttachmentName(path), name);
  EXPECT_EQ(GetAttachmentName("/p/" + std::string(255, 'x')), std::string(251, 'x') + ".jpg");
  EXPECT_THAT(GetCopyPaths({"/a/1.jpg", "/b/1.JPG", "/c/1.tif", "/c/2.jpg"}, "/m"),
              ElementsAre("/m/1.jpg", "/m/2/1.JPG", "/m/3/1.jpg", "/m/2.jpg"));
  EXPECT_EQ(GetMailSubject({"/p/My photo.old.jpg"}, std::nullopt), "My photo.old");
  EXPECT_EQ(GetMailSubject({"/p/1.jpg", "/p/2.jpg"}, std::nullopt), "2 photos");
  EXPECT_EQ(GetMailSubject({"/p/1.jpg"}, "Bcc\nx"), "Bcc_x");
}

TEST(EmailCopy, FitsTheBoxAndIsEncodedAnew) {
  const CScratchFolder scratch;
  struct Case {
    unsigned Width, Height;
    ImageSize Copy;
  };
  // The third would be a pixel higher if its size followed from the picture as it was decoded.
  for (const Case& row : {Case{1200, 1600, {450, 600}}, Case{320, 240, {320, 240}},
                          Case{3208, 2401, {800, 598}}, Case{4000, 2, {800, 1}}}) {
    const std::string photo =
        scratch.Write("photo.jpg", MakeJpeg(row.Width, row.Height, 200, 100, 50, "2004:05:06 07:08:09"));
    const std::string copy = scratch.File("copy" + std::to_string(row.Width) + ".jpg");
    ASSERT_TRUE(MakeEmailCopy(photo, copy));
    EXPECT_EQ(ReadImageSize(copy), row.Copy) << row.Width;
    EXPECT_THAT(ReadBytes(copy), testing::Not(HasSubstr("Exif")));
  }
  const std::string missing = scratch.File("missing.jpg");
  EXPECT_FALSE(MakeEmailCopy(missing, scratch.File("none.jpg")));
  EXPECT_FALSE(fs::exists(scratch.File("none.jpg")));
}

}  // namespace
