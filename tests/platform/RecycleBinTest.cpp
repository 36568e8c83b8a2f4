#include <gmock/gmock.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>

#include "platform/Files.h"
#include "platform/RecycleBin.h"
#include "support/EnvironmentVariable.h"
#include "support/FaultSteps.h"
#include "support/ScratchFolder.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::MatchesRegex;
using testing::StartsWith;

namespace {

namespace fs = std::filesystem;

class RecycleBin : public testing::Test {
 protected:
  ~RecycleBin() override { platform::SetFaultPlan({}); }

  /// The names below a folder of the scratch folder, in order.
  std::vector<std::string> NamesIn(const std::string& folder) const {
    std::vector<std::string> names;
    std::error_code missing;
    for (const auto& entry : fs::directory_iterator(Scratch.GetPath() + "/" + folder, missing)) {
      names.push_back(entry.path().filename().string());
    }
    std::ranges::sort(names);
    return names;
  }
  std::string Read(const std::string& name) const { return ReadBytes(Scratch.GetPath() + "/" + name); }

  /// In a child with file systems of its own: a small one on `folder`. False where the system allows none.
  bool MountSmallDisk(const std::string& folder) const {
    fs::create_directories(Scratch.GetPath() + "/" + folder);
    return ::unshare(CLONE_NEWNS | (::getuid() == 0 ? 0 : CLONE_NEWUSER)) == 0 &&
           ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
           ::mount("none", (Scratch.GetPath() + "/" + folder).c_str(), "tmpfs", 0, "size=64k") == 0;
  }

  const CScratchFolder Scratch;
  const CEnvironmentVariable Data{"XDG_DATA_HOME", Scratch.GetPath() + "/data"};
};

constexpr int kNotAllowed = 77;

}  // namespace

TEST_F(RecycleBin, FilesGoUnderAFreeNameWithARecordOfTheirPlace) {
  const std::string odd = "b\xf6\xef\xbf\xbd %\n.jpg", largest = std::string(251, 'n') + ".jpg";
  for (const auto& name : {std::string("boat.jpg"), odd, largest}) {
    for (const char* bytes : {"one", "two"}) {
      EXPECT_TRUE(platform::MoveToRecycleBin(Scratch.Write("Pictures/" + name, bytes)));
    }
  }
  EXPECT_EQ(Read("data/Trash/files/boat.jpg"), "one");
  EXPECT_EQ(Read("data/Trash/files/boat.2.jpg"), "two");
  EXPECT_THAT(Read("data/Trash/info/boat.2.jpg.trashinfo"),
              MatchesRegex("\\[Trash Info\\]\nPath=" + Scratch.GetPath() +
                           "/Pictures/boat.jpg\nDeletionDate=20..-..-..T..:..:..\n"));
  EXPECT_THAT(
      Read("data/Trash/info/" + odd + ".trashinfo"),
      StartsWith("[Trash Info]\nPath=" + Scratch.GetPath() + "/Pictures/b%F6%EF%BF%BD%20%25%0A.jpg\n"));
  EXPECT_THAT(NamesIn("Pictures"), IsEmpty());
  EXPECT_EQ(NamesIn("data/Trash/files").size(), 6U);
  EXPECT_EQ(NamesIn("data/Trash/info").size(), 6U);
  EXPECT_EQ(fs::status(Scratch.GetPath() + "/data/Trash").permissions(), fs::perms(0700));
}

TEST_F(RecycleBin, OfALinkTheLinkGoesAndOnlyFilesAndLinksToThem) {
  const std::string target = Scratch.Write("elsewhere/boat.jpg", "the photo");
  const auto link = [&](const char* name, const std::string& to) {
    fs::create_symlink(to, Scratch.File(name));
    return Scratch.File(name);
  };
  EXPECT_TRUE(platform::MoveToRecycleBin(link("Pictures/a.jpg", target)));
  EXPECT_TRUE(platform::MoveToRecycleBin(link("Pictures/b.jpg", "nowhere")));
  EXPECT_EQ(ReadBytes(target), "the photo");
  EXPECT_TRUE(fs::is_symlink(Scratch.GetPath() + "/data/Trash/files/b.jpg"));
  const std::string folder = Scratch.GetPath() + "/elsewhere";
  ASSERT_EQ(::mkfifo(Scratch.File("Pictures/pipe").c_str(), 0600), 0);
  for (const std::string& path : {folder, folder + "/", link("Pictures/c.jpg", folder), target + "/",
                                  Scratch.File("Pictures/pipe"), Scratch.File("gone.jpg"), std::string()}) {
    EXPECT_FALSE(platform::MoveToRecycleBin(path)) << path;
  }
  EXPECT_THAT(NamesIn("Pictures"), ElementsAre("c.jpg", "pipe"));
  EXPECT_EQ(ReadBytes(target), "the photo");
}

TEST_F(RecycleBin, AfterAFaultOrAKillAtAnyStepTheFileIsWholeInOneOfThePlaces) {
  for (const bool kills : {false, true}) {
    int step = 0;
    for (bool done = false; !done;) {
      fs::remove_all(Scratch.GetPath() + "/data");
      const std::string path = Scratch.Write("boat.jpg", "the photo");
      bool moved = true;
      if (kills) {
        done = !RunAndKillAtStep(++step, [&] { platform::MoveToRecycleBin(path); });
      } else {
        const CFailingStep fault(++step);
        moved = platform::MoveToRecycleBin(path);
        done = fault.GetSteps() < step;
        EXPECT_EQ(NamesIn("data/Trash/info").size(), NamesIn("data/Trash/files").size()) << "step " << step;
      }
      const std::string here = Read("boat.jpg"), there = Read("data/Trash/files/boat.jpg");
      EXPECT_EQ(here + there, "the photo") << "step " << step;
      EXPECT_TRUE(there.empty() || Read("data/Trash/info/boat.jpg.trashinfo").ends_with("\n"));
      EXPECT_TRUE(kills || !moved || !there.empty()) << "step " << step;
    }
    EXPECT_GT(step, 8);
  }
}

TEST_F(RecycleBin, WhereNothingCanBeWrittenTheFileStays) {
  const std::string path = Scratch.Write("Pictures/boat.jpg", "the photo");
  fs::permissions(Scratch.GetPath(), fs::perms(0755));
  fs::create_directories(Scratch.GetPath() + "/data");
  fs::permissions(Scratch.GetPath() + "/data", fs::perms(0777));
  EXPECT_TRUE(RunAsNobody([&] { return !platform::MoveToRecycleBin(path); })) << "a folder of another user";
  fs::permissions(Scratch.GetPath() + "/Pictures", fs::perms(0777));
  fs::remove_all(Scratch.GetPath() + "/data/Trash");
  fs::permissions(Scratch.GetPath() + "/data", fs::perms(0755));
  EXPECT_TRUE(RunAsNobody([&] { return !platform::MoveToRecycleBin(path); })) << "no place for the trash";
  {
    const CFileSizeLimit full(0);
    EXPECT_FALSE(platform::MoveToRecycleBin(path)) << "no room for the record";
  }
  EXPECT_EQ(ReadBytes(path), "the photo");
  EXPECT_THAT(NamesIn("data/Trash/info"), IsEmpty());
}

TEST_F(RecycleBin, AFileOfAnotherDiskGoesToThatDisksTrashOrAsACopyToTheUsers) {
  const int status = RunInChild([&] {
    if (!MountSmallDisk("disk")) return kNotAllowed;
    const std::string path = Scratch.Write("disk/trip/boat.jpg", "the photo");
    const std::string own = "disk/.Trash-" + std::to_string(::getuid());
    EXPECT_TRUE(platform::MoveToRecycleBin(path));
    EXPECT_EQ(Read(own + "/files/boat.jpg"), "the photo");
    EXPECT_THAT(Read(own + "/info/boat.jpg.trashinfo"), StartsWith("[Trash Info]\nPath=trip/boat.jpg\n"));

    // A common trash without its sticky bit isn't trusted, nor one's own that is a link to elsewhere.
    const std::string common = Scratch.File("disk/.Trash");
    const auto again = [&] {
      return platform::MoveToRecycleBin(Scratch.Write("disk/trip/boat.jpg", "the photo"));
    };
    fs::remove_all(Scratch.File(own));
    fs::create_directory(common);
    fs::create_directory_symlink(Scratch.File("trap/folder"), Scratch.File(own));
    EXPECT_TRUE(again());
    EXPECT_EQ(Read("data/Trash/files/boat.jpg"), "the photo");
    EXPECT_THAT(NamesIn("trap"), IsEmpty());
    fs::permissions(common, fs::perms(01777));
    EXPECT_TRUE(again());
    EXPECT_EQ(Read("disk/.Trash/" + std::to_string(::getuid()) + "/files/boat.jpg"), "the photo");

    // Read-only from now on.
    Scratch.Write("disk/trip/boat.jpg", "the photo");
    const std::string disk = Scratch.File("disk");
    EXPECT_EQ(::mount("none", disk.c_str(), nullptr, MS_REMOUNT | MS_RDONLY, nullptr), 0);
    EXPECT_FALSE(platform::MoveToRecycleBin(path));
    EXPECT_EQ(ReadBytes(path), "the photo");
    EXPECT_THAT(NamesIn("data/Trash/files"), ElementsAre("boat.jpg"));
    return testing::Test::HasFailure() ? 1 : 0;
  });
  if (WEXITSTATUS(status) == kNotAllowed) GTEST_SKIP() << "no file systems can be mounted here";
  EXPECT_EQ(status, 0);
}
