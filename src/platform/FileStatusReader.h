#pragma once

#include <system_error>

#include "platform/Files.h"

namespace platform {

/// Reads the status of a name, relative to an open folder or to AT_FDCWD, links followed unless
/// `ofLink` is set. For the code of this folder.
std::error_code ReadStatusAt(int folder, const char* name, FileStatus& status, bool ofLink = false);

}  // namespace platform
