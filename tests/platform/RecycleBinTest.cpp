#include <gmock/gmock.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>

#include "platform/RecycleBin.h"
#include "support/EnvironmentVariable.h"
#include "support/FaultSteps.h"
#include "support/ScratchFolder.h"

using testing::MatchesRegex;
using testing::StartsWith;

namespace {

namespace fs = std::filesystem;

class RecycleBin : public testing::Test {
 protected:
  std::string In(const std::string& name) const { return Scratch.GetPath() + "/" + name; }
  std::string Read(const std::string& name) const { return ReadBytes(In(name)); }
  bool Move(const std::string& name, const std::string& bytes = "the photo") const {
    return platform::MoveToRecycleBin(Scratch.Write(name, bytes));
  }

  const CScratchFolder Scratch;
  const CEnvironmentVariable Data{"XDG_DATA_HOME", In("data")};
};

constexpr int kNotAllowed = 77;

}  // namespace

TEST_F(RecycleBin, FilesGoUnderAFreeNameWithARecordOfTheirPlace) {
  const std::string odd = "b\xf6\xef\xbf\xbd %\n.jpg", longest = std::string(251, 'n').append(".jpg");
  for (const auto& name : {std::string("boat.jpg"), odd, longest}) {
    EXPECT_TRUE(Move("Pictures/" + name, "one"));
    EXPECT_TRUE(Move("Pictures/" + name, "two"));
  }
  EXPECT_EQ(Read("data/Trash/files/boat.jpg"), "one");
  EXPECT_EQ(Read("data/Trash/files/boat.2.jpg"), "two");
  EXPECT_THAT(Read("data/Trash/info/boat.2.jpg.trashinfo"),
              MatchesRegex("\\[Trash Info\\]\nPath=" + In("Pictures/boat.jpg") +
                           "\nDeletionDate=20..-..-..T..:..:..\n"));
  EXPECT_THAT(Read("data/Trash/info/" + odd + ".trashinfo"),
              StartsWith("[Trash Info]\nPath=" + In("Pictures/b%F6%EF%BF%BD%20%25%0A.jpg") + "\n"));
  EXPECT_EQ(NamesIn(In("Pictures")).size(), 0U);
  EXPECT_EQ(NamesIn(In("data/Trash/files")).size(), 6U);
  EXPECT_EQ(NamesIn(In("data/Trash/info")).size(), 6U);
}

TEST_F(RecycleBin, OfALinkTheLinkGoesAndOnlyFilesAndLinksToThem) {
  const std::string target = Scratch.Write("folder/boat.jpg", "the photo");
  for (const auto& [name, to] : {std::pair("a.jpg", target), {"b.jpg", "nowhere"}, {"c.jpg", In("folder")}}) {
    fs::create_symlink(to, In(name));
    EXPECT_EQ(platform::MoveToRecycleBin(In(name)), to != In("folder"));
  }
  EXPECT_TRUE(fs::is_symlink(In("data/Trash/files/a.jpg")));
  ASSERT_EQ(::mkfifo(In("pipe").c_str(), 0600), 0);
  for (const std::string& path : {In("folder"), In("folder/"), target + "/", In("pipe"), std::string()}) {
    EXPECT_FALSE(platform::MoveToRecycleBin(path)) << path;
  }
  EXPECT_EQ(ReadBytes(target), "the photo");
  EXPECT_EQ(NamesIn(In("data/Trash/info")).size(), 2U);
}

TEST_F(RecycleBin, AFileOfAnotherDiskGoesToThatDisksTrashOrAsACopyToTheUsers) {
  const int status = RunInChild([&] {
    fs::create_directory(In("disk"));
    const std::string disk = In("disk"), own = In("disk/.Trash-" + std::to_string(::getuid()));
    if (::unshare(CLONE_NEWNS | (::getuid() == 0 ? 0 : CLONE_NEWUSER)) != 0 ||
        ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
        ::mount("none", disk.c_str(), "tmpfs", 0, "size=64k") != 0) {
      return kNotAllowed;
    }
    EXPECT_TRUE(Move("disk/trip/boat.jpg"));
    EXPECT_EQ(ReadBytes(own + "/files/boat.jpg"), "the photo");
    EXPECT_THAT(ReadBytes(own + "/info/boat.jpg.trashinfo"),
                StartsWith("[Trash Info]\nPath=trip/boat.jpg\n"));
    // A trash that is a link to elsewhere isn't trusted.
    fs::remove_all(own);
    fs::create_directory_symlink(Scratch.File("trap/folder"), own);
    EXPECT_TRUE(Move("disk/trip/boat.jpg"));
    EXPECT_EQ(Read("data/Trash/files/boat.jpg"), "the photo");
    const std::string path = Scratch.Write("disk/trip/boat.jpg", "the photo");
    EXPECT_EQ(::mount("none", disk.c_str(), nullptr, MS_REMOUNT | MS_RDONLY, nullptr), 0);
    EXPECT_FALSE(platform::MoveToRecycleBin(path));
    EXPECT_EQ(ReadBytes(path), "the photo");
    EXPECT_EQ(NamesIn(In("data/Trash/files")).size(), 1U);
    return testing::Test::HasFailure() ? 1 : 0;
  });
  if (WEXITSTATUS(status) == kNotAllowed) GTEST_SKIP() << "no file systems can be mounted here";
  EXPECT_EQ(status, 0);
}
