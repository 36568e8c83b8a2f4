#include "platform/WholeFiles.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include "platform/Descriptor.h"
#include "platform/Faults.h"
#include "platform/Files.h"
#include "platform/SpecialFolders.h"

namespace platform {
namespace {

/// What the random part of a name is made of, and its length.
constexpr std::string_view kSuffixLetters = "abcdefghijklmnopqrstuvwxyz234567";
constexpr std::size_t kSuffixLength = 10;

/// A new, empty file that is removed again unless it is kept.
class TemporaryName {
 public:
  TemporaryName() = default;
  ~TemporaryName();
  TemporaryName(const TemporaryName&) = delete;
  TemporaryName& operator=(const TemporaryName&) = delete;

  /// Makes the file under a name that nothing else has, in `folder` (with or without closing "/"; empty
  /// for the working folder), open for writing. `mode` is cut down by the process's mask. The file is locked
  /// until this object goes, where the disk knows locks.
  std::error_code Create(std::string_view folder, std::string_view prefix, unsigned mode);

  /// The file isn't removed any more: it has got another name, or is the caller's.
  void Keep() { Path.clear(); }

  const std::string& GetPath() const { return Path; }
  Descriptor& GetFile() { return File; }

 private:
  std::error_code Lock(bool& isOurs);

  std::string Path;
  Descriptor File;
  Descriptor Locked;  // the same open file: keeps the lock when File is closed
};

constexpr int kTries = 100;

std::error_code MakeRandomSuffix(std::string& suffix) {
  std::array<std::uint8_t, kSuffixLength> random{};
  if (::getrandom(random.data(), random.size(), 0) != static_cast<ssize_t>(random.size())) return LastError();
  suffix.clear();
  for (const std::uint8_t byte : random) suffix += kSuffixLetters[byte % kSuffixLetters.size()];
  return {};
}

TemporaryName::~TemporaryName() {
  // Only the first error is reported, not one of the removal.
  if (!Path.empty()) static_cast<void>(RemoveFile(Path));
}

std::error_code TemporaryName::Create(std::string_view folder, std::string_view prefix, unsigned mode) {
  for (int i = 0; i < kTries; ++i) {
    std::string suffix;
    if (const auto error = MakeRandomSuffix(suffix)) return error;
    std::string path(folder);
    if (!path.empty() && !path.ends_with('/')) path += '/';
    path.append(prefix).append(suffix);
    if (const auto error = AskFaultPlan("create", path)) return error;
    const std::error_code error = File.Open(path, O_WRONLY | O_CREAT | O_EXCL, mode);
    if (error == std::errc::file_exists) continue;
    if (error) return error;
    Path = path;
    bool isOurs = false;
    if (const auto failure = Lock(isOurs)) return failure;
    if (isOurs) return {};
  }
  return make_error_code(std::errc::file_exists);
}

/// False in `isOurs` if a search has taken the new file for an abandoned one in this very moment.
std::error_code TemporaryName::Lock(bool& isOurs) {
  const int copy = ::fcntl(File.Get(), F_DUPFD_CLOEXEC, 0);
  if (copy < 0) return LastError();
  Locked = Descriptor(copy);
  const bool isTaken = ::flock(copy, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
  struct stat raw {};
  if (::fstat(copy, &raw) != 0) return LastError();
  isOurs = raw.st_nlink > 0 && !isTaken;
  return {};
}

/// Gives a file the extended attributes of another, as far as the file system knows them and the user may
/// set them. They are a courtesy: what can't be copied is left out.
void CopyExtendedAttributes(const Descriptor& from, const Descriptor& to) {
  const ssize_t room = ::flistxattr(from.Get(), nullptr, 0);
  if (room <= 0) return;
  std::vector<char> names(static_cast<std::size_t>(room));
  const ssize_t length = ::flistxattr(from.Get(), names.data(), names.size());
  if (length <= 0) return;

  std::vector<char> value;
  const char* const end = names.data() + length;
  for (const char* name = names.data(); name < end; name += std::string_view(name).size() + 1) {
    const ssize_t size = ::fgetxattr(from.Get(), name, nullptr, 0);
    if (size < 0) continue;
    value.resize(static_cast<std::size_t>(size));
    const ssize_t got = ::fgetxattr(from.Get(), name, value.data(), value.size());
    if (got < 0) continue;
    static_cast<void>(::fsetxattr(to.Get(), name, value.data(), static_cast<std::size_t>(got), 0));
  }
}

constexpr unsigned kNewFileMode = 0666;
constexpr int kLinkLimit = 40;  // as the kernel's
constexpr std::size_t kCopyBlock = std::size_t{1} << 18;

std::string FolderPart(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  return slash == std::string::npos ? std::string() : path.substr(0, slash + 1);
}

/// Where a chain of links ends, be there a file or not: replacing a link itself would cut it off.
std::error_code FindTarget(const std::string& path, std::string& target) {
  target = path;
  for (int i = 0; i < kLinkLimit; ++i) {
    std::array<char, 4096> text{};
    const ssize_t length = ::readlink(target.c_str(), text.data(), text.size());
    if (length < 0) return errno == EINVAL || errno == ENOENT ? std::error_code() : LastError();
    const std::string link(text.data(), static_cast<std::size_t>(length));
    target = link.starts_with('/') ? link : FolderPart(target).append(link);
  }
  return make_error_code(std::errc::too_many_symbolic_link_levels);
}

std::error_code WriteAll(const Descriptor& file, const std::string& path, const void* bytes,
                         std::size_t size) {
  const char* next = static_cast<const char*>(bytes);
  while (size > 0) {
    if (const auto error = AskFaultPlan("write", path)) return error;
    const ssize_t count = ::write(file.Get(), next, size);
    if (count >= 0) {
      next += count;
      size -= static_cast<std::size_t>(count);
    } else if (errno != EINTR) {
      return LastError();
    }
  }
  return {};
}

std::error_code SetMode(const Descriptor& file, const std::string& path, mode_t mode) {
  if (const auto error = AskFaultPlan("chmod", path)) return error;
  return ::fchmod(file.Get(), mode) == 0 ? std::error_code() : LastError();
}

/// Gives the new file the owner, the extended attributes and the permission bits of the one that it replaces.
std::error_code TakeOverRights(const Descriptor& file, const std::string& path, const std::string& oldPath,
                               const struct stat& old) {
  Descriptor oldFile;
  if (!oldFile.Open(oldPath, O_RDONLY | O_NONBLOCK | O_NOCTTY)) CopyExtendedAttributes(oldFile, file);
  struct stat fresh {};
  if (::fstat(file.Get(), &fresh) != 0) return LastError();
  if (fresh.st_uid != old.st_uid || fresh.st_gid != old.st_gid) {
    // Only root can keep another's file another's; for everyone else the new file is the writer's.
    if (::fchown(file.Get(), old.st_uid, old.st_gid) != 0 && errno != EPERM) return LastError();
  }
  // File systems without modes of their own refuse to set them.
  if (fresh.st_mode == old.st_mode) return {};
  return SetMode(file, path, old.st_mode & 07777U);
}

std::error_code FlushAndClose(TemporaryName& temporary) {
  if (const auto error = AskFaultPlan("sync", temporary.GetPath())) return error;
  if (::fsync(temporary.GetFile().Get()) != 0) return LastError();
  return temporary.GetFile().Close();
}

/// Renames the whole temporary file to its own name.
std::error_code GiveName(TemporaryName& temporary, const std::string& path, bool replace) {
  const std::string from = temporary.GetPath();
  const std::error_code error = replace ? RenameOver(from, path) : RenameToNewName(from, path);
  struct stat raw {};
  // An error may have come after the rename, from the flush of the folder: then there is nothing to remove.
  if (!error || ::lstat(from.c_str(), &raw) != 0) temporary.Keep();
  return error;
}

std::error_code CopyBytes(const Descriptor& from, TemporaryName& to) {
  std::vector<char> block(kCopyBlock);
  for (;;) {
    std::size_t got = 0;
    if (const auto error = from.Read(block.data(), block.size(), got)) return error;
    if (got == 0) return {};
    if (const auto error = WriteAll(to.GetFile(), to.GetPath(), block.data(), got)) return error;
  }
}

std::error_code OpenRegular(const std::string& path, Descriptor& file, struct stat& raw) {
  FileStatus status;
  if (const auto error = GetStatus(path, status)) return error;
  if (status.IsFolder) return make_error_code(std::errc::is_a_directory);
  if (!status.IsRegular) return make_error_code(std::errc::not_supported);
  if (const auto error = file.Open(path, O_RDONLY | O_NONBLOCK | O_NOCTTY)) return error;
  if (::fstat(file.Get(), &raw) != 0) return LastError();
  return S_ISREG(raw.st_mode) ? std::error_code() : make_error_code(std::errc::not_supported);
}

/// A whole, flushed copy in that folder, with the mode, times and attributes of its source.
std::error_code CopyInto(TemporaryName& copy, const std::string& folder, const Descriptor& source,
                         const struct stat& old) {
  if (const auto error = copy.Create(folder, kUnfinishedPrefix, 0600)) return error;
  if (const auto error = CopyBytes(source, copy)) return error;
  CopyExtendedAttributes(source, copy.GetFile());
  if (const auto error = SetMode(copy.GetFile(), copy.GetPath(), old.st_mode & 0777U)) return error;
  const std::array<timespec, 2> times = {old.st_atim, old.st_mtim};
  if (::futimens(copy.GetFile().Get(), times.data()) != 0) return LastError();
  return FlushAndClose(copy);
}

}  // namespace

std::string FollowLinks(const std::string& path) {
  std::string target;
  struct stat raw {};
  return FindTarget(path, target) || ::stat(target.c_str(), &raw) != 0 ? path : target;
}

std::error_code CreateLink(const std::string& target, const std::string& path) {
  if (const auto error = AskFaultPlan("link", path)) return error;
  return ::symlink(target.c_str(), path.c_str()) == 0 ? SyncFolderOf(path) : LastError();
}

std::error_code WriteFileAtomically(const std::string& path, const void* bytes, std::size_t size) {
  std::string target;
  if (const auto error = FindTarget(path, target)) return error;
  struct stat old {};
  const bool replaces = ::stat(target.c_str(), &old) == 0;
  if (replaces && !S_ISREG(old.st_mode)) {
    return make_error_code(S_ISDIR(old.st_mode) ? std::errc::is_a_directory : std::errc::not_supported);
  }

  TemporaryName temporary;
  // A file that others may not read must not be readable for a moment either.
  const unsigned mode = replaces ? 0600U : kNewFileMode;
  if (const auto error = temporary.Create(FolderPart(target), kUnfinishedPrefix, mode)) return error;
  if (replaces) {
    if (const auto error = TakeOverRights(temporary.GetFile(), temporary.GetPath(), target, old)) {
      return error;
    }
  }
  if (const auto error = WriteAll(temporary.GetFile(), temporary.GetPath(), bytes, size)) return error;
  if (const auto error = FlushAndClose(temporary)) return error;
  return GiveName(temporary, target, true);
}

std::error_code WriteNewFile(const std::string& path, const void* bytes, std::size_t size) {
  TemporaryName temporary;
  if (const auto error = temporary.Create(FolderPart(path), kUnfinishedPrefix, kNewFileMode)) return error;
  if (const auto error = WriteAll(temporary.GetFile(), temporary.GetPath(), bytes, size)) return error;
  if (const auto error = FlushAndClose(temporary)) return error;
  return GiveName(temporary, path, false);
}

std::error_code CopyToNewFile(const std::string& from, const std::string& to) {
  Descriptor source;
  struct stat old {};
  if (const auto error = OpenRegular(from, source, old)) return error;
  struct stat taken {};
  if (::lstat(to.c_str(), &taken) == 0) return make_error_code(std::errc::file_exists);

  TemporaryName copy;
  if (const auto error = CopyInto(copy, FolderPart(to), source, old)) return error;
  return GiveName(copy, to, false);
}

std::error_code MoveOver(const std::string& from, const std::string& to) {
  std::string target;
  if (const auto error = FindTarget(to, target)) return error;
  std::error_code error = RenameOver(from, target);
  if (error != std::errc::cross_device_link) return error;
  // The name was a link to another file system.
  Descriptor source;
  struct stat old {};
  if (error = OpenRegular(from, source, old); error) return error;
  TemporaryName copy;
  if (error = CopyInto(copy, FolderPart(target), source, old); error) return error;
  if (error = GiveName(copy, target, true); error) return error;
  return RemoveFile(from);
}

std::error_code CreateTemporaryFile(const std::string& beside, std::string_view prefix, std::string& path) {
  TemporaryName temporary;
  const std::string folder = beside.empty() ? TemporaryFolder() : FolderPart(beside);
  if (const auto error = temporary.Create(folder, prefix, 0600)) return error;
  path = temporary.GetPath();
  temporary.Keep();
  return {};
}

void RemoveUnfinishedFiles(const std::string& folder) {
  std::vector<FolderEntry> entries;
  static_cast<void>(ListFolder(folder, entries));
  for (const FolderEntry& entry : entries) {
    // What can't be removed takes up room and does no harm.
    if (entry.Name.starts_with(kUnfinishedPrefix)) static_cast<void>(RemoveFile(folder + "/" + entry.Name));
  }
}

bool IsUnfinishedName(std::string_view name) {
  if (!name.starts_with(kUnfinishedPrefix)) return false;
  name.remove_prefix(kUnfinishedPrefix.size());
  return name.size() == kSuffixLength && name.find_first_not_of(kSuffixLetters) == std::string_view::npos;
}

void RemoveIfAbandoned(const std::string& path) {
  Descriptor file;
  struct stat raw {};
  // Some network disks give a lock only on what is open for writing.
  if (file.Open(path, O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY)) return;
  if (::fstat(file.Get(), &raw) != 0 || !S_ISREG(raw.st_mode)) return;
  if (::flock(file.Get(), LOCK_EX | LOCK_NB) != 0) return;
  static_cast<void>(RemoveFile(path));
}

}  // namespace platform
