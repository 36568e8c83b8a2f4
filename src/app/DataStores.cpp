#include "app/DataStores.h"

#include <system_error>

#include "base/Exceptions.h"
#include "base/Folders.h"
#include "base/Messages.h"
#include "base/Paths.h"
#include "base/Texts.h"
#include "catalog/Catalog.h"
#include "catalog/ThumbnailCache.h"
#include "discovery/FolderSearch.h"
#include "editing/RenamePhotoFile.h"
#include "editing/SafeFiles.h"
#include "platform/Files.h"
#include "platform/WholeFiles.h"
#include "storage/StorageFile.h"

namespace {

std::string FindDataFolder(bool activeDisk) {
  if (activeDisk) return GetProgramFolder();
  std::string folder = GetApplicationDataFolder();
  // If the folder can't be made, opening the catalog in it reports why.
  static_cast<void>(platform::CreateFolders(folder));
  return folder;
}

std::string FindStore(bool activeDisk, StringId name) {
  return JoinPath(FindDataFolder(activeDisk), LoadText(name));
}

/// Copies the file. If it is a link, makes a link to the same target, so that the target stays in use.
std::error_code BringFile(const std::string& oldPath, const std::string& path) {
  const std::string target = platform::FollowLinks(oldPath);
  return target == oldPath ? CopyStorageFile(oldPath, path) : platform::CreateLink(target, path);
}

/// An error other than "not found" counts as there: a link may lead to a disk that isn't mounted.
bool MayExist(const std::string& path) {
  platform::FileStatus status;
  const std::error_code error = platform::GetEntryStatus(path, status);
  if (error == std::errc::no_such_file_or_directory || error == std::errc::not_a_directory) return false;
  return platform::GetStatus(path, status) || !status.IsFolder;
}

std::string DescribeFailure(const std::error_code& error) {
  if (error == std::errc::bad_message) return "it is damaged";
  if (error == std::errc::device_or_resource_busy) return "another program is using it";
  return error.message();
}

/// Moves a file from the folder of older versions. If that fails, the file stays there.
std::error_code MoveFromOldLocation(const std::string& path) {
  const std::string oldPath = JoinPath(GetMyPicturesFolder(), SplitPath(path).Name);
  platform::FileStatus taken;
  if (!platform::GetEntryStatus(path, taken) || !MayExist(oldPath)) return {};
  const std::error_code error = BringFile(oldPath, path);
  if (!error) static_cast<void>(platform::RemoveFile(oldPath));
  return error;
}

void MoveStoresFromOldLocation() {
  const std::string catalog = FindCatalog(false);
  if (const std::error_code error = MoveFromOldLocation(catalog)) {
    throw CError("The file \"" + JoinPath(GetMyPicturesFolder(), SplitPath(catalog).Name) +
                 "\" can't be brought to \"" + catalog + "\": " + DescribeFailure(error) + ".");
  }
  // Thumbnails that can't be moved are made again.
  static_cast<void>(MoveFromOldLocation(FindStore(false, StringId::ThumbnailFile)));
}

}  // namespace

std::string FindCatalog(bool activeDisk) { return FindStore(activeDisk, StringId::CatalogFile); }

bool OpenDataStores(CCatalog& catalog, CThumbnailCache& cache) {
  CFolderSearch& search = CFolderSearch::GetInstance();
  platform::RemoveUnfinishedFiles(FindDataFolder(search.ActiveDisk));
  if (!search.ActiveDisk) MoveStoresFromOldLocation();
  // Backups and the catalog's other files are beside the catalog file itself, not beside a link to it.
  const std::string catalogPath = platform::FollowLinks(FindCatalog(search.ActiveDisk));
  const std::string cachePath = FindStore(search.ActiveDisk, StringId::ThumbnailFile);

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
