// The program as a process of its own.

#include <sys/stat.h>
#include <unistd.h>

#include <QProcess>

#include "app/SessionFixture.h"

namespace {

namespace fs = std::filesystem;

constexpr int kPatience = 20'000;  // milliseconds

class Process : public CSessionFixture {
 protected:
  Process() { fs::copy_file(VELLUMAR_PROGRAM, Program); }

  /// Starts the program on its disk, offscreen, in the environment of the test.
  void Start(QProcess& process, const QString& argument) const {
    process.setProcessChannelMode(QProcess::ForwardedChannels);
    process.start(QString::fromStdString(Program), {argument});
    ASSERT_TRUE(process.waitForStarted());
  }

  /// Tells the program to end. Returns its exit code.
  static int End(QProcess& process) {
    EXPECT_EQ(process.state(), QProcess::Running);
    process.terminate();
    EXPECT_TRUE(process.waitForFinished(kPatience));
    return process.exitCode();
  }

  static bool WaitForPhotos(const std::string& folder, const std::string& count) {
    const auto arePhotosThere = [&] {
      return FileExists(folder + "/vellumar.thumbs", false) &&
             RunSqlForOne(folder + "/vellumar.db", "select count(*) from Asset") == count;
    };
    return QTest::qWaitFor(arePhotosThere, kPatience);
  }

  const std::string DiskFolder = Scratch.GetPath() + "/disk/Vellumar";
  const std::string Program = Scratch.File("disk/Vellumar/vellumar");
};

}  // namespace

TEST_F(Process, RemovableDiskKeepsEverythingOnItself) {
  AddPhotos(2, "disk/My Pictures");
  AddPhotos(3);  // those of the user's home are not looked at
  RunSql(PicturesFolder() + "/vellumar.db", "create table Singletons (DBVersion integer)");
  QProcess process;
  Start(process, "--really/activedisk-please");
  ASSERT_TRUE(WaitForPhotos(DiskFolder, "2"));
  process.kill();
  ASSERT_TRUE(process.waitForFinished(kPatience));
  Start(process, "/activedisk");
  EXPECT_FALSE(process.waitForFinished(500)) << "what the killed one left must not stop it";
  EXPECT_EQ(End(process), 1);
  EXPECT_FALSE(fs::exists(GetApplicationDataFolder()));

  fs::remove(DiskFolder + "/vellumar.db");
  ASSERT_TRUE(fs::remove(PicturesFolder() + "/vellumar.db"));
  Start(process, "/ACTIVEDISK");  // no switch
  EXPECT_TRUE(WaitForPhotos(GetApplicationDataFolder(), "3"));
  EXPECT_EQ(End(process), 1);
  EXPECT_FALSE(fs::exists(DiskFolder + "/vellumar.db"));
}

TEST_F(Process, ALaterStartHandsItsPathsOver) {
  AddPhotos(1);
  QProcess first, second;
  Start(first, QString::fromStdString("file://" + PicturesFolder() + "/photo0.jpg"));
  ASSERT_TRUE(WaitForPhotos(GetApplicationDataFolder(), "1"));
  AddPhotos(1, "Pictures/a new one");  // which only the path leads to
  second.setWorkingDirectory(QString::fromStdString(PicturesFolder()));
  Start(second, "x/../a new one/photo0.jpg");
  EXPECT_TRUE(second.waitForFinished(kPatience));
  EXPECT_EQ(second.exitCode(), 0);
  EXPECT_TRUE(WaitForPhotos(GetApplicationDataFolder(), "2"));
  EXPECT_EQ(End(first), 1);
}

TEST_F(Process, WriteProtectedDiskIsToldAndLeftWithoutATrace) {
  fs::permissions(DiskFolder, fs::perms(0555));
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
  Start(process, "/activedisk");
  EXPECT_FALSE(process.waitForFinished(700)) << "it must wait with its message";
  EXPECT_EQ(End(process), 0);
  EXPECT_EQ(std::distance(fs::directory_iterator(DiskFolder), fs::directory_iterator()), 1);
  fs::permissions(DiskFolder, fs::perms::owner_all);
}
