#pragma once

#include <functional>
#include <string>
#include <system_error>
#include <vector>

#include "platform/Files.h"

namespace platform {

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
