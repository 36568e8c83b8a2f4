#include "editing/SafeFiles.h"

#include "base/Exceptions.h"
#include "base/Messages.h"
#include "base/Texts.h"
#include "catalog/AssetRecord.h"
#include "catalog/ThumbnailCache.h"
#include "platform/Files.h"
#include "platform/WholeFiles.h"
#include "storage/StorageFile.h"

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

  // Tried before the question, so that the user isn't asked in vain.
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

std::string OriginalCopyPath(const std::string& path) { return path + LoadText(StringId::OriginalExtension); }

std::string OriginalCopyPath(const CAssetRecord& photo) { return OriginalCopyPath(photo.GetPath()); }

bool HasOriginalCopy(const CAssetRecord& photo) {
  platform::FileStatus status;
  return !platform::GetEntryStatus(OriginalCopyPath(photo), status) && status.IsRegular;
}

bool MakeOriginalCopy(const CAssetRecord& photo) {
  if (HasOriginalCopy(photo)) return true;
  const std::error_code error = platform::CopyToNewFile(photo.GetPath(), OriginalCopyPath(photo));
  if (!error) return true;
  if (error == std::errc::file_exists) return HasOriginalCopy(photo);
  // If only the last step failed, the flush of the folder, the copy is there but may not survive a power
  // loss.
  if (HasOriginalCopy(photo)) static_cast<void>(platform::RemoveFile(OriginalCopyPath(photo)));
  return false;
}

std::error_code RestoreOriginalCopy(const CAssetRecord& photo) {
  if (!HasOriginalCopy(photo)) return make_error_code(std::errc::no_such_file_or_directory);
  const std::error_code error = platform::MoveOver(OriginalCopyPath(photo), photo.GetPath());
  // If only the flush of the folder failed, the photo is back. A power loss may undo that without harm.
  return error && HasOriginalCopy(photo) ? error : std::error_code();
}

void BackupFile(const std::string& path) {
  std::error_code error = std::make_error_code(std::errc::file_exists);
  for (int number = 1; error == std::errc::file_exists; ++number) {
    error = CopyStorageFile(path, FormatString(StringId::BackupFileName, path, number));
  }
}
