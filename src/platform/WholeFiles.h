#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <system_error>

/// What makes a file, or replaces one: each makes it whole under a name of its own first. The rules of
/// Files.h hold here too.
namespace platform {

/// Puts `bytes` under `path` in one step: a whole new file beside it, flushed, then renamed over the
/// name. A link is followed, and whatever stood there keeps its permission bits. On an error the old file
/// is untouched; only when the last step fails, the flush of the folder, is the new one there already.
std::error_code WriteFileAtomically(const std::string& path, const void* bytes, std::size_t size);

/// As WriteFileAtomically, but fails with std::errc::file_exists if the name is taken.
std::error_code WriteNewFile(const std::string& path, const void* bytes, std::size_t size);

/// Copies a whole file with its permission bits, times and extended attributes. The target's name appears
/// only once the copy is whole; std::errc::file_exists if it is taken.
std::error_code CopyToNewFile(const std::string& from, const std::string& to);

/// Gives the file the name `to`, replacing in the same step what that name leads to, links followed.
std::error_code MoveOver(const std::string& from, const std::string& to);

/// Where a chain of links ends; `path` itself if it is no link, or if nothing stands at the end.
std::string FollowLinks(const std::string& path);

/// Makes a link that leads to `target`, flushed; std::errc::file_exists if the name is taken.
std::error_code CreateLink(const std::string& target, const std::string& path);

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

/// A new, empty, private file in the folder that holds `beside`, or in the temporary folder when
/// `beside` is empty. `prefix` begins its name. The file is for the caller to remove.
std::error_code CreateTemporaryFile(const std::string& beside, std::string_view prefix, std::string& path);

}  // namespace platform
