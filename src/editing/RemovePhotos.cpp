#include "editing/RemovePhotos.h"

#include <algorithm>
#include <string>
#include <unordered_map>
#include <vector>

#include "base/Exceptions.h"
#include "base/PathIdentity.h"
#include "base/Paths.h"
#include "catalog/Catalog.h"
#include "catalog/ThumbnailCache.h"
#include "editing/SafeFiles.h"
#include "platform/Files.h"
#include "platform/RecycleBin.h"
#include "platform/Unicode.h"

namespace {

/// Whether the two paths lead to one entry of one folder. Two names of one file aren't that.
bool AreOneEntry(const std::string& a, const std::string& b) {
  platform::FileStatus first, second;
  if (platform::GetEntryStatus(a, first) || platform::GetEntryStatus(b, second)) return false;
  if (first.Device != second.Device || first.Inode != second.Inode) return false;
  if (first.LinkCount == 1) return true;
  const PathParts one = SplitPath(a), other = SplitPath(b);
  return one.Name == other.Name && IsSameFolder(one.Folder, other.Folder);
}

/// The photos that stay in the collection and whose file has the name of one that goes.
class CShownNamesakes {
 public:
  CShownNamesakes(CCatalog& catalog, const std::vector<std::string>& goingPaths) {
    for (const std::string& path : goingPaths) Paths[GetName(path)];
    const c4_View assets = catalog.GetAssets();
    for (int i = 0; i < assets.GetSize(); ++i) {
      const CAssetRecord photo(&catalog, assets[i]);
      if (photo.GetFlag(PhotoFlag::Tossed) || photo.GetMissing() != MissingState::InPlace) continue;
      const auto found = Paths.find(platform::FoldCase(photo.GetFilename()));
      if (found != Paths.end()) found->second.push_back(photo.GetPath());
    }
  }

  bool Show(const std::string& path) const {
    return std::ranges::any_of(Paths.at(GetName(path)),
                               [&path](const std::string& shown) { return AreOneEntry(shown, path); });
  }

 private:
  static std::string GetName(const std::string& path) { return platform::FoldCase(SplitPath(path).Name); }

  std::unordered_map<std::string, std::vector<std::string>> Paths;  // by name without case
};

/// What can't be moved stays where it is, and its photo goes all the same.
void MoveFiles(const std::string& path) {
  static_cast<void>(platform::MoveToRecycleBin(path));
  const std::string copy = OriginalCopyPath(path);
  platform::FileStatus status;
  if (!platform::GetEntryStatus(copy, status) && status.IsRegular) {
    static_cast<void>(platform::MoveToRecycleBin(copy));
  }
}

/// No photo gets the number of one that is gone: a thumbnail that can't be removed takes up room and does no
/// harm.
void RemoveThumbnails(CThumbnailCache& cache, std::span<const std::int32_t> assetIds) {
  try {
    CAutoCommitPause pause(cache);
    for (const std::int32_t id : assetIds) cache.Remove(id);
    pause.Commit();
  } catch (const CStorageException&) {
    static_cast<void>(cache.RenewIfDamaged());
  }
}

/// Empty for a row without a file.
std::string FindPath(CCatalog& catalog, std::int32_t assetId) {
  std::string path = catalog.FindAssetById(assetId).GetPath();
  return SplitPath(path).Name.empty() ? std::string() : path;
}

std::vector<std::string> DeleteRows(CCatalog& catalog, std::span<const std::int32_t> assetIds) {
  std::vector<std::string> paths;
  for (const std::int32_t id : assetIds) {
    paths.push_back(FindPath(catalog, id));
    catalog.DeleteAsset(id);
  }
  return paths;
}

/// Returns how many of the photos are done.
std::size_t MoveAllFiles(CCatalog& catalog, const std::vector<std::string>& paths,
                         const std::function<bool(std::size_t done)>& goesOn) {
  const CShownNamesakes namesakes(catalog, paths);
  for (std::size_t i = 0; i < paths.size(); ++i) {
    if (!goesOn(i)) return i;
    if (!paths[i].empty() && !namesakes.Show(paths[i])) MoveFiles(paths[i]);
  }
  return paths.size();
}

}  // namespace

void RemovePhotos(CCatalog& catalog, CThumbnailCache& cache, std::span<const std::int32_t> assetIds,
                  const std::function<bool(std::size_t done)>& goesOn) {
  std::size_t done = 0;
  {
    CAutoCommitPause pause(catalog);
    done = MoveAllFiles(catalog, DeleteRows(catalog, assetIds), goesOn);
    if (done == assetIds.size()) pause.Commit();
  }
  const auto removed = assetIds.first(done);
  if (done < assetIds.size()) {
    CAutoCommitPause pause(catalog);
    DeleteRows(catalog, removed);
    pause.Commit();
  }
  RemoveThumbnails(cache, removed);
}
