#include "sets/FolderFilter.h"

#include "base/Folders.h"
#include "base/Paths.h"
#include "catalog/AssetRecord.h"
#include "platform/Unicode.h"

CFolderFilter::CFolderFilter(const std::string& folder) : Folder(WithClosingSlash(folder)) {}

bool CFolderFilter::Matches(const CAssetRecord& record) const {
  const std::string folder = record.GetFolder();
  if (folder.starts_with(Folder)) return true;
  // Another spelling is this folder too, unless it stands on the disk beside it.
  if (folder.size() < Folder.size()) return false;
  const std::string otherSpelling = folder.substr(0, Folder.size());
  return platform::EqualNoCase(otherSpelling, Folder) && IsOtherSpelling(otherSpelling, Folder);
}
