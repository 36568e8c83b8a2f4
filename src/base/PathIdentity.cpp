#include "base/PathIdentity.h"

#include <algorithm>
#include <vector>

#include "base/Paths.h"
#include "platform/Files.h"
#include "platform/Unicode.h"

namespace {

bool AreOneThing(const platform::FileStatus& a, const platform::FileStatus& b) {
  return a.Device == b.Device && a.Inode == b.Inode;
}

/// Whether the entry `former` is gone, or is the entry at `path` on a disk that doesn't know case.
bool HasBecome(const std::string& former, const std::string& path) {
  platform::FileStatus first, second;
  if (platform::GetEntryStatus(path, second)) return false;
  if (const std::error_code error = platform::GetEntryStatus(former, first)) {
    // A mount point is no renamed folder: another disk holds other photos.
    return error == std::errc::no_such_file_or_directory && !second.IsMountPoint;
  }
  // Two names of one file stay two photos.
  const bool hasOneName = first.IsFolder || first.LinkCount == 1;
  return hasOneName && AreOneThing(first, second);
}

}  // namespace

bool IsFormerSpelling(const std::string& former, const std::string& path) {
  if (former == path || !platform::EqualNoCase(former, path)) return false;
  platform::FileStatus status;
  if (platform::GetEntryStatus(path, status)) return false;
  // Name by name. Folding changes no "/", so both paths have as many names.
  std::size_t formerStart = 0, start = 0;
  while (start < path.size()) {
    const std::size_t formerEnd = std::min(former.find('/', formerStart), former.size());
    const std::size_t end = std::min(path.find('/', start), path.size());
    const std::string formerName = former.substr(formerStart, formerEnd - formerStart);
    if (path.compare(start, end - start, formerName) != 0 &&
        !HasBecome(path.substr(0, start) + formerName, path.substr(0, end))) {
      return false;
    }
    formerStart = formerEnd + 1;
    start = end + 1;
  }
  return true;
}

std::string FindPresentSpelling(const std::string& stored) {
  platform::FileStatus status;
  if (stored == "/" || !platform::GetEntryStatus(stored, status)) return stored;
  const PathParts parts = SplitPath(stored);
  if (parts.Folder.empty()) return {};
  const std::string folder = FindPresentSpelling(WithoutClosingSlash(parts.Folder));
  std::vector<platform::FolderEntry> entries;
  if (folder.empty() || platform::ListFolder(folder, entries)) return {};
  std::string present;
  for (const platform::FolderEntry& entry : entries) {
    const std::string path = JoinPath(folder, entry.Name);
    if (!IsFormerSpelling(JoinPath(folder, parts.Name), path)) continue;
    if (!present.empty()) return {};
    present = path;
  }
  return present;
}

bool IsSameFolder(const std::string& a, const std::string& b) {
  const std::string first = WithoutClosingSlash(a);
  const std::string second = WithoutClosingSlash(b);
  if (first == second) return true;
  platform::FileStatus firstStatus, secondStatus;
  const bool firstStands = !platform::GetStatus(first, firstStatus);
  const bool secondStands = !platform::GetStatus(second, secondStatus);
  if (firstStands && secondStands) return firstStatus.IsFolder && AreOneThing(firstStatus, secondStatus);
  return firstStands ? IsFormerSpelling(second, first) : IsFormerSpelling(first, second);
}
