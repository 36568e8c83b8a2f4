#include "editing/OriginalCopy.h"

#include "base/Folders.h"
#include "base/Texts.h"
#include "catalog/AssetRecord.h"
#include "platform/Files.h"

std::string OriginalCopyPath(const CAssetRecord& photo) {
  return photo.GetPath() + LoadText(StringId::OriginalExtension);
}

bool HasOriginalCopy(const CAssetRecord& photo) { return FileExists(OriginalCopyPath(photo), false); }

bool MakeOriginalCopy(const CAssetRecord& photo) {
  if (HasOriginalCopy(photo)) return true;
  const std::error_code error = platform::CopyToNewFile(photo.GetPath(), OriginalCopyPath(photo));
  if (!error || error == std::errc::file_exists) return true;
  // When only the last step failed, the flush of the folder, the copy is there but not sure to last.
  if (HasOriginalCopy(photo)) static_cast<void>(platform::RemoveFile(OriginalCopyPath(photo)));
  return false;
}

bool RestoreOriginalCopy(const CAssetRecord& photo) {
  return HasOriginalCopy(photo) && !platform::MoveOver(OriginalCopyPath(photo), photo.GetPath());
}
