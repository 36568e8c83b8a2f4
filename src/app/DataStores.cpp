#include "app/DataStores.h"

#include "base/Folders.h"
#include "base/Messages.h"
#include "base/Paths.h"
#include "base/Texts.h"
#include "catalog/Catalog.h"
#include "discovery/FolderSearch.h"
#include "editing/BackupFile.h"
#include "editing/RenamePhotoFile.h"
#include "imaging/ThumbnailCache.h"
#include "platform/Files.h"
#include "storage/StorageFile.h"

namespace {

std::string FindDataFolder(bool activeDisk) {
  if (activeDisk) return GetProgramFolder();
  std::string folder = GetApplicationDataFolder();
  // What keeps the folder from being made shows when the catalog is opened in it.
  static_cast<void>(platform::CreateFolders(folder));
  return folder;
}

/// Brings a file from where older versions kept it. A file that can't be copied stays there.
void MoveFromOldLocation(const std::string& oldFolder, const std::string& path) {
  const std::string oldPath = JoinPath(oldFolder, SplitPath(path).Name);
  if (FileExists(path, false) || !FileExists(oldPath, false)) return;
  if (!CopyStorageFile(oldPath, path)) static_cast<void>(platform::RemoveFile(oldPath));
}

}  // namespace

bool OpenDataStores(CCatalog& catalog, CThumbnailCache& cache) {
  CFolderSearch& search = CFolderSearch::GetInstance();
  const std::string folder = FindDataFolder(search.ActiveDisk);
  platform::RemoveUnfinishedFiles(folder);
  const std::string catalogPath = JoinPath(folder, LoadText(StringId::CatalogFile));
  const std::string cachePath = JoinPath(folder, LoadText(StringId::ThumbnailFile));
  if (!search.ActiveDisk) {
    MoveFromOldLocation(GetMyPicturesFolder(), catalogPath);
    MoveFromOldLocation(GetMyPicturesFolder(), cachePath);
  }

  const std::int32_t version = ReadDBVersion(catalogPath);
  if (version > kCatalogVersion) {
    ShowMessageId(StringId::CatalogTooNew, false, MessageParent::ProgressWindow);
    return false;
  }
  if (version < kCatalogVersion) BackupFile(catalogPath);
  catalog.Open(catalogPath);
  FinishInterruptedRename(catalog);
  cache.Open(cachePath, catalog.GetDBGUID());
  search.UpdateMissingFlags();
  return true;
}
