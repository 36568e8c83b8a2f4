#include <gmock/gmock.h>
#include <sys/stat.h>

#include "platform/Files.h"
#include "platform/Mounts.h"
#include "platform/SpecialFolders.h"
#include "platform/Uuid.h"
#include "support/EnvironmentVariable.h"
#include "support/ScratchFolder.h"

namespace {

/// A home folder of its own, with none of the XDG variables set.
class SpecialFolders : public testing::Test {
 protected:
  std::string Home() const { return Scratch.GetPath(); }

  std::string Pictures() { return platform::PicturesFolder(Known); }

  void NameFolders(const std::string& text) const { Scratch.Write(".config/user-dirs.dirs", text); }

  const CScratchFolder Scratch;
  const CEnvironmentVariable HomeVariable{"HOME", Scratch.GetPath()};
  const CEnvironmentVariable Data{"XDG_DATA_HOME", std::nullopt};
  const CEnvironmentVariable Config{"XDG_CONFIG_HOME", std::nullopt};
  const CEnvironmentVariable Cache{"XDG_CACHE_HOME", std::nullopt};
  const CEnvironmentVariable Runtime{"XDG_RUNTIME_DIR", std::nullopt};
  const CEnvironmentVariable Temporary{"TMPDIR", std::nullopt};
  bool Known = false;
};

TEST_F(SpecialFolders, FollowTheEnvironment) {
  EXPECT_EQ(platform::DataHome(), Home() + "/.local/share");
  EXPECT_EQ(platform::ConfigHome(), Home() + "/.config");
  EXPECT_EQ(platform::CacheHome(), Home() + "/.cache");
  EXPECT_EQ(platform::TemporaryFolder(), "/tmp");
  const CEnvironmentVariable data("XDG_DATA_HOME", "/data/");
  const CEnvironmentVariable config("XDG_CONFIG_HOME", "relative");
  const CEnvironmentVariable cache("XDG_CACHE_HOME", "");
  EXPECT_EQ(platform::DataHome(), "/data");
  EXPECT_EQ(platform::ConfigHome(), Home() + "/.config");
  EXPECT_EQ(platform::CacheHome(), Home() + "/.cache");
  const std::string program = platform::ExecutableFolder();
  EXPECT_TRUE(std::filesystem::exists(program + "/platform_test")) << program;
}

TEST_F(SpecialFolders, PicturesAreKnownIfTheyAreNamedOrStand) {
  EXPECT_EQ(Pictures(), Home() + "/Pictures");
  EXPECT_FALSE(Known);
  NameFolders("XDG_PICTURES_DIR=\"$HOME/\"\n");  // switched off
  EXPECT_EQ(Pictures(), Home() + "/Pictures");
  EXPECT_FALSE(Known);
  std::filesystem::create_directory(Home() + "/Pictures");
  EXPECT_EQ(Pictures(), Home() + "/Pictures");
  EXPECT_TRUE(Known);
  NameFolders("# written by hand\nXDG_PICTURES_DIR=\"$HOME/Mes \\\"photos\\\"\"\nXDG_MUSIC_DIR=\"/m\"\n");
  EXPECT_EQ(Pictures(), Home() + "/Mes \"photos\"");
  EXPECT_TRUE(Known);
  NameFolders("  XDG_PICTURES_DIR=\"/mnt/photos/\"");
  EXPECT_EQ(Pictures(), "/mnt/photos");
}

TEST_F(SpecialFolders, DamagedUserDirsNameNothing) {
  for (const char* text : {"XDG_PICTURES_DIR=", "XDG_PICTURES_DIR=\"", "XDG_PICTURES_DIR=\"relative\"",
                           "XDG_PICTURES_DIR=\"$HOMEWARD/x\"", "XDG_PICTURES_DIR=\"/open",
                           "XDG_PICTURES_DIRS=\"/x\"", "XDG_PICTURES_DIR=\"/x\\"}) {
    NameFolders(text);
    EXPECT_EQ(Pictures(), Home() + "/Pictures") << text;
    EXPECT_FALSE(Known) << text;
  }
}

TEST_F(SpecialFolders, DocumentsFallBackToTheHomeFolder) {
  EXPECT_EQ(platform::DocumentsFolder(), Home());
  std::filesystem::create_directory(Home() + "/Documents");
  EXPECT_EQ(platform::DocumentsFolder(), Home() + "/Documents");
  NameFolders("XDG_DOCUMENTS_DIR=\"$HOME/Papers\"\n");
  EXPECT_EQ(platform::DocumentsFolder(), Home() + "/Papers");
}

TEST_F(SpecialFolders, TheRuntimeFolderIsPrivate) {
  const CEnvironmentVariable temporary("TMPDIR", Home());
  const std::string folder = platform::RuntimeFolder();
  EXPECT_THAT(folder, testing::StartsWith(Home() + "/vellumar-"));
  ASSERT_EQ(::chmod(folder.c_str(), 0755), 0);
  EXPECT_EQ(platform::RuntimeFolder(), "");  // somebody else could have put a socket there
  std::filesystem::remove(folder);
  std::filesystem::create_directory_symlink(Home(), folder);
  EXPECT_EQ(platform::RuntimeFolder(), "");
  const CEnvironmentVariable runtime("XDG_RUNTIME_DIR", Home());
  EXPECT_EQ(platform::RuntimeFolder(), Home());
}

TEST(Mounts, AreReadFromTheKernelsTable) {
  const auto mounts = platform::ParseMountTable(
      "22 1 8:2 / / rw,relatime shared:1 - ext4 /dev/sda2 rw\n"
      "23 22 0:21 / /proc rw - proc proc rw\n"
      "not a line\n"
      "24 22 8:17 / /media/ann/My\\040disk\\134x\\012 rw shared:5 master:2 - vfat /dev/sdb1 rw\n"
      "25 22 0:40 / /dev rw - tmpfs tmpfs rw\n"
      "26 22 0:41 / /devices rw - tmpfs tmpfs rw\n"
      "27 22 8:x / /bad rw - ext4 x rw\n"
      "28 22 0:50 / /run/user/1000/doc rw - fuse.portal portal rw\n"
      "29 22 8:3 / /cut rw");
  std::vector<std::string> paths;
  std::vector<std::string> pseudo;
  for (const auto& mount : mounts) {
    paths.push_back(mount.Path);
    if (platform::IsPseudoMount(mount)) pseudo.push_back(mount.Path);
  }
  EXPECT_THAT(paths, testing::ElementsAre("/", "/proc", "/media/ann/My disk\\x\n", "/dev", "/devices",
                                          "/run/user/1000/doc"));
  EXPECT_THAT(pseudo, testing::ElementsAre("/proc", "/dev", "/run/user/1000/doc"));

  const platform::PseudoFileSystems known(mounts);
  EXPECT_TRUE(known.Contains(mounts[1].Device));
  EXPECT_FALSE(known.Contains(mounts[2].Device));
}

TEST(Mounts, OfThisSystemLeaveOutProc) {
  platform::FileStatus proc;
  platform::FileStatus root;
  ASSERT_FALSE(platform::GetStatus("/proc", proc));
  ASSERT_FALSE(platform::GetStatus("/", root));
  const platform::PseudoFileSystems pseudo;
  EXPECT_TRUE(pseudo.Contains(proc.Device));
  EXPECT_FALSE(pseudo.Contains(root.Device));
  const auto roots = platform::DiskRoots();
  ASSERT_FALSE(roots.empty());
  EXPECT_EQ(roots.front(), "/");
  EXPECT_THAT(roots, testing::Not(testing::Contains("/proc")));
}

TEST(Uuid, IsRandomOfVersion4) {
  std::array<std::uint8_t, 16> first{};
  std::array<std::uint8_t, 16> second{};
  ASSERT_TRUE(platform::GenerateUuid(first));
  ASSERT_TRUE(platform::GenerateUuid(second));
  EXPECT_NE(first, second);
  EXPECT_EQ(first[6] >> 4, 4);
  EXPECT_EQ(first[8] >> 6, 2);
}

}  // namespace
