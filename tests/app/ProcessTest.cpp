// The program as a process of its own.

#include <sys/stat.h>
#include <unistd.h>

#include <QProcess>
#include <csignal>

#include "app/SessionFixture.h"

namespace {

namespace fs = std::filesystem;

constexpr int kPatience = 20'000;  // milliseconds

class Process : public CSessionFixture {
 protected:
  /// Starts the program, offscreen, in the environment of the test.
  static void Start(QProcess& process, const std::string& program, const QStringList& arguments = {}) {
    process.setProcessChannelMode(QProcess::ForwardedChannels);
    process.start(QString::fromStdString(program), arguments);
    ASSERT_TRUE(process.waitForStarted());
  }

  static int End(QProcess& process, int signal = SIGTERM) {
    ::kill(static_cast<pid_t>(process.processId()), signal);
    EXPECT_TRUE(process.waitForFinished(kPatience));
    return process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
  }

  static bool WaitForPhotos(const std::string& catalog, int count) {
    return QTest::qWaitFor([&] { return ReadNumber(catalog, "select count(*) from Asset") == count; },
                           kPatience);
  }

  /// A removable disk with the program on it. Returns the program's path.
  std::string MakeDisk() const {
    const std::string program = Scratch.File("disk/Vellumar/vellumar");
    fs::copy_file(VELLUMAR_PROGRAM, program);
    return program;
  }
};

}  // namespace

TEST_F(Process, SecondStartEndsWhileTheFirstGoesOn) {
  AddPhotos(1);
  QProcess first;
  Start(first, VELLUMAR_PROGRAM);
  ASSERT_TRUE(WaitForPhotos(CatalogPath(), 1));
  for (const std::string folder : {"/run", "/run of another session"}) {
    fs::create_directories(Scratch.GetPath() + folder);
    const CEnvironmentVariable runtime("XDG_RUNTIME_DIR", Scratch.GetPath() + folder);
    QProcess second;
    Start(second, VELLUMAR_PROGRAM);
    ASSERT_TRUE(second.waitForFinished(kPatience)) << folder;
    EXPECT_EQ(second.exitCode(), 0);
    EXPECT_EQ(first.state(), QProcess::Running);
  }

  EXPECT_EQ(End(first, SIGKILL), -1);
  QProcess next;
  Start(next, VELLUMAR_PROGRAM);
  EXPECT_FALSE(next.waitForFinished(500)) << "what the killed one left must not stop it";
  EXPECT_EQ(End(next), 1);
}

TEST_F(Process, RemovableDiskKeepsEverythingOnItself) {
  const std::string program = MakeDisk();
  const std::string catalog = Scratch.GetPath() + "/disk/Vellumar/vellumar.db";
  AddPhotos(2, "disk/My Pictures");
  AddPhotos(3);  // those of the user's home are not looked at
  RunSql(PicturesFolder() + "/vellumar.db", "create table Singletons (DBVersion integer)");
  QProcess process;
  Start(process, program, {"--really/activedisk-please"});
  EXPECT_TRUE(WaitForPhotos(catalog, 2));
  EXPECT_EQ(End(process), 1);
  EXPECT_TRUE(fs::exists(Scratch.GetPath() + "/disk/Vellumar/vellumar.thumbs"));
  EXPECT_FALSE(fs::exists(GetApplicationDataFolder()));

  fs::remove(catalog);
  ASSERT_TRUE(fs::remove(PicturesFolder() + "/vellumar.db"));
  Start(process, program, {"/ACTIVEDISK"});  // no switch
  EXPECT_TRUE(WaitForPhotos(CatalogPath(), 3));
  EXPECT_EQ(End(process), 1);
  EXPECT_FALSE(fs::exists(catalog));
}

TEST_F(Process, WriteProtectedDiskIsToldAndLeftWithoutATrace) {
  const std::string program = MakeDisk();
  const fs::path folder = fs::path(program).parent_path();
  fs::permissions(folder, fs::perms::owner_read | fs::perms::owner_exec | fs::perms::others_read |
                              fs::perms::others_exec);
  fs::permissions(Scratch.GetPath(), fs::perms::all);
  fs::permissions(Scratch.GetPath() + "/disk", fs::perms::all);
  QProcess process;
  if (::getuid() == 0) {  // for whom nothing is write-protected
    constexpr unsigned kNobody = 65534;
    ASSERT_EQ(::chown((Scratch.GetPath() + "/run").c_str(), kNobody, kNobody), 0);
    process.setChildProcessModifier([] {
      if (::setgid(kNobody) != 0 || ::setuid(kNobody) != 0) ::_exit(99);
    });
  }
  Start(process, program, {"/activedisk"});
  EXPECT_FALSE(process.waitForFinished(700)) << "it must wait with its message";
  EXPECT_EQ(End(process), 0);
  EXPECT_EQ(std::distance(fs::directory_iterator(folder), fs::directory_iterator()), 1);
  fs::permissions(folder, fs::perms::owner_all);
}
