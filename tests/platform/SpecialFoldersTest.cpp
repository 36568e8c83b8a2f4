#include <gmock/gmock.h>
#include <sys/stat.h>

#include "platform/Mounts.h"
#include "platform/SpecialFolders.h"
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
  const CEnvironmentVariable Runtime{"XDG_RUNTIME_DIR", std::nullopt};
  bool Known = false;
};

TEST_F(SpecialFolders, PicturesAreKnownIfTheyAreNamedOrStand) {
  struct Case {
    const char* UserDirs;
    std::string Folder;
    bool Known;
  };
  const std::string standard = Home() + "/Pictures";
  const Case cases[] = {{"", standard, false},
                        {"XDG_PICTURES_DIR=\"$HOME/\"\n", standard, false},  // switched off
                        {"XDG_PICTURES_DIR=\"$HOME/Mes \\\"photos\\\"\"\n", Home() + "/Mes \"photos\"", true},
                        {"#\n  XDG_PICTURES_DIR=\"/mnt/photos/\"", "/mnt/photos", true},
                        {"XDG_PICTURES_DIR=\"relative\"", standard, false},
                        {"XDG_PICTURES_DIR=\"$HOMEWARD/x\"", standard, false},
                        {"XDG_PICTURES_DIR=\"/open", standard, false},
                        {"XDG_PICTURES_DIR=\"/x\\", standard, false}};
  for (const auto& [userDirs, folder, known] : cases) {
    NameFolders(userDirs);
    EXPECT_EQ(Pictures(), folder) << userDirs;
    EXPECT_EQ(Known, known) << userDirs;
  }
  std::filesystem::create_directory(standard);
  EXPECT_EQ(Pictures(), standard);
  EXPECT_TRUE(Known);
}

TEST_F(SpecialFolders, RuntimeFolderIsPrivate) {
  const CEnvironmentVariable temporary("TMPDIR", Home());
  const std::string folder = platform::RuntimeFolder();
  EXPECT_THAT(folder, testing::StartsWith(Home() + "/vellumar-"));
  ASSERT_EQ(::chmod(folder.c_str(), 0755), 0);
  EXPECT_EQ(platform::RuntimeFolder(), "") << "somebody else could have put a socket there";
  std::filesystem::remove(folder);
  std::filesystem::create_directory_symlink(Home(), folder);
  EXPECT_EQ(platform::RuntimeFolder(), "");
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

}  // namespace
