#pragma once

#include <string>

class CAssetRecord;

/// The companion that keeps a photo's earlier bytes while it is corrected and afterwards. Its existence is
/// the only record that a photo has been corrected.

/// The photo's path with ".orig" behind it.
std::string OriginalCopyPath(const CAssetRecord& photo);

bool HasOriginalCopy(const CAssetRecord& photo);

/// Copies the photo to its companion, with its times, mode and attributes. The companion appears whole and
/// flushed; one that is there already is left alone. False if there is none afterwards.
bool MakeOriginalCopy(const CAssetRecord& photo);

/// Puts the companion in the photo's place, in one step. False, with nothing changed, if there is none or it
/// can't be done.
bool RestoreOriginalCopy(const CAssetRecord& photo);
