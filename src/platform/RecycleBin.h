#pragma once

#include <string>

namespace platform {

/// Moves a file into the desktop's trash, from where the user's file manager can put it back: into the user's
/// own trash or, if the file is on another disk, into that disk's; where that one can't be written, a copy
/// goes into the user's own. Without any question or window.
///
/// Only a regular file is moved, or a link that leads to one or nowhere; of a link, the link itself. True if
/// the file stands in the trash, and beside it the record of its former place, both flushed. On false the
/// file is whole in its place; only when the last step failed, a flush, it is whole in the trash with its
/// record.
bool MoveToRecycleBin(const std::string& path);

}  // namespace platform
