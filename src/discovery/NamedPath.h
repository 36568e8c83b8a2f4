#pragma once

#include <cstdint>
#include <string>

class CCatalog;

/// What a path leads to that somebody has named, as on the command line.
enum class NamedKind {
  Nothing,   // nothing stands there, or it is neither photo nor folder
  Photo,     // it is in the catalog and in place, maybe as a deleted one
  NewPhoto,  // a photo file that the catalog doesn't show
  Folder,
};

struct NamedPath {
  NamedKind Kind = NamedKind::Nothing;
  std::string Path;           // absolute
  std::int32_t AssetID = -1;  // of a photo
  /// The folder that is or holds it, of those whose photos are shown: a standard folder, or one of the user's
  /// list by its path there. Empty if there is none.
  std::string ShownFolder;
};

/// Looks an absolute path up on the disk and in the catalog, by the rule of PathIdentity.h: another path of a
/// folder leads to its photos, and so does a link to a photo. May take long, on disks that sleep or are far
/// away; so it is for a job.
NamedPath LookUpPath(CCatalog& catalog, const std::string& path);
