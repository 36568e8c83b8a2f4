#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>

#include "platform/AbsolutePaths.h"
#include "platform/EndGuard.h"
#include "platform/Environment.h"
#include "platform/Files.h"
#include "platform/WholeFiles.h"
#include "support/FaultSteps.h"
#include "support/ScratchFolder.h"

using testing::UnorderedElementsAre;

namespace {

const std::string kOld(3000, 'o');
const std::string kNew = std::string(300000, 'n') + "end";  // more than one block of a copy

std::error_code Replace(const std::string& path) {
  return platform::WriteFileAtomically(path, kNew.data(), kNew.size());
}

unsigned ModeOf(const std::string& path) {
  platform::FileStatus status;
  EXPECT_FALSE(platform::GetStatus(path, status));
  return status.Mode;
}

void MakeFifo(const std::string& path) { ASSERT_EQ(::mkfifo(path.c_str(), 0666), 0); }

void SweepAbandoned(const std::string& folder) {
  for (const std::string& name : NamesIn(folder)) {
    if (platform::IsUnfinishedName(name)) platform::RemoveIfAbandoned(folder + "/" + name);
  }
}

/// An operation that makes `target` of kNew, where `source` holds kNew.
struct Operation {
  bool Replaces;
  std::error_code (*Run)(const std::string& source, const std::string& target);
};

enum class Trouble { FailedStep, NoSpaceFromAStep, Kill, ShortWrite };

/// Runs the operation with trouble at a step, and checks what is left.
/// Returns whether it came to that step.
bool LeavesWholeFiles(const Operation& operation, Trouble trouble, int step) {
  const CScratchFolder folder;
  const std::string source = folder.Write("source", kNew);
  const std::string target = folder.File("target");
  if (operation.Replaces) folder.Write("target", kOld);
  const auto run = [&] { return operation.Run(source, target); };
  bool isMet = true;
  if (trouble == Trouble::Kill) {
    isMet = RunAndKillAtStep(step, [&] { static_cast<void>(run()); });
  } else if (trouble == Trouble::ShortWrite) {
    const CFileSizeLimit full(5000);  // the first write is cut short there, the next one fails
    EXPECT_EQ(run(), std::errc::file_too_large);
  } else {
    const CFailingStep fault(step, trouble == Trouble::NoSpaceFromAStep);
    const std::error_code error = run();
    isMet = fault.GetSteps() >= step;
    EXPECT_EQ(error.value(), isMet ? ENOSPC : 0) << "step " << step;
  }
  const std::string bytes = std::filesystem::exists(target) ? ReadBytes(target) : "none";
  EXPECT_TRUE(bytes == kNew || (isMet && bytes == (operation.Replaces ? kOld : "none"))) << bytes.size();
  EXPECT_EQ(ReadBytes(source), kNew);
  // A search for photos skips what these leave behind, and removes it.
  if (trouble == Trouble::Kill || trouble == Trouble::NoSpaceFromAStep) SweepAbandoned(folder.GetPath());
  EXPECT_THAT(NamesIn(folder.GetPath()), testing::Each(testing::AnyOf("source", "target")))
      << "step " << step;
  return isMet;
}

TEST(WholeFiles, AreLeftByAFaultOrKillAtAnyStep) {
  const Operation operations[] = {
      {true, [](const auto&, const auto& target) { return Replace(target); }},
      {false,
       [](const auto&, const auto& to) { return platform::WriteNewFile(to, kNew.data(), kNew.size()); }},
      {false, &platform::CopyToNewFile}};
  for (const Operation& operation : operations) {
    for (const Trouble trouble : {Trouble::FailedStep, Trouble::NoSpaceFromAStep, Trouble::Kill}) {
      int step = 1;
      while (LeavesWholeFiles(operation, trouble, step)) ++step;
      EXPECT_GT(step, 5) << "at least: create, write, sync, rename, sync of the folder";
    }
    LeavesWholeFiles(operation, Trouble::ShortWrite, 1);
  }
}

TEST(WholeFiles, KeepPermissionBitsAndLinksWhenReplaced) {
  const CScratchFolder folder;
  const std::string below = folder.GetPath() + "/below", real = folder.Write("below/real", kOld);
  ASSERT_EQ(::chmod(real.c_str(), 0640), 0);
  const std::string link = folder.File("link"), loop = folder.File("loop"), fifo = folder.File("fifo");
  std::filesystem::create_symlink("below/real", link);
  std::vector<std::string> steps;
  platform::SetFaultPlan([&](std::string_view operation, std::string_view target) {
    const bool isFolder = target == below;
    steps.push_back(std::string(operation) + (isFolder ? " folder" : ""));
    const bool isShown = operation != "create" && !isFolder && (ModeOf(std::string(target)) & 07U) != 0;
    EXPECT_FALSE(isShown) << "readable by others at " << operation;
    if (operation != "remove") SweepAbandoned(below);  // must not take what is being made
    return std::error_code();
  });
  EXPECT_FALSE(Replace(link));
  platform::SetFaultPlan({});
  EXPECT_THAT(steps, testing::ElementsAre("create", "chmod", "write", "sync", "rename", "sync folder"));
  EXPECT_TRUE(std::filesystem::is_symlink(link));
  EXPECT_EQ(ReadBytes(real), kNew);
  EXPECT_EQ(ModeOf(real), 0640U);

  std::filesystem::create_symlink("loop", loop);
  MakeFifo(fifo);
  EXPECT_EQ(Replace(loop), std::errc::too_many_symbolic_link_levels);
  EXPECT_EQ(Replace(fifo), std::errc::not_supported);
  EXPECT_EQ(Replace(below), std::errc::is_a_directory);
  EXPECT_THAT(NamesIn(folder.GetPath()), UnorderedElementsAre("below", "link", "loop", "fifo"));
}

TEST(UnfinishedFiles, AreKnownByTheirNameAndKind) {
  const CScratchFolder folder;
  folder.Write(".vellumar-db-abcdefghij", "");
  std::filesystem::create_symlink(folder.Write("file", kOld), folder.File(".vellumar-abcdefghij"));
  folder.File(".vellumar-folder/kept");
  SweepAbandoned(folder.GetPath());
  EXPECT_EQ(NamesIn(folder.GetPath()).size(), 4U) << "a database and a link are no abandoned copies";
  platform::RemoveUnfinishedFiles(folder.GetPath());
  EXPECT_THAT(NamesIn(folder.GetPath()), UnorderedElementsAre("file", ".vellumar-folder"));
}

TEST(NewNames, AreNeverTakenFromAnother) {
  const CScratchFolder folder;
  const std::string from = folder.Write("from", kNew), taken = folder.Write("taken", kOld);
  const std::string dangling = folder.File("dangling"), to = folder.File("to");
  std::filesystem::create_symlink("nowhere", dangling);
  // The operations that the file system doesn't know.
  for (const std::string unknown : {"", "rename", "rename link"}) {
    platform::SetFaultPlan([&](std::string_view operation, std::string_view) {
      const bool isUnknown = unknown.find(operation) != std::string::npos;
      return isUnknown ? make_error_code(std::errc::invalid_argument) : std::error_code();
    });
    for (const std::string& name : {taken, dangling}) {
      EXPECT_EQ(platform::WriteNewFile(name, "x", 1), std::errc::file_exists) << unknown;
      EXPECT_EQ(platform::CopyToNewFile(from, name), std::errc::file_exists) << unknown;
      EXPECT_EQ(platform::RenameToNewName(from, name), std::errc::file_exists) << unknown;
    }
    EXPECT_FALSE(platform::RenameToNewName(from, to)) << unknown;
    EXPECT_THAT(NamesIn(folder.GetPath()), UnorderedElementsAre("to", "taken", "dangling"));
    EXPECT_FALSE(platform::RenameToNewName(to, from)) << unknown;
  }
  // A name that can't be removed after the link leaves the file where it was, under one name.
  platform::SetFaultPlan([&from](std::string_view operation, std::string_view path) {
    const bool fails = operation == "rename" || (operation == "remove" && path == from);
    return fails ? make_error_code(std::errc::invalid_argument) : std::error_code();
  });
  EXPECT_TRUE(platform::RenameToNewName(from, to));
  platform::SetFaultPlan({});
  EXPECT_THAT(NamesIn(folder.GetPath()), UnorderedElementsAre("from", "taken", "dangling"));
  EXPECT_EQ(ReadBytes(taken), kOld);

  // A file that takes the name while the copy is made isn't replaced.
  platform::SetFaultPlan([&folder](std::string_view operation, std::string_view) {
    if (operation == "sync") folder.Write("to", kOld);
    return std::error_code();
  });
  EXPECT_EQ(platform::CopyToNewFile(from, to), std::errc::file_exists);
  platform::SetFaultPlan({});
  EXPECT_EQ(ReadBytes(to), kOld);
  std::filesystem::remove(to);

  ASSERT_EQ(::chmod(from.c_str(), 0464), 0);
  const auto written = std::filesystem::last_write_time(from) - std::chrono::hours(1);
  std::filesystem::last_write_time(from, written);
  EXPECT_FALSE(platform::CopyToNewFile(from, to));
  EXPECT_EQ(ModeOf(to) & 07777U, 0464U);
  EXPECT_EQ(std::filesystem::last_write_time(to), written);
}

TEST(GetStatus, TellsTheBirthTimeAndNeverTheStatusChange) {
  const CScratchFolder folder;
  const std::string path = folder.Write("photo.jpg", "x"), link = folder.File("link.jpg");
  std::filesystem::last_write_time(path, std::chrono::file_clock::from_sys(std::chrono::sys_seconds()));
  platform::FileStatus file, entry;
  ASSERT_FALSE(platform::GetStatus(path, file));
  EXPECT_EQ(file.Modified, 0);
  // The file is new; a file system without birth times has the last write in its place.
  EXPECT_TRUE(file.Created == 0 || file.Created >= std::time(nullptr) - 60) << file.Created;
  std::filesystem::create_symlink(path, link);
  ASSERT_FALSE(platform::GetEntryStatus(link, entry));
  EXPECT_FALSE(entry.IsRegular || entry.Inode == file.Inode);
  ASSERT_FALSE(platform::GetStatus(link, entry));
  EXPECT_EQ(entry.Inode, file.Inode);
}

TEST(ReadWholeFile, ReadsRegularFilesAloneAndNeverWaits) {
  const CScratchFolder folder;
  std::vector<std::uint8_t> bytes;
  const std::string fifo = folder.File("fifo.jpg"), path = folder.Write("file", std::string("a\0b", 3));
  MakeFifo(fifo);
  platform::ReadAhead(fifo);
  EXPECT_EQ(platform::ReadWholeFile(fifo, bytes), std::errc::not_supported);
  EXPECT_EQ(platform::ReadWholeFile("/dev/zero", bytes), std::errc::not_supported);
  EXPECT_EQ(platform::ReadWholeFile(folder.GetPath(), bytes), std::errc::is_a_directory);
  EXPECT_FALSE(platform::ReadWholeFile(path, bytes, 3));
  EXPECT_THAT(bytes, testing::ElementsAre('a', 0, 'b'));
  EXPECT_EQ(platform::ReadWholeFile(path, bytes, 2), std::errc::file_too_large);
  EXPECT_TRUE(bytes.empty());
  ASSERT_FALSE(platform::ReadWholeFile("/proc/self/maps", bytes));  // its size reads as 0
  EXPECT_GT(bytes.size(), 1000U);
  EXPECT_EQ(platform::ReadWholeFile("/proc/self/maps", bytes, 100), std::errc::file_too_large);
}

TEST(ListFolder, KeepsNamesByteForByteAndOpensNothing) {
  const CScratchFolder folder;
  const std::string strange = "bad\xff\xfeutf8\n.jpg";
  folder.Write(strange, "12");
  folder.File("album.jpg/inner");
  MakeFifo(folder.File("fifo.jpg"));
  for (const std::string& target : {std::string("album.jpg"), strange, std::string("fifo.jpg")}) {
    std::filesystem::create_symlink(target, folder.File("to-" + target));
  }
  std::filesystem::create_symlink("loop.jpg", folder.File("loop.jpg"));
  std::vector<platform::FolderEntry> entries;
  ASSERT_FALSE(platform::ListFolder(folder.GetPath(), entries));
  std::vector<std::string> seen;
  for (const auto& entry : entries) {
    seen.push_back(entry.Name + (entry.IsFolder ? " folder" : entry.IsRegular ? " file" : ""));
    EXPECT_TRUE(!entry.IsRegular || entry.Status.Size == 2U) << entry.Name;
  }
  EXPECT_THAT(seen, UnorderedElementsAre("album.jpg folder", "to-album.jpg folder", strange + " file",
                                         "to-" + strange + " file", "fifo.jpg", "to-fifo.jpg", "loop.jpg"));
  EXPECT_EQ(platform::ListFolder(folder.GetPath(), entries, [&entries] { return entries.size() == 2; }),
            std::errc::operation_canceled);
  EXPECT_EQ(platform::ListFolder(folder.GetPath() + "/fifo.jpg", entries), std::errc::not_a_directory);
  EXPECT_TRUE(entries.empty());
}

}  // namespace

TEST(AbsolutePath, CountsFromTheRootAndLeadsOutOfALinksTarget) {
  const CScratchFolder scratch;
  const std::string root = std::filesystem::canonical(scratch.GetPath()), link = root + "/link";
  scratch.File("real/deep/x");
  std::filesystem::create_directory_symlink(root + "/real/deep", link);
  EXPECT_EQ(platform::MakeAbsolute(link + "/../x/"), root + "/real/x");
  EXPECT_EQ(platform::MakeAbsolute(root + "/gone/..//./link/x"), link + "/x");
  EXPECT_EQ(platform::MakeAbsolute("/.."), "/");
  EXPECT_EQ(platform::MakeAbsolute("x y"), std::filesystem::current_path().string() + "/x y");
}

TEST(EndGuard, EndsAProcessThatDoesNotComeToItsEnd) {
  const int status = RunInChild([] {
    platform::EndGuard guard(std::chrono::milliseconds(20));
    guard.Begin(7);
    for (;;) ::pause();
    return 0;
  });
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 7);
}

TEST(Environment, AVariableComesAndGoesWithoutMovingTheOthers) {
  platform::ReserveVariable();
  char** const list = environ;
  for (const char* value : {"one", "two", "three"}) {
    EXPECT_TRUE(platform::SetReservedVariable("VELLUMAR_TEST", value));
    EXPECT_STREQ(std::getenv("VELLUMAR_TEST"), value);
    if (*value == 't') ::unsetenv("VELLUMAR_TEST");
  }
  EXPECT_EQ(environ, list);
}
