#include <gmock/gmock.h>
#include <sys/stat.h>

#include "platform/Mounts.h"
#include "platform/SpecialFolders.h"
#include "support/EnvironmentVariable.h"
#include "support/ScratchFolder.h"

namespace {

TEST(SpecialFolders, PicturesAreKnownIfTheyAreNamedOrStandAndTheRuntimeFolderIsPrivate) {
  const CScratchFolder scratch;
  const std::string home = scratch.GetPath(), standard = home + "/Pictures";
  const CEnvironmentVariable homeVariable("HOME", home), temporary("TMPDIR", home);
  const CEnvironmentVariable config("XDG_CONFIG_HOME", std::nullopt),
      runtime("XDG_RUNTIME_DIR", std::nullopt);
  // The user's file of folders, the folder of pictures, and whether it is known.
  const std::tuple<const char*, std::string, bool> cases[] = {
      {"", standard, false},
      {"XDG_PICTURES_DIR=\"$HOME/\"\n", standard, false},  // switched off
      {"XDG_PICTURES_DIR=\"$HOME/Mes \\\"photos\\\"\"\n", home + "/Mes \"photos\"", true},
      {"#\n  XDG_PICTURES_DIR=\"/mnt/photos/\"", "/mnt/photos", true},
      {"XDG_PICTURES_DIR=\"relative\"", standard, false},
      {"XDG_PICTURES_DIR=\"$HOMEWARD/x\"", standard, false},
      {"XDG_PICTURES_DIR=\"/x\\", standard, false}};
  bool isKnown = false;
  for (const auto& [userDirs, folder, known] : cases) {
    scratch.Write(".config/user-dirs.dirs", userDirs);
    EXPECT_EQ(platform::PicturesFolder(isKnown), folder) << userDirs;
    EXPECT_EQ(isKnown, known) << userDirs;
  }
  std::filesystem::create_directory(standard);
  EXPECT_EQ(platform::PicturesFolder(isKnown), standard);
  EXPECT_TRUE(isKnown);

  const std::string folder = platform::RuntimeFolder();
  EXPECT_THAT(folder, testing::StartsWith(home + "/vellumar-"));
  ASSERT_EQ(::chmod(folder.c_str(), 0755), 0);
  EXPECT_EQ(platform::RuntimeFolder(), "") << "somebody else could have put a socket there";
  std::filesystem::remove(folder);
  std::filesystem::create_directory_symlink(home, folder);
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
      "29 22 8:3 / /cut rw");
  std::vector<std::string> paths;
  for (const auto& mount : mounts) paths.push_back((IsPseudoMount(mount) ? "pseudo " : "") + mount.Path);
  EXPECT_THAT(
      paths, testing::ElementsAre("/", "pseudo /proc", "/media/ann/My disk\\x\n", "pseudo /dev", "/devices"));
  const platform::PseudoFileSystems known(mounts);
  EXPECT_TRUE(known.Contains(mounts[1].Device));
  EXPECT_FALSE(known.Contains(mounts[2].Device));
}

}  // namespace
