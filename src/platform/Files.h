#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

/// Files and folders as the operating system has them. Paths are bytes with "/" as separator; a name in
/// no valid UTF-8 is as good as any other. Every operation answers with the system's error, none throws,
/// and whatever replaces or makes a file has flushed it, and its folder, when it returns without error.
namespace platform {

struct FileStatus {
  bool IsFolder = false;
  bool IsRegular = false;
  bool IsMountPoint = false;  // the root of a disk, or of what else is mounted there
  std::uint64_t Size = 0;     // bytes
  std::int64_t Created = 0;   // seconds since 1970, UTC; the birth time, or Modified where none is kept
  std::int64_t Modified = 0;  // seconds since 1970, UTC
  std::uint64_t Device = 0;
  std::uint64_t Inode = 0;
  std::uint32_t Mode = 0;       // permission bits
  std::uint64_t LinkCount = 0;  // names of the file
};

/// The permission bit that a read-only file lacks.
inline constexpr std::uint32_t kOwnerMayWrite = 0200;

/// Reads the status of what `path` leads to, links followed.
std::error_code GetStatus(const std::string& path, FileStatus& status);

/// As GetStatus, but of the entry itself: of a link, also one that leads nowhere, it is the link's.
std::error_code GetEntryStatus(const std::string& path, FileStatus& status);

/// Reads a regular file. More than `limit` bytes is std::errc::file_too_large; anything but a regular
/// file is refused before a byte is read, so a FIFO or a device never blocks.
std::error_code ReadWholeFile(const std::string& path, std::vector<std::uint8_t>& bytes,
                              std::size_t limit = std::size_t{1} << 30);

/// Reads some bytes of a regular file from `offset` on; `got` is less than asked for only at its end.
std::error_code ReadFilePart(const std::string& path, std::uint64_t offset, std::span<std::uint8_t> bytes,
                             std::size_t& got);

/// Puts `bytes` under `path` in one step: a whole new file beside it, flushed, then renamed over the
/// name. A link is followed, and whatever stood there keeps its permission bits. On an error the old file
/// is untouched; only when the last step fails, the flush of the folder, is the new one there already.
std::error_code WriteFileAtomically(const std::string& path, const void* bytes, std::size_t size);

/// As WriteFileAtomically, but fails with std::errc::file_exists if the name is taken.
std::error_code WriteNewFile(const std::string& path, const void* bytes, std::size_t size);

/// Copies a whole file with its permission bits, times and extended attributes. The target's name appears
/// only once the copy is whole; std::errc::file_exists if it is taken.
std::error_code CopyToNewFile(const std::string& from, const std::string& to);

/// Renames within one file system, replacing `to` in the same step.
std::error_code RenameOver(const std::string& from, const std::string& to);

/// Renames within one file system; std::errc::file_exists if `to` is taken.
std::error_code RenameToNewName(const std::string& from, const std::string& to);

/// Gives the file the name `to`, replacing in the same step what that name leads to, links followed.
std::error_code MoveOver(const std::string& from, const std::string& to);

/// Where a chain of links ends; `path` itself if it is no link, or if nothing stands at the end.
std::string FollowLinks(const std::string& path);

/// Makes a link that leads to `target`, flushed; std::errc::file_exists if the name is taken.
std::error_code CreateLink(const std::string& target, const std::string& path);

/// Sets a file's permission bits, links followed.
std::error_code SetPermissions(const std::string& path, std::uint32_t mode);

/// An error if the user may not write to the file, or its medium can't be written.
std::error_code CheckWritable(const std::string& path);
bool IsWritable(const std::string& path);

std::error_code RemoveFile(const std::string& path);

/// Makes one folder; std::errc::file_exists if the name is taken.
std::error_code CreateFolder(const std::string& path);

/// Makes a folder and those above it; one that stands already is no error.
std::error_code CreateFolders(const std::string& path);

/// Flushes the entries of the folder that holds `path`, so that a rename or removal in it lasts.
std::error_code SyncFolderOf(const std::string& path);

/// What the names of files begin with that aren't whole yet: hidden, and without an extension that a search
/// for photos would take.
inline constexpr std::string_view kUnfinishedPrefix = ".vellumar-";

/// Removes the unfinished files that killed processes have left in a folder that no other one works in.
void RemoveUnfinishedFiles(const std::string& folder);

/// Whether a file of that name may be a photo that was being written: what the operations above call a file
/// until it is whole.
bool IsUnfinishedName(std::string_view name);

/// Removes a file of such a name unless a living process, on whatever machine, is still making it. Whoever
/// makes one holds a lock on it; where the disk knows no locks, the file stays.
void RemoveIfAbandoned(const std::string& path);

/// From now on a write past the size that files may have is an error of that write; by itself it would end
/// the process.
void TakeSizeLimitsAsErrors();

/// A new, empty, private file in the folder that holds `beside`, or in the temporary folder when
/// `beside` is empty. `prefix` begins its name. The file is for the caller to remove.
std::error_code CreateTemporaryFile(const std::string& beside, std::string_view prefix, std::string& path);

}  // namespace platform
