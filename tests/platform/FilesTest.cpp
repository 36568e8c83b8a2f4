
#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>

#include "platform/Files.h"
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
  FileStatus file, entry;
  ASSERT_FALSE(platform::GetStatus(path, file));
  EXPECT_TRUE(file.IsRegular);
  EXPECT_EQ(file.Size, 7U);
  EXPECT_EQ(file.Modified, kLongAgo);
  // The file is new; a file system without birth times has the last write in its place.
  EXPECT_TRUE(file.Created == kLongAgo || file.Created >= std::time(nullptr) - 60) << file.Created;
  const std::string link = folder.File("link.jpg");
  std::filesystem::create_symlink(path, link);
  ASSERT_FALSE(platform::GetEntryStatus(link, entry));
  EXPECT_FALSE(entry.IsRegular);
  EXPECT_NE(entry.Inode, file.Inode);
  ASSERT_FALSE(platform::GetStatus(link, entry));
  EXPECT_EQ(entry.Inode, file.Inode);
}

TEST(ReadWholeFile, ReadsRegularFilesAloneAndNeverWaits) {
  const CScratchFolder folder;
  std::vector<std::uint8_t> bytes;
  const std::string fifo = folder.File("fifo.jpg");
  MakeFifo(fifo);
  EXPECT_EQ(platform::ReadWholeFile(fifo, bytes), std::errc::not_supported);
  EXPECT_EQ(platform::ReadWholeFile("/dev/zero", bytes), std::errc::not_supported);
  EXPECT_EQ(platform::ReadWholeFile(folder.GetPath(), bytes), std::errc::is_a_directory);
  EXPECT_TRUE(bytes.empty());

  const std::string path = folder.Write("file", std::string("a\0b", 3));
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
  const std::pair<std::string, std::string> links[] = {{"album.jpg", "to-folder"},
                                                       {strange, "to-file.jpg"},
                                                       {"fifo.jpg", "to-fifo.jpg"},
                                                       {"loop.jpg", "loop.jpg"}};
  for (const auto& [target, name] : links) std::filesystem::create_symlink(target, folder.File(name));
  std::vector<FolderEntry> entries;
  ASSERT_FALSE(platform::ListFolder(folder.GetPath(), entries));
  std::vector<std::string> seen;
  for (const FolderEntry& entry : entries) {
    seen.push_back(entry.Name + (entry.IsFolder ? " folder" : entry.IsRegular ? " file" : ""));
    EXPECT_EQ(entry.Status.Size, entry.IsRegular ? 2U : entry.Status.Size) << entry.Name;
  }
  EXPECT_THAT(seen, testing::UnorderedElementsAre("album.jpg folder", "to-folder folder", strange + " file",
                                                  "to-file.jpg file", "fifo.jpg", "to-fifo.jpg", "loop.jpg"));
  EXPECT_EQ(platform::ListFolder(folder.GetPath(), entries, [&entries] { return entries.size() == 2; }),
            std::errc::operation_canceled);
  EXPECT_EQ(platform::ListFolder(folder.GetPath() + "/fifo.jpg", entries), std::errc::not_a_directory);
  EXPECT_TRUE(entries.empty());
}

}  // namespace
