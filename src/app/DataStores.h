#pragma once

#include <string>

class CCatalog;
class CThumbnailCache;

/// The path of the catalog, which may be a link: beside the program when it runs from a removable disk, else
/// in the user's data folder, which is made. CError if the user has no home.
std::string FindCatalog(bool activeDisk);

/// Opens the catalog and the thumbnails beside it. In normal mode files of older versions are moved from
/// the pictures folder first. A catalog of an older version is backed up before it is opened. Then looks
/// which photos are in place.
///
/// False, after a message, if the catalog was written by a newer version; nothing has been touched then.
/// Raises what opening raises, and CError if an old catalog can't be moved; it stays, and no new catalog is
/// made instead. Runs as a job or on the window thread.
bool OpenDataStores(CCatalog& catalog, CThumbnailCache& cache);
