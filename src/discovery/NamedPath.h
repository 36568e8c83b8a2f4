#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

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

/// Looks absolute paths up on the disk and in the catalog, by the rule of PathIdentity.h: another path of a
/// folder leads to its photos, and so does a link to a photo. May take long, on disks that sleep or are far
/// away; so it is for a job. What it has seen of a folder it remembers: for one job, in which the list of
/// folders doesn't change.
class CPathLookUp {
 public:
  explicit CPathLookUp(CCatalog& catalog);

  NamedPath LookUp(const std::string& path);

 private:
  NamedPath LookUpPhoto(const std::string& path);
  /// The shown folder that is nearest to the folder on its way up; empty if there is none.
  const std::string& FindShownFolder(const std::string& folder);

  CCatalog& Catalog;
  const std::vector<std::string> Shown;            // whose photos are shown
  std::map<std::string, std::string> ShownFolder;  // of a folder
};
