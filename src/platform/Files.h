#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

namespace platform {

/// Files and folders as the operating system has them. Paths are bytes with "/" as separator; a name in
/// no valid UTF-8 is as good as any other. Every operation answers with the system's error, none throws,
/// and whatever replaces or makes a file has flushed it, and its folder, when it returns without error; only
/// AppendToFile doesn't flush.

struct FileStatus {
  bool IsFolder = false;
  bool IsRegular = false;
  bool IsMountPoint = false;    // the root of a disk, or of what else is mounted there
  std::uint64_t Size = 0;       // bytes
  std::int64_t Created = 0;     // seconds since 1970, UTC; the birth time, or Modified where none is kept
  std::int64_t Modified = 0;    // seconds since 1970, UTC
  std::int64_t WriteTime = 0;   // the same in nanoseconds
  std::int64_t ChangeTime = 0;  // of content, name or rights, nanoseconds since 1970; no program can set it
  std::uint64_t Device = 0;
  std::uint64_t Inode = 0;
  std::uint32_t Mode = 0;       // permission bits
  std::uint64_t LinkCount = 0;  // names of the file
};

/// The permission bit that a read-only file lacks.
inline constexpr std::uint32_t kOwnerMayWrite = 0200;

/// Whether both are of one file that nobody has written to in between. A clock of the file system may stand
/// still for 10 ms, so changes that follow each other so quickly can look like one.
bool IsUnchanged(const FileStatus& before, const FileStatus& now);

/// Reads the status of what `path` leads to, links followed.
std::error_code GetStatus(const std::string& path, FileStatus& status);

/// As GetStatus, but of the entry itself: of a link, also one that leads nowhere, it is the link's.
std::error_code GetEntryStatus(const std::string& path, FileStatus& status);

/// Whether the file was changed so long ago that any further change will show in its status.
bool HasSettled(const FileStatus& status);

/// Reads a regular file. More than `limit` bytes is std::errc::file_too_large; anything but a regular
/// file is refused before a byte is read, so a FIFO or a device never blocks.
std::error_code ReadWholeFile(const std::string& path, std::vector<std::uint8_t>& bytes,
                              std::size_t limit = std::size_t{1} << 30);

/// Reads some bytes of a regular file from `offset` on; `got` is less than asked for only at its end.
std::error_code ReadFilePart(const std::string& path, std::uint64_t offset, std::span<std::uint8_t> bytes,
                             std::size_t& got);

/// Asks the system to read the first 64 MB of a regular file into its cache, and doesn't wait for it. What is
/// wrong with the file shows when it is read.
void ReadAhead(const std::string& path);

/// Adds bytes to the end of a regular file, which is made, private to the user, if it is missing. For
/// logs.
std::error_code AppendToFile(const std::string& path, std::string_view bytes);

/// Renames within one file system, replacing `to` in the same step.
std::error_code RenameOver(const std::string& from, const std::string& to);

/// Renames within one file system; std::errc::file_exists if `to` is taken.
std::error_code RenameToNewName(const std::string& from, const std::string& to);

/// Sets a file's permission bits, links followed.
std::error_code SetPermissions(const std::string& path, std::uint32_t mode);

/// An error if the user may not write to the file, or its medium can't be written.
std::error_code CheckWritable(const std::string& path);
bool IsWritable(const std::string& path);

std::error_code RemoveFile(const std::string& path);

/// Removes a folder with all that is in it. Links are removed, not followed. Stops at the first error.
std::error_code RemoveFolder(const std::string& path);

/// Makes one folder; std::errc::file_exists if the name is taken.
std::error_code CreateFolder(const std::string& path);

/// Makes a folder and those above it; one that stands already is no error.
std::error_code CreateFolders(const std::string& path);

/// Makes a folder, in one that stands, that only its owner may enter; std::errc::file_exists if the name is
/// taken.
std::error_code CreatePrivateFolder(const std::string& path);

/// Flushes the entries of the folder that holds `path`, so that a rename or removal in it lasts.
std::error_code SyncFolderOf(const std::string& path);

/// From now on a write past the size that files may have is an error of that write; by itself it would end
/// the process.
void TakeSizeLimitsAsErrors();

/// Reads the status of a name, relative to an open folder or to AT_FDCWD, links followed unless
/// `ofLink` is set. For the code of this folder.
std::error_code ReadStatusAt(int folder, const char* name, FileStatus& status, bool ofLink = false);

/// One name of a folder. The kinds and the status are those of what the name leads to, links followed;
/// a link that leads nowhere, or a name that went while the folder was read, is neither kind and has an
/// empty status.
struct FolderEntry {
  std::string Name;  // byte for byte, whatever its encoding
  bool IsFolder = false;
  bool IsRegular = false;
  bool IsLink = false;  // the name itself is a symbolic link
  FileStatus Status;
};

/// Lists a folder in the order in which the system gives its names, without "." and "..". Nothing in the
/// folder is opened, so a FIFO or a device can't block. On an error `entries` holds what was read before.
/// `isStopped` is asked before each entry; its true is std::errc::operation_canceled.
std::error_code ListFolder(
    const std::string& path, std::vector<FolderEntry>& entries,
    const std::function<bool()>& isStopped = [] { return false; });

}  // namespace platform
