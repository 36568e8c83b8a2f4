#pragma once

#include <string>
#include <system_error>

class CAssetRecord;

/// The companion that keeps a photo's earlier bytes while it is corrected and afterwards. Its existence is
/// the only record that a photo has been corrected. Only a regular file is one: a folder, a link or anything
/// else of that name is neither a copy nor ever replaced.

/// The photo's path with ".orig" behind it.
std::string OriginalCopyPath(const CAssetRecord& photo);
std::string OriginalCopyPath(const std::string& path);

bool HasOriginalCopy(const CAssetRecord& photo);

/// Copies the photo to its companion, with its times, mode and attributes. The companion appears whole and
/// flushed; one that is there already is left alone. False if there is none afterwards.
bool MakeOriginalCopy(const CAssetRecord& photo);

/// Puts the companion in the photo's place, in one step. On an error nothing has changed.
std::error_code RestoreOriginalCopy(const CAssetRecord& photo);
