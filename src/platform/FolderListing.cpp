#include "platform/FolderListing.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <memory>
#include <string_view>
#include <utility>

#include "platform/Descriptor.h"
#include "platform/FileStatusReader.h"

namespace platform {
namespace {

struct FolderCloser {
  void operator()(DIR* folder) const { ::closedir(folder); }
};

bool IsLink(int folder, const dirent& entry) {
  if (entry.d_type != DT_UNKNOWN) return entry.d_type == DT_LNK;
  struct stat raw {};
  return ::fstatat(folder, entry.d_name, &raw, AT_SYMLINK_NOFOLLOW) == 0 && S_ISLNK(raw.st_mode);
}

}  // namespace

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
