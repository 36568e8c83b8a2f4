#include "platform/FileStatusReader.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>

#include "platform/Descriptor.h"

namespace platform {

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
  // Some file systems claim a birth time and have a 0 there.
  const bool hasBirth = (raw.stx_mask & STATX_BTIME) != 0 && raw.stx_btime.tv_sec > 0;
  status.Created = hasBirth ? raw.stx_btime.tv_sec : raw.stx_mtime.tv_sec;
  status.Device = makedev(raw.stx_dev_major, raw.stx_dev_minor);
  status.Inode = raw.stx_ino;
  status.Mode = raw.stx_mode & 07777U;
  status.LinkCount = raw.stx_nlink;
  return {};
}

}  // namespace platform
