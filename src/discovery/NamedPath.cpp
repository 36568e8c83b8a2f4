#include "discovery/NamedPath.h"

#include <algorithm>
#include <vector>

#include "base/Folders.h"
#include "base/PathIdentity.h"
#include "base/Paths.h"
#include "catalog/Catalog.h"
#include "catalog/StringHistory.h"
#include "discovery/FolderSearch.h"
#include "imaging/ImageFile.h"
#include "platform/AbsolutePaths.h"
#include "platform/Files.h"
#include "platform/WholeFiles.h"

namespace {

CAssetRecord FindPhoto(CCatalog& catalog, const std::string& path) {
  CAssetRecord photo = catalog.FindAssetByPath(path);
  if (photo.IsValid()) return photo;
  const PathParts parts = SplitPath(path);
  CKnownFolders& folders = catalog.GetKnownFolders();
  folders.Look(parts.Folder);
  for (const std::string& other : folders.GetOtherPaths(parts.Folder)) {
    photo = catalog.FindAssetByPath(JoinPath(other, parts.Name));
    if (photo.IsValid()) return photo;
  }
  return {};
}

std::vector<std::string> ListShownFolders() {
  CFolderSearch& search = CFolderSearch::GetInstance();
  std::vector<std::string> folders = {GetMyPicturesFolder()};
  if (search.ActiveDisk) folders.push_back(GetActiveDiskPhotoFolder());
  const CStringHistory& list = search.GetHistory();
  for (int i = 0; i < list.Count(); ++i) folders.push_back(list.Get(i));
  return folders;
}

/// Empty above the root.
std::string GetFolderAbove(const std::string& folder) {
  return folder == "/" ? std::string() : WithoutClosingSlash(SplitPath(folder).Folder);
}

/// The one of `shown` that the folder is or that is nearest above it; empty if there is none.
std::string FindOnWayUp(const std::string& folder, const std::vector<std::string>& shown) {
  for (std::string above = folder; !above.empty(); above = GetFolderAbove(above)) {
    const auto found = std::ranges::find_if(
        shown, [&above](const std::string& candidate) { return IsSameFolder(candidate, above); });
    if (found != shown.end()) return *found;
  }
  return {};
}

}  // namespace

CPathLookUp::CPathLookUp(CCatalog& catalog) : Catalog(catalog), Shown(ListShownFolders()) {}

NamedPath CPathLookUp::LookUp(const std::string& path) {
  platform::FileStatus status;
  if (!path.starts_with('/') || platform::GetStatus(path, status)) return {NamedKind::Nothing, path, -1, {}};
  if (status.IsFolder) return {NamedKind::Folder, path, -1, FindShownFolder(path)};
  const bool isPhoto = status.IsRegular && ImageTypeOfFile(path) != ImageType::None;
  return isPhoto ? LookUpPhoto(path) : NamedPath{NamedKind::Nothing, path, -1, {}};
}

NamedPath CPathLookUp::LookUpPhoto(const std::string& path) {
  const std::string target = platform::FollowLinks(path);
  for (const std::string& way : {path, target}) {
    const CAssetRecord photo = FindPhoto(Catalog, way);
    if (photo.IsValid() && photo.GetMissing() == MissingState::InPlace) {
      return {NamedKind::Photo, photo.GetPath(), photo.GetAssetID(), {}};
    }
  }
  for (const std::string& way : {path, target}) {
    const std::string& shown = FindShownFolder(WithoutClosingSlash(SplitPath(way).Folder));
    if (!shown.empty()) return {NamedKind::NewPhoto, way, -1, shown};
  }
  return {NamedKind::NewPhoto, path, -1, {}};
}

const std::string& CPathLookUp::FindShownFolder(const std::string& folder) {
  const auto [entry, isNew] = ShownFolder.try_emplace(folder);
  if (!isNew) return entry->second;
  entry->second = FindOnWayUp(folder, Shown);
  if (!entry->second.empty()) return entry->second;
  const std::string real = platform::FindRealPath(folder);
  if (real != folder) entry->second = FindOnWayUp(real, Shown);
  return entry->second;
}
