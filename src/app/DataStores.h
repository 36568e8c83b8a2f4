#pragma once

class CCatalog;
class CThumbnailCache;

/// Finds and opens the catalog and the thumbnails: beside the program when it runs from a removable disk,
/// else in the user's data folder, where files of older versions are brought from the pictures folder. A
/// catalog of an older version is backed up before it is opened. Then looks which photos are in place.
///
/// False, after a message, if the catalog was written by a newer version; nothing has been touched then.
/// Raises what opening raises. Runs as a job or on the window thread.
bool OpenDataStores(CCatalog& catalog, CThumbnailCache& cache);
