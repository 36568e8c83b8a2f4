// Looking at files and folders, links, FIFOs and devices among them.

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>

#include <chrono>

#include "platform/FileLock.h"
#include "platform/Files.h"
#include "platform/FolderListing.h"
#include "support/FaultSteps.h"
#include "support/ScratchFolder.h"

using platform::FileStatus;
using platform::FolderEntry;

namespace {

void MakeFifo(const std::string& path) { ASSERT_EQ(::mkfifo(path.c_str(), 0666), 0); }

TEST(GetStatus, TellsTheBirthTimeAndNeverTheStatusChange) {
  const CScratchFolder folder;
  const std::string path = folder.Write("photo.jpg", "1234567");
  constexpr std::int64_t kLongAgo = 1000000000;
  const timespec times[2] = {{kLongAgo, 0}, {kLongAgo, 0}};
  ASSERT_EQ(::utimensat(AT_FDCWD, path.c_str(), times, 0), 0);
  const std::int64_t now = std::time(nullptr);
  FileStatus status;
  ASSERT_FALSE(platform::GetStatus(path, status));
  EXPECT_TRUE(status.IsRegular);
  EXPECT_EQ(status.Size, 7U);
  EXPECT_EQ(status.Modified, kLongAgo);
  // The file is new; a file system without birth times has the last write in its place.
  EXPECT_TRUE(status.Created == kLongAgo || status.Created >= now - 60) << status.Created;

  struct stat plain {};
  ASSERT_EQ(::stat(path.c_str(), &plain), 0);
  EXPECT_EQ(status.Device, plain.st_dev);
  EXPECT_EQ(status.Inode, plain.st_ino);
}

TEST(GetEntryStatus, IsThatOfTheLink) {
  const CScratchFolder folder;
  const std::string path = folder.Write("photo.jpg", "1234567");
  const std::string link = folder.File("link.jpg");
  const std::string lost = folder.File("lost.jpg");
  std::filesystem::create_symlink(path, link);
  std::filesystem::create_symlink(folder.File("gone.jpg"), lost);
  FileStatus file, status;
  ASSERT_FALSE(platform::GetEntryStatus(path, file));
  EXPECT_TRUE(file.IsRegular);
  ASSERT_FALSE(platform::GetEntryStatus(link, status));
  EXPECT_FALSE(status.IsRegular);
  EXPECT_NE(status.Inode, file.Inode);
  EXPECT_EQ(platform::GetStatus(lost, status), std::errc::no_such_file_or_directory);
  EXPECT_FALSE(platform::GetEntryStatus(lost, status));
}

TEST(ReadWholeFile, ReadsRegularFilesAloneAndNeverWaits) {
  const CScratchFolder folder;
  std::vector<std::uint8_t> bytes;
  const std::string fifo = folder.File("fifo.jpg");
  MakeFifo(fifo);
  EXPECT_EQ(platform::ReadWholeFile(fifo, bytes), std::errc::not_supported);
  EXPECT_EQ(platform::ReadWholeFile("/dev/zero", bytes), std::errc::not_supported);
  EXPECT_EQ(platform::ReadWholeFile(folder.GetPath(), bytes), std::errc::is_a_directory);
  EXPECT_EQ(platform::ReadWholeFile(folder.GetPath() + "/none", bytes), std::errc::no_such_file_or_directory);
  EXPECT_TRUE(bytes.empty());

  const std::string empty = folder.Write("empty", "");
  EXPECT_FALSE(platform::ReadWholeFile(empty, bytes, 0));
  const std::string path = folder.Write("file", std::string("a\0b", 3));
  EXPECT_FALSE(platform::ReadWholeFile(path, bytes, 3));
  EXPECT_THAT(bytes, testing::ElementsAre('a', 0, 'b'));
  EXPECT_EQ(platform::ReadWholeFile(path, bytes, 2), std::errc::file_too_large);
  EXPECT_TRUE(bytes.empty());
}

TEST(ReadWholeFile, ReadsMoreThanTheSizeThatTheStatusTells) {
  std::vector<std::uint8_t> bytes;
  ASSERT_FALSE(platform::ReadWholeFile("/proc/self/maps", bytes));  // its size reads as 0
  EXPECT_GT(bytes.size(), 1000U);
  EXPECT_EQ(platform::ReadWholeFile("/proc/self/maps", bytes, 100), std::errc::file_too_large);
}

TEST(CreateFolders, MakesWhatIsMissingAndNothingOverAFile) {
  const CScratchFolder folder;
  const std::string deep = folder.GetPath() + "/a/b/c";
  EXPECT_FALSE(platform::CreateFolders(deep + "/"));
  EXPECT_FALSE(platform::CreateFolders(deep));
  EXPECT_TRUE(std::filesystem::is_directory(deep));
  EXPECT_EQ(platform::CreateFolder(deep), std::errc::file_exists);
  const std::string file = folder.Write("file", "x");
  EXPECT_EQ(platform::CreateFolders(file), std::errc::not_a_directory);
  EXPECT_EQ(platform::CreateFolders(file + "/below"), std::errc::not_a_directory);
}

TEST(ListFolder, KeepsNamesByteForByteAndOpensNothing) {
  const CScratchFolder folder;
  const std::string strange = "bad\xff\xfeutf8\n.jpg";
  folder.Write(strange, "12");
  folder.File("album.jpg/inner");
  MakeFifo(folder.File("fifo.jpg"));
  for (const auto& [target, name] : {std::pair{"album.jpg", "to-folder"},
                                     {strange.c_str(), "to-file.jpg"},
                                     {"fifo.jpg", "to-fifo.jpg"},
                                     {"nowhere", "dangling.jpg"},
                                     {"loop.jpg", "loop.jpg"}}) {
    ASSERT_EQ(::symlink(target, folder.File(name).c_str()), 0);
  }

  std::vector<FolderEntry> entries;
  ASSERT_FALSE(platform::ListFolder(folder.GetPath(), entries));
  std::vector<std::string> folders;
  std::vector<std::string> files;
  std::vector<std::string> others;
  for (const FolderEntry& entry : entries) {
    (entry.IsFolder ? folders : entry.IsRegular ? files : others).push_back(entry.Name);
    EXPECT_EQ(entry.Status.Size, entry.IsRegular ? 2U : entry.Status.Size) << entry.Name;
  }
  EXPECT_THAT(folders, testing::UnorderedElementsAre("album.jpg", "to-folder"));
  EXPECT_THAT(files, testing::UnorderedElementsAre(strange, "to-file.jpg"));
  EXPECT_THAT(others, testing::UnorderedElementsAre("fifo.jpg", "to-fifo.jpg", "dangling.jpg", "loop.jpg"));
  EXPECT_EQ(platform::ListFolder(folder.GetPath(), entries, [&entries] { return entries.size() == 2; }),
            std::errc::operation_canceled);
}

TEST(ListFolder, TellsWhyAFolderCannotBeListed) {
  const CScratchFolder folder;
  std::vector<FolderEntry> entries(1);
  const std::string fifo = folder.File("fifo");
  MakeFifo(fifo);
  EXPECT_EQ(platform::ListFolder(fifo, entries), std::errc::not_a_directory);
  EXPECT_TRUE(entries.empty());
  EXPECT_EQ(platform::ListFolder(folder.GetPath() + "/none", entries), std::errc::no_such_file_or_directory);

  ASSERT_EQ(::chmod(folder.GetPath().c_str(), 0700), 0);
  EXPECT_TRUE(RunAsNobody([&] {
                std::vector<FolderEntry> none;
                return platform::ListFolder(folder.GetPath(), none) == std::errc::permission_denied;
              }) ||
              ::getuid() != 0);
}

TEST(FileLock, IsHeldByOneProcessAndGivenBackByItsEnd) {
  const CScratchFolder folder;
  const std::string path = folder.File("lock");
  int ready[2];
  ASSERT_EQ(::pipe(ready), 0);
  const pid_t child = ::fork();
  if (child == 0) {
    platform::FileLock held;
    const char byte = held.TryAcquire(path) ? 'n' : 'y';
    static_cast<void>(!::write(ready[1], &byte, 1));
    for (;;) ::pause();
  }
  char byte = 0;
  ASSERT_EQ(::read(ready[0], &byte, 1), 1);
  ASSERT_EQ(byte, 'y');
  platform::FileLock lock;
  EXPECT_EQ(lock.TryAcquire(path), std::errc::resource_unavailable_try_again);
  EXPECT_FALSE(lock.IsHeld());
  ASSERT_EQ(::kill(child, SIGKILL), 0);
  ASSERT_EQ(::waitpid(child, nullptr, 0), child);
  EXPECT_FALSE(lock.TryAcquire(path));

  platform::FileLock moved = std::move(lock);
  platform::FileLock second;
  EXPECT_TRUE(second.TryAcquire(path));
  moved.Release();
  EXPECT_FALSE(second.TryAcquire(path));
  ::close(ready[0]);
  ::close(ready[1]);
}

}  // namespace
