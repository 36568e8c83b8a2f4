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
  const std::error_code error = platform::CopyToNewFile(photo.GetPath(), OriginalCopyPath(photo));
  return !error || error == std::errc::file_exists;
}

bool RestoreOriginalCopy(const CAssetRecord& photo) {
  return HasOriginalCopy(photo) && !platform::MoveOver(OriginalCopyPath(photo), photo.GetPath());
}
