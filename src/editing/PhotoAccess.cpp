#include "editing/PhotoAccess.h"

#include <string>

#include "base/Messages.h"
#include "catalog/AssetRecord.h"
#include "catalog/ThumbnailCache.h"
#include "platform/Files.h"
#include "storage/StorageException.h"

namespace {

bool IsReadOnly(const std::string& path, const platform::FileStatus& status) {
  return (status.Mode & platform::kOwnerMayWrite) == 0 || !platform::IsWritable(path);
}

}  // namespace

bool IsReadOnly(const CAssetRecord& photo) {
  platform::FileStatus status;
  return !platform::GetStatus(photo.GetPath(), status) && IsReadOnly(photo.GetPath(), status);
}

bool CheckPhotoWritable(const CAssetRecord& photo) {
  const std::string path = photo.GetPath();
  platform::FileStatus status;
  if (platform::GetStatus(path, status)) {
    ShowMessageId(StringId::PhotoCannotBeRead);
    return false;
  }
  if (!IsReadOnly(path, status)) return true;

  // Tried before the question, so that the user isn't asked for what can't be had.
  const bool failed =
      static_cast<bool>(platform::SetPermissions(path, status.Mode | platform::kOwnerMayWrite));
  if (failed || !platform::IsWritable(path)) {
    if (!failed) static_cast<void>(platform::SetPermissions(path, status.Mode));
    ShowMessageId(StringId::PhotoMarkedReadOnly);
    return false;
  }
  if (ShowMessageId(StringId::MakePhotoEditableQuestion, true)) return true;
  static_cast<void>(platform::SetPermissions(path, status.Mode));
  return false;
}

bool ForgetThumbnail(const CAssetRecord& photo) {
  CThumbnailCache& cache = *CThumbnailCache::GetInstance();
  try {
    try {
      cache.Remove(photo.GetAssetID());
    } catch (const CStorageException&) {
      if (!cache.RenewIfDamaged()) throw;  // a new one has no thumbnails
    }
  } catch (const CStorageException& exception) {
    ShowMessage(exception.GetMessage());
    return false;
  }
  return true;
}
