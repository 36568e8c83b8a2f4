#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>

class CCatalog;
class CThumbnailCache;

/// Takes deleted photos out of the catalog, with their thumbnails, and moves each one's file, then its
/// original copy, into the desktop's trash. Asks and tells nothing. A file that is missing, or can't be
/// moved, is no obstacle. What is no file any more stays in its place, and so does a file that is shown under
/// another path too, by a photo that isn't deleted.
///
/// The rows go in one transaction around the moves. So a catalog that can't be written is noticed before a
/// file is moved, any number of photos costs one commit, and after a kill or a refused commit all of the
/// photos are still deleted ones: the same call does the rest. Rows that went before their files could leave
/// files that the next search takes for new photos.
///
/// `goesOn` is told before each photo how many are done. If it says false, the photos done so far are removed
/// and the others stay as they are.
///
/// CStorageException if the catalog refuses; its rows are then as they were. May run in a job.
void RemovePhotos(
    CCatalog& catalog, CThumbnailCache& cache, std::span<const std::int32_t> assetIds,
    const std::function<bool(std::size_t done)>& goesOn = [](std::size_t) { return true; });
