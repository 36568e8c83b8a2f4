#pragma once

#include <string>

namespace platform {

/// The path as it reads from the root on, without ".", doubled "/" and a closing "/". A relative one counts
/// from the working folder of the process. ".." leads out of the folder that a link leads to, as the system
/// has it; other links stay as they are. What has no such path, because the working folder is gone, is
/// returned unchanged.
std::string MakeAbsolute(const std::string& path);

/// Where a path leads to, with all links on the way followed; empty if nothing stands there.
std::string FindRealPath(const std::string& path);

}  // namespace platform
