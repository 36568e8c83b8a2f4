

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>

#include "platform/Files.h"
#include "platform/WholeFiles.h"
#include "support/FaultSteps.h"
#include "support/FileSizeLimit.h"
#include "support/ScratchFolder.h"

using testing::AnyOf;
using testing::Each;
using testing::StartsWith;
using testing::UnorderedElementsAre;

namespace {

const std::string kOld(3000, 'o');
const std::string kNew(700000, 'n');  // more than one block of a copy

std::error_code Replace(const std::string& path, const std::string& bytes) {
  return platform::WriteFileAtomically(path, bytes.data(), bytes.size());
}

std::vector<std::string> NamesIn(const CScratchFolder& folder) {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(folder.GetPath())) {
    names.push_back(entry.path().filename().string());
  }
  return names;
}

unsigned ModeOf(const std::string& path) {
  platform::FileStatus status;
  EXPECT_FALSE(platform::GetStatus(path, status));
  return status.Mode;
}

/// An operation that makes "target" of kNew, from a folder where "source" holds kNew.
struct Operation {
  bool Replaces;
  std::error_code (*Run)(const CScratchFolder& folder);
};

class WholeFile : public testing::TestWithParam<Operation> {
 protected:
  /// What may stand under the target's name at any moment.
  void ExpectOldOrNew(const CScratchFolder& folder, bool mustBeNew) const {
    const std::string path = folder.GetPath() + "/target";
    const bool isThere = std::filesystem::exists(path);
    EXPECT_TRUE(isThere || !(GetParam().Replaces || mustBeNew));
    if (!isThere) return;
    const std::string bytes = ReadBytes(path);
    EXPECT_TRUE(bytes == kNew || (GetParam().Replaces && !mustBeNew && bytes == kOld)) << bytes.size();
    EXPECT_EQ(ReadBytes(folder.GetPath() + "/source"), kNew);
  }

  void Prepare(const CScratchFolder& folder) const {
    folder.Write("source", kNew);
    if (GetParam().Replaces) folder.Write("target", kOld);
  }
};

TEST_P(WholeFile, AFaultAtAnyStepLeavesWholeFiles) {
  for (const bool allAfter : {false, true}) {
    int steps = 0;
    bool done = false;
    for (int step = 1; !done; ++step) {
      const CScratchFolder folder;
      Prepare(folder);
      std::error_code error;
      {
        const CFailingStep fault(step, allAfter);
        error = GetParam().Run(folder);
        steps = fault.GetSteps();
      }
      done = steps < step;
      ExpectOldOrNew(folder, !error);
      EXPECT_EQ(error.value(), done ? 0 : ENOSPC) << "step " << step;
      EXPECT_TRUE(allAfter || testing::Value(NamesIn(folder), Each(AnyOf("source", "target")))) << step;
    }
    EXPECT_GE(steps, 4) << "at least: create, write, sync, rename";
  }
}

TEST_P(WholeFile, AKillAtAnyStepLeavesWholeFiles) {
  bool killed = true;
  for (int step = 1; killed; ++step) {
    const CScratchFolder folder;
    Prepare(folder);
    killed = RunAndKillAtStep(step, [&] { static_cast<void>(GetParam().Run(folder)); });
    ExpectOldOrNew(folder, !killed);
    // What a kill leaves behind is hidden from a search for photos.
    EXPECT_THAT(NamesIn(folder), Each(AnyOf("source", "target", StartsWith(".vellumar-"))));
  }
}

TEST_P(WholeFile, AShortWriteIsContinuedAndItsEndReported) {
  const CScratchFolder folder;
  Prepare(folder);
  {
    const CFileSizeLimit full(5000);  // the first write is cut short there, the next one fails
    EXPECT_EQ(GetParam().Run(folder), std::errc::file_too_large);
  }
  ExpectOldOrNew(folder, false);
  EXPECT_THAT(NamesIn(folder), Each(AnyOf("source", "target")));
}

std::error_code ReplaceTarget(const CScratchFolder& folder) {
  return Replace(folder.GetPath() + "/target", kNew);
}
std::error_code WriteTarget(const CScratchFolder& folder) {
  return platform::WriteNewFile(folder.GetPath() + "/target", kNew.data(), kNew.size());
}
std::error_code CopyToTarget(const CScratchFolder& folder) {
  return platform::CopyToNewFile(folder.GetPath() + "/source", folder.GetPath() + "/target");
}
INSTANTIATE_TEST_SUITE_P(Operations, WholeFile,
                         testing::Values(Operation{true, &ReplaceTarget}, Operation{false, &WriteTarget},
                                         Operation{false, &CopyToTarget}));

TEST(WriteFileAtomically, FlushesTheFileBeforeItGetsItsNameAndTheFolderAfter) {
  const CScratchFolder folder;
  const std::string path = folder.Write("file", kOld);
  ASSERT_EQ(::chmod(path.c_str(), 0640), 0);  // no step may show it to others
  std::vector<std::string> steps;
  platform::SetFaultPlan([&](std::string_view operation, std::string_view target) {
    const bool isFolder = target == folder.GetPath();
    steps.push_back(std::string(operation) + (isFolder ? " folder" : ""));
    EXPECT_TRUE(operation == "create" || isFolder || (ModeOf(std::string(target)) & 07U) == 0) << operation;
    return std::error_code();
  });
  EXPECT_FALSE(Replace(path, kNew));
  platform::SetFaultPlan({});
  EXPECT_THAT(steps, testing::ElementsAre("create", "chmod", "write", "sync", "rename", "sync folder"));
}

TEST(WriteFileAtomically, KeepsPermissionBitsAndFollowsLinks) {
  const CScratchFolder folder;
  const std::string real = folder.Write("below/real", kOld);
  ASSERT_EQ(::chmod(real.c_str(), 0640), 0);
  const std::string link = folder.File("link");
  ASSERT_EQ(::symlink("below/real", link.c_str()), 0);
  EXPECT_FALSE(Replace(link, kNew));
  EXPECT_TRUE(std::filesystem::is_symlink(link));
  EXPECT_EQ(ReadBytes(real), kNew);
  EXPECT_EQ(ModeOf(real), 0640U);

  const std::string loop = folder.File("loop");
  ASSERT_EQ(::symlink("loop", loop.c_str()), 0);
  EXPECT_EQ(Replace(loop, kNew), std::errc::too_many_symbolic_link_levels);
  const std::string fifo = folder.File("fifo");
  ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
  EXPECT_EQ(Replace(fifo, kNew), std::errc::not_supported);
  EXPECT_EQ(Replace(folder.GetPath() + "/below", kNew), std::errc::is_a_directory);
  EXPECT_THAT(NamesIn(folder), UnorderedElementsAre("below", "link", "loop", "fifo"));
}

TEST(RemoveIfAbandoned, TakesWhatKillsLeaveAndNothingThatIsBeingMade) {
  const CScratchFolder folder;
  const std::string path = folder.Write("file", kOld);
  const auto sweep = [&folder] {
    for (const std::string& name : NamesIn(folder)) {
      if (platform::IsUnfinishedName(name)) platform::RemoveIfAbandoned(folder.GetPath() + "/" + name);
    }
  };
  int step = 1;
  while (RunAndKillAtStep(step, [&] { Replace(path, kNew); })) ++step;
  EXPECT_GT(NamesIn(folder).size(), 1U) << "kills leave something";
  folder.Write(".vellumar-db-abcdefghij", "");
  std::filesystem::create_symlink("file", folder.File(".vellumar-abcdefghij"));
  sweep();
  EXPECT_THAT(NamesIn(folder),
              UnorderedElementsAre("file", ".vellumar-db-abcdefghij", ".vellumar-abcdefghij"));
  platform::SetFaultPlan([&sweep](std::string_view operation, std::string_view) {
    if (operation != "remove") sweep();
    return std::error_code();
  });
  EXPECT_FALSE(Replace(path, kOld));
  EXPECT_FALSE(platform::CopyToNewFile(path, folder.GetPath() + "/copy"));
  platform::SetFaultPlan({});
  EXPECT_EQ(ReadBytes(folder.GetPath() + "/copy"), kOld);
  folder.File(".vellumar-folder/kept");
  platform::RemoveUnfinishedFiles(folder.GetPath());
  EXPECT_THAT(NamesIn(folder), UnorderedElementsAre("file", "copy", ".vellumar-folder"));
}

TEST(NewNames, AreNeverTakenFromAnother) {
  const CScratchFolder folder;
  const std::string from = folder.Write("from", kNew);
  const std::string taken = folder.Write("taken", kOld);
  const std::string dangling = folder.File("dangling");
  ASSERT_EQ(::symlink("nowhere", dangling.c_str()), 0);
  for (const std::string& to : {taken, dangling}) {
    EXPECT_EQ(platform::WriteNewFile(to, "x", 1), std::errc::file_exists);
    EXPECT_EQ(platform::CopyToNewFile(from, to), std::errc::file_exists);
    EXPECT_EQ(platform::RenameToNewName(from, to), std::errc::file_exists);
  }
  EXPECT_EQ(ReadBytes(taken), kOld);
  EXPECT_THAT(NamesIn(folder), UnorderedElementsAre("from", "taken", "dangling"));
}

TEST(RenameToNewName, WorksWhereTheSystemKnowsNoSuchRename) {
  const CScratchFolder folder;
  const std::string from = folder.Write("from", kNew);
  const std::string taken = folder.Write("taken", kOld);
  const std::string to = folder.File("to");
  bool knowsLinks = true;
  platform::SetFaultPlan([&knowsLinks](std::string_view operation, std::string_view) {
    if (operation == "rename") return make_error_code(std::errc::invalid_argument);
    if (operation == "link" && !knowsLinks) return make_error_code(std::errc::operation_not_permitted);
    return std::error_code();
  });
  for (const bool links : {true, false}) {
    knowsLinks = links;
    EXPECT_EQ(platform::RenameToNewName(from, taken), std::errc::file_exists);
    EXPECT_FALSE(platform::RenameToNewName(from, to));
    EXPECT_THAT(NamesIn(folder), UnorderedElementsAre("to", "taken"));
    EXPECT_FALSE(platform::RenameToNewName(to, from));
  }
  // A name that can't be removed after the link leaves the file where it was, under one name.
  platform::SetFaultPlan([&from](std::string_view operation, std::string_view path) {
    const bool fails = operation == "rename" || (operation == "remove" && path == from);
    return fails ? make_error_code(std::errc::invalid_argument) : std::error_code();
  });
  EXPECT_TRUE(platform::RenameToNewName(from, to));
  platform::SetFaultPlan({});
  EXPECT_THAT(NamesIn(folder), UnorderedElementsAre("from", "taken"));
}

TEST(CopyToNewFile, KeepsPermissionBitsAndTimes) {
  const CScratchFolder folder;
  const std::string from = folder.Write("from", kNew);
  ASSERT_EQ(::chmod(from.c_str(), 0464), 0);
  const timespec times[2] = {{1000000000, 5}, {1100000000, 123456789}};
  ASSERT_EQ(::utimensat(AT_FDCWD, from.c_str(), times, 0), 0);
  const std::string to = folder.File("to");
  EXPECT_FALSE(platform::CopyToNewFile(from, to));
  struct stat copy {};
  ASSERT_EQ(::stat(to.c_str(), &copy), 0);
  EXPECT_EQ(copy.st_mode & 07777U, 0464U);
  EXPECT_EQ(copy.st_mtim.tv_nsec, 123456789);
}

}  // namespace
