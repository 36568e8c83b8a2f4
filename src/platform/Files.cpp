#include "platform/Files.h"

#include <dirent.h>
#include <fcntl.h>
#include <stdio.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <memory>
#include <new>
#include <tuple>
#include <utility>

#include "platform/Descriptor.h"
#include "platform/Faults.h"

namespace platform {

namespace {

std::error_code ErrorOfKind(const FileStatus& status) {
  if (status.IsRegular) return {};
  return make_error_code(status.IsFolder ? std::errc::is_a_directory : std::errc::not_supported);
}

std::int64_t ToNanoseconds(const statx_timestamp& time) {
  constexpr std::int64_t kNanosecondsPerSecond = 1'000'000'000;
  return time.tv_sec * kNanosecondsPerSecond + time.tv_nsec;
}

/// The folder that holds `path`, in a form that can be opened.
std::string FolderOf(const std::string& path) {
  std::size_t end = path.find_last_not_of('/');
  end = end == std::string::npos ? end : path.rfind('/', end);
  if (end == std::string::npos) return path.starts_with('/') ? "/" : ".";
  return end == 0 ? "/" : path.substr(0, end);
}

std::error_code SyncFolder(const std::string& folder) {
  if (const auto error = AskFaultPlan("sync", folder)) return error;
  Descriptor descriptor;
  if (const auto error = descriptor.Open(folder, O_RDONLY | O_DIRECTORY)) {
    // A folder that may be written but not read can't be flushed by itself.
    return error == std::errc::permission_denied ? std::error_code() : error;
  }
  // Network and FUSE file systems may not know the operation on folders; there is nothing more to do then.
  if (::fsync(descriptor.Get()) != 0 && errno != EINVAL && errno != ENOTSUP) return LastError();
  return {};
}

std::error_code SyncAfterRename(const std::string& from, const std::string& to) {
  const std::string fromFolder = FolderOf(from);
  const std::string toFolder = FolderOf(to);
  if (const auto error = SyncFolder(toFolder)) return error;
  return fromFolder == toFolder ? std::error_code() : SyncFolder(fromFolder);
}

std::error_code CreateFolderOfMode(const std::string& path, mode_t mode) {
  if (const auto error = AskFaultPlan("mkdir", path)) return error;
  return ::mkdir(path.c_str(), mode) == 0 ? SyncFolderOf(path) : LastError();
}

bool IsTaken(const std::string& path) {
  struct stat raw {};
  return ::lstat(path.c_str(), &raw) == 0;
}

bool IsUnknownOperation(const std::error_code& error) {
  return error == std::errc::invalid_argument || error == std::errc::function_not_supported ||
         error == std::errc::not_supported || error == std::errc::operation_not_supported;
}

std::error_code RenameWithoutReplacing(const std::string& from, const std::string& to) {
  if (const auto error = AskFaultPlan("rename", to)) return error;
  const int result = ::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE);
  return result == 0 ? std::error_code() : LastError();
}

std::error_code Link(const std::string& from, const std::string& to) {
  if (const auto error = AskFaultPlan("link", to)) return error;
  return ::link(from.c_str(), to.c_str()) == 0 ? std::error_code() : LastError();
}

/// For file systems without a rename that refuses to replace.
std::error_code LinkThenRemove(const std::string& from, const std::string& to) {
  std::error_code error = Link(from, to);
  if (!error) {
    error = RemoveFile(from);
    // The new name is removed again: for the caller nothing has happened.
    if (error) static_cast<void>(RemoveFile(to));
    return error;
  }
  if (error != std::errc::operation_not_permitted && !IsUnknownOperation(error)) return error;
  // Neither is known, as on some FUSE drivers of removable disks. A name taken in this very moment is lost.
  if (IsTaken(to)) return make_error_code(std::errc::file_exists);
  return ::rename(from.c_str(), to.c_str()) == 0 ? std::error_code() : LastError();
}

/// `size` is the file's, in bytes.
std::error_code OpenRegularFile(const std::string& path, Descriptor& descriptor, std::uint64_t& size) {
  FileStatus status;
  // Looked at before it is opened, since opening some devices has effects, and again after, since the name
  // may lead elsewhere by then.
  if (const auto error = GetStatus(path, status)) return error;
  if (const auto error = ErrorOfKind(status)) return error;
  if (const auto error = descriptor.Open(path, O_RDONLY | O_NONBLOCK | O_NOCTTY)) return error;
  struct stat raw {};
  if (::fstat(descriptor.Get(), &raw) != 0) return LastError();
  if (!S_ISREG(raw.st_mode)) return make_error_code(std::errc::not_supported);
  size = static_cast<std::uint64_t>(raw.st_size);
  return {};
}

std::error_code ReadFromDescriptor(const Descriptor& descriptor, std::size_t expected, std::size_t limit,
                                   std::vector<std::uint8_t>& bytes) {
  // One byte more than the status said, so that the end of the file shows without a second round.
  std::size_t room = expected + 1;
  std::size_t got = 0;
  for (;;) {
    bytes.resize(room);
    std::size_t count = 0;
    if (const auto error = descriptor.Read(bytes.data() + got, room - got, count)) return error;
    got += count;
    if (got > limit) return make_error_code(std::errc::file_too_large);
    if (got < room) break;
    room += room / 2 + 4096;  // the file grows while it is read
  }
  bytes.resize(got);
  return {};
}

struct FolderCloser {
  void operator()(DIR* folder) const { ::closedir(folder); }
};

bool IsLink(int folder, const dirent& entry) {
  if (entry.d_type != DT_UNKNOWN) return entry.d_type == DT_LNK;
  struct stat raw {};
  return ::fstatat(folder, entry.d_name, &raw, AT_SYMLINK_NOFOLLOW) == 0 && S_ISLNK(raw.st_mode);
}

}  // namespace

std::error_code GetStatus(const std::string& path, FileStatus& status) {
  return ReadStatusAt(AT_FDCWD, path.c_str(), status);
}

bool IsUnchanged(const FileStatus& before, const FileStatus& now) {
  const auto facts = [](const FileStatus& status) {
    return std::tuple(status.Device, status.Inode, status.Size, status.WriteTime, status.ChangeTime);
  };
  return facts(before) == facts(now);
}

std::error_code GetEntryStatus(const std::string& path, FileStatus& status) {
  return ReadStatusAt(AT_FDCWD, path.c_str(), status, true);
}

bool HasSettled(const FileStatus& status) {
  constexpr std::chrono::milliseconds kLongestTick{20};
  const auto now = std::chrono::system_clock::now().time_since_epoch();
  return now - std::chrono::nanoseconds(status.ChangeTime) >= kLongestTick;
}

std::error_code ReadWholeFile(const std::string& path, std::vector<std::uint8_t>& bytes, std::size_t limit) {
  bytes.clear();
  Descriptor descriptor;
  std::uint64_t size = 0;
  if (const auto error = OpenRegularFile(path, descriptor, size)) return error;
  if (size > limit) return make_error_code(std::errc::file_too_large);

  std::error_code error;
  try {
    error = ReadFromDescriptor(descriptor, static_cast<std::size_t>(size), limit, bytes);
  } catch (const std::bad_alloc&) {
    error = make_error_code(std::errc::not_enough_memory);
  }
  if (error) bytes.clear();
  return error;
}

std::error_code ReadFilePart(const std::string& path, std::uint64_t offset, std::span<std::uint8_t> bytes,
                             std::size_t& got) {
  got = 0;
  Descriptor descriptor;
  std::uint64_t size = 0;
  if (const auto error = OpenRegularFile(path, descriptor, size)) return error;
  if (offset >= size) return {};
  if (::lseek(descriptor.Get(), static_cast<off_t>(offset), SEEK_SET) < 0) return LastError();
  return descriptor.Read(bytes.data(), bytes.size(), got);
}

void ReadAhead(const std::string& path) {
  constexpr off_t kMostBytes = off_t{64} << 20;
  Descriptor descriptor;
  std::uint64_t size = 0;
  if (OpenRegularFile(path, descriptor, size)) return;
  static_cast<void>(::posix_fadvise(descriptor.Get(), 0, kMostBytes, POSIX_FADV_WILLNEED));
}

std::error_code AppendToFile(const std::string& path, std::string_view bytes) {
  if (const auto error = AskFaultPlan("write", path)) return error;
  Descriptor descriptor;
  // Without O_NONBLOCK a FIFO of that name would wait for a reader.
  const int flags = O_WRONLY | O_APPEND | O_CREAT | O_NONBLOCK | O_NOCTTY;
  if (const auto error = descriptor.Open(path, flags, S_IRUSR | S_IWUSR)) return error;
  struct stat raw {};
  if (::fstat(descriptor.Get(), &raw) != 0) return LastError();
  if (!S_ISREG(raw.st_mode)) return make_error_code(std::errc::not_supported);
  while (!bytes.empty()) {
    const ssize_t count = ::write(descriptor.Get(), bytes.data(), bytes.size());
    if (count >= 0) {
      bytes.remove_prefix(static_cast<std::size_t>(count));
    } else if (errno != EINTR) {
      return LastError();
    }
  }
  return descriptor.Close();
}

std::error_code RenameOver(const std::string& from, const std::string& to) {
  if (const auto error = AskFaultPlan("rename", to)) return error;
  if (::rename(from.c_str(), to.c_str()) != 0) return LastError();
  return SyncAfterRename(from, to);
}

std::error_code RenameToNewName(const std::string& from, const std::string& to) {
  std::error_code error = RenameWithoutReplacing(from, to);
  if (IsUnknownOperation(error)) error = LinkThenRemove(from, to);
  return error ? error : SyncAfterRename(from, to);
}

std::error_code SetPermissions(const std::string& path, std::uint32_t mode) {
  if (const auto error = AskFaultPlan("chmod", path)) return error;
  return ::chmod(path.c_str(), mode) == 0 ? std::error_code() : LastError();
}

std::error_code CheckWritable(const std::string& path) {
  return ::faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS) == 0 ? std::error_code() : LastError();
}

bool IsWritable(const std::string& path) { return !CheckWritable(path); }

std::error_code RemoveFile(const std::string& path) {
  if (const auto error = AskFaultPlan("remove", path)) return error;
  return ::unlink(path.c_str()) == 0 ? std::error_code() : LastError();
}

std::error_code RemoveFolder(const std::string& path) {
  if (const auto error = AskFaultPlan("remove", path)) return error;
  std::error_code error;
  std::filesystem::remove_all(path, error);
  return error;
}

std::error_code CreateFolder(const std::string& path) { return CreateFolderOfMode(path, 0777); }

std::error_code CreatePrivateFolder(const std::string& path) { return CreateFolderOfMode(path, 0700); }

std::error_code CreateFolders(const std::string& path) {
  FileStatus status;
  std::error_code error = GetStatus(path, status);
  if (!error) return status.IsFolder ? error : make_error_code(std::errc::not_a_directory);
  if (error != std::errc::no_such_file_or_directory) return error;
  const std::string above = FolderOf(path);
  if (above != path) {
    error = CreateFolders(above);
    if (error) return error;
  }
  error = CreateFolder(path);
  // Another process may have been faster.
  return error == std::errc::file_exists ? std::error_code() : error;
}

std::error_code SyncFolderOf(const std::string& path) { return SyncFolder(FolderOf(path)); }

void TakeSizeLimitsAsErrors() { static_cast<void>(std::signal(SIGXFSZ, SIG_IGN)); }

std::error_code ReadStatusAt(int folder, const char* name, FileStatus& status, bool ofLink) {
  status = {};
  struct statx raw {};
  // Only statx tells the birth time. Looking must not make an automounter mount what the user didn't ask for.
  const int flags = AT_NO_AUTOMOUNT | (ofLink ? AT_SYMLINK_NOFOLLOW : 0);
  if (::statx(folder, name, flags, STATX_BASIC_STATS | STATX_BTIME, &raw) != 0) return LastError();
  status.IsFolder = S_ISDIR(raw.stx_mode);
  status.IsRegular = S_ISREG(raw.stx_mode);
  status.IsMountPoint = (raw.stx_attributes & STATX_ATTR_MOUNT_ROOT) != 0;
  status.Size = raw.stx_size;
  status.Modified = raw.stx_mtime.tv_sec;
  status.WriteTime = ToNanoseconds(raw.stx_mtime);
  status.ChangeTime = ToNanoseconds(raw.stx_ctime);
  // Some file systems claim a birth time and have a 0 there.
  const bool hasBirth = (raw.stx_mask & STATX_BTIME) != 0 && raw.stx_btime.tv_sec > 0;
  status.Created = hasBirth ? raw.stx_btime.tv_sec : raw.stx_mtime.tv_sec;
  status.Device = makedev(raw.stx_dev_major, raw.stx_dev_minor);
  status.Inode = raw.stx_ino;
  status.Mode = raw.stx_mode & 07777U;
  status.LinkCount = raw.stx_nlink;
  return {};
}

std::error_code ListFolder(const std::string& path, std::vector<FolderEntry>& entries,
                           const std::function<bool()>& isStopped) {
  entries.clear();
  // opendir asks for a folder and never waits, so a FIFO of that name can't hold it up.
  const std::unique_ptr<DIR, FolderCloser> folder(::opendir(path.c_str()));
  if (!folder) return LastError();
  for (;;) {
    if (isStopped()) return std::make_error_code(std::errc::operation_canceled);
    errno = 0;
    const dirent* raw = ::readdir(folder.get());
    if (raw == nullptr) return errno == 0 ? std::error_code() : LastError();
    const std::string_view name = raw->d_name;
    if (name == "." || name == "..") continue;
    FolderEntry entry;
    entry.Name = name;
    // A name that leads nowhere, or to what may not be looked at, is listed with an empty status.
    if (!ReadStatusAt(::dirfd(folder.get()), raw->d_name, entry.Status)) {
      entry.IsFolder = entry.Status.IsFolder;
      entry.IsRegular = entry.Status.IsRegular;
    }
    entry.IsLink = IsLink(::dirfd(folder.get()), *raw);
    entries.push_back(std::move(entry));
  }
}

}  // namespace platform
