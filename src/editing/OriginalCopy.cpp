#include "editing/OriginalCopy.h"

#include "base/Texts.h"
#include "catalog/AssetRecord.h"
#include "platform/Files.h"

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
  // When only the last step failed, the flush of the folder, the copy is there but not sure to last.
  if (HasOriginalCopy(photo)) static_cast<void>(platform::RemoveFile(OriginalCopyPath(photo)));
  return false;
}

std::error_code RestoreOriginalCopy(const CAssetRecord& photo) {
  if (!HasOriginalCopy(photo)) return make_error_code(std::errc::no_such_file_or_directory);
  const std::error_code error = platform::MoveOver(OriginalCopyPath(photo), photo.GetPath());
  // When only the flush of the folder failed, the photo is back; a power loss may undo that, and harms
  // nothing.
  return error && HasOriginalCopy(photo) ? error : std::error_code();
}
