#include "platform/RecycleBin.h"

#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstddef>
#include <ctime>
#include <memory>
#include <string_view>
#include <system_error>

#include "platform/Descriptor.h"
#include "platform/Faults.h"
#include "platform/Files.h"
#include "platform/LocalTime.h"
#include "platform/SpecialFolders.h"
#include "platform/Unicode.h"
#include "platform/WholeFiles.h"

// The layout is that of the freedesktop.org trash, version 1.0: "files" holds what was deleted, "info" a
// record for each of them. Qt has an operation for it, but that one can't name files that aren't UTF-8, takes
// another one in their place, and leaves an empty record on a full disk.
namespace platform {
namespace {

constexpr std::string_view kRecordExtension = ".trashinfo";
constexpr std::size_t kLongestName = 255;      // bytes
constexpr std::size_t kLongestExtension = 16;  // what is longer is cut with the name
constexpr int kMostOfOneName = 100000;

/// A file by the folder that it really lies in.
struct PlacedFile {
  std::string Folder;  // links resolved, with its closing "/"
  std::string Name;
  std::string GetPath() const { return Folder + Name; }
};

struct Trash {
  std::string Folder;
  std::string Top;  // what the paths in its records are relative to, with its closing "/"; empty for none
};

enum class Way { Rename, Copy };

bool Stands(const std::string& path) {
  FileStatus status;
  return !GetEntryStatus(path, status);
}

bool IsForTheTrash(const std::string& path) {
  FileStatus entry;
  if (GetEntryStatus(path, entry) || entry.IsFolder) return false;
  if (entry.IsRegular) return true;
  std::array<char, 1> start{};
  if (::readlink(path.c_str(), start.data(), start.size()) < 0) return false;
  FileStatus target;
  const std::error_code error = GetStatus(path, target);
  return error ? error == std::errc::no_such_file_or_directory : target.IsRegular;
}

bool Resolve(const std::string& path, PlacedFile& file) {
  const std::size_t slash = path.rfind('/');
  const std::string folder = slash == std::string::npos ? "." : path.substr(0, slash + 1);
  const std::unique_ptr<char, decltype(&::free)> resolved(::realpath(folder.c_str(), nullptr), &::free);
  if (!resolved) return false;
  file.Folder = resolved.get();
  if (!file.Folder.ends_with('/')) file.Folder += '/';
  file.Name = slash == std::string::npos ? path : path.substr(slash + 1);
  return !file.Name.empty();
}

/// Makes a folder that only the user may look into.
bool MakePrivateFolder(const std::string& path) {
  if (AskFaultPlan("mkdir", path)) return false;
  if (::mkdir(path.c_str(), 0700) != 0) return errno == EEXIST;
  return !SyncFolderOf(path);
}

bool MakeTrash(const std::string& folder) {
  return MakePrivateFolder(folder) && MakePrivateFolder(folder + "/info") &&
         MakePrivateFolder(folder + "/files");
}

/// On a disk that others use too, the user's trash must be a folder of the user's, and no link to elsewhere.
bool MakeSharedTrash(const std::string& folder) {
  struct stat raw {};
  return MakePrivateFolder(folder) && ::lstat(folder.c_str(), &raw) == 0 && S_ISDIR(raw.st_mode) &&
         raw.st_uid == ::getuid() && MakeTrash(folder);
}

/// The root of the disk that the folder is on, with its closing "/".
std::string FindTop(std::string folder) {
  FileStatus status;
  while (folder != "/" && (GetStatus(folder, status) || !status.IsMountPoint)) {
    folder.resize(folder.rfind('/', folder.size() - 2) + 1);
  }
  return folder;
}

/// The trash of the disk that the file is on: in a folder that the administrator has made for all users, else
/// one of the user's own.
bool FindTrashOfDisk(const PlacedFile& file, Trash& trash) {
  trash.Top = FindTop(file.Folder);
  const std::string user = std::to_string(::getuid());
  FileStatus common;
  if (!GetEntryStatus(trash.Top + ".Trash", common) && common.IsFolder && (common.Mode & S_ISVTX) != 0) {
    trash.Folder = trash.Top + ".Trash/" + user;
    if (MakeSharedTrash(trash.Folder)) return true;
  }
  trash.Folder = trash.Top + ".Trash-" + user;
  return MakeSharedTrash(trash.Folder);
}

bool FindTrashOfUser(Trash& trash) {
  const std::string home = DataHome();
  trash.Folder = home + "/Trash";
  return !home.empty() && !CreateFolders(home) && MakeTrash(trash.Folder);
}

std::string EncodePath(std::string_view path) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  constexpr std::string_view kPlain = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-_.~/";
  std::string encoded;
  for (const char c : path) {
    const auto byte = static_cast<unsigned char>(c);
    if (kPlain.find(c) != std::string_view::npos) {
      encoded += c;
    } else {
      encoded.append({'%', kDigits[byte / 16], kDigits[byte % 16]});
    }
  }
  return encoded;
}

std::string MakeRecord(const Trash& trash, const PlacedFile& file) {
  std::tm now{};
  ToLocalTime(std::time(nullptr), now);
  return "[Trash Info]\nPath=" + EncodePath(file.GetPath().substr(trash.Top.size())) +
         "\nDeletionDate=" + FormatTime(now, "%Y-%m-%dT%H:%M:%S") + "\n";
}

/// The name in the trash: the file's own, then with a number before its extension. The record's name must fit
/// too.
std::string MakeNameInTrash(const std::string& name, int number) {
  const std::size_t dot = name.rfind('.');
  const bool hasExtension = dot != std::string::npos && dot > 0 && name.size() - dot <= kLongestExtension;
  const std::string extension = hasExtension ? name.substr(dot) : std::string();
  const std::string tail = (number > 1 ? "." + std::to_string(number) : std::string()) + extension;
  const std::size_t room = kLongestName - kRecordExtension.size() - tail.size();
  const std::string_view stem = std::string_view(name).substr(0, name.size() - extension.size());
  return std::string(Truncated(stem, room)) + tail;
}

std::error_code CopyToTrash(const std::string& from, const std::string& to) {
  std::array<char, 4096> text{};
  const ssize_t length = ::readlink(from.c_str(), text.data(), text.size());
  std::error_code error = length < 0
                              ? CopyToNewFile(from, to)
                              : CreateLink(std::string(text.data(), static_cast<std::size_t>(length)), to);
  if (error == std::errc::file_exists) return error;
  if (!error) error = RemoveFile(from);
  if (!error) return SyncFolderOf(from);
  // The file stays where it was.
  if (Stands(from)) static_cast<void>(RemoveFile(to));
  return error;
}

/// Moves the file under a name that nothing in that trash has. If `error` is that of the last flush, the file
/// has left its place.
std::error_code MoveInto(const Trash& trash, const PlacedFile& file, Way way) {
  const std::string record = MakeRecord(trash, file);
  for (int number = 1; number <= kMostOfOneName; ++number) {
    const std::string name = MakeNameInTrash(file.Name, number);
    const std::string target = trash.Folder + "/files/" + name;
    const std::string recordPath = trash.Folder + "/info/" + std::string(name).append(kRecordExtension);
    if (Stands(recordPath) || Stands(target)) continue;
    std::error_code error = WriteNewFile(recordPath, record.data(), record.size());
    if (error == std::errc::file_exists) continue;
    if (!error) {
      error =
          way == Way::Rename ? RenameToNewName(file.GetPath(), target) : CopyToTrash(file.GetPath(), target);
    }
    if (!error || !Stands(file.GetPath())) return error;
    // The record alone means nothing.
    if (Stands(recordPath)) static_cast<void>(RemoveFile(recordPath));
    if (error != std::errc::file_exists) return error;
  }
  return make_error_code(std::errc::file_exists);
}

bool IsOnDiskOf(const Trash& trash, const PlacedFile& file) {
  FileStatus folder, files;
  return !GetStatus(file.Folder, folder) && !GetStatus(trash.Folder + "/files", files) &&
         folder.Device == files.Device;
}

}  // namespace

bool MoveToRecycleBin(const std::string& path) {
  PlacedFile file;
  if (!IsForTheTrash(path) || !Resolve(path, file)) return false;
  Trash ofUser, ofDisk;
  if (!FindTrashOfUser(ofUser)) return false;
  if (IsOnDiskOf(ofUser, file)) {
    const std::error_code error = MoveInto(ofUser, file, Way::Rename);
    // One disk that is mounted at two places counts as two.
    if (error != std::errc::cross_device_link) return !error;
  }
  // Neither trash helps where nothing can be taken away.
  if (!IsWritable(file.Folder)) return false;
  if (FindTrashOfDisk(file, ofDisk) && !MoveInto(ofDisk, file, Way::Rename)) return true;
  return Stands(file.GetPath()) && !MoveInto(ofUser, file, Way::Copy);
}

}  // namespace platform
