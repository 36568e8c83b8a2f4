#include "sets/PhotoSet.h"

#include <algorithm>

#include "catalog/Catalog.h"

std::int32_t CPhotoSet::GetAssetId(int index) const {
  return index >= 0 && index < GetCount() ? Members[static_cast<std::size_t>(index)] : -1;
}

CAssetRecord CPhotoSet::GetAsset(int index) const {
  CCatalog* const catalog = CCatalog::GetInstance();
  return catalog != nullptr ? catalog->FindAssetById(GetAssetId(index)) : CAssetRecord();
}

int CPhotoSet::IndexOf(std::int32_t assetId) const {
  const auto found = std::find(Members.begin(), Members.end(), assetId);
  return Valid && found != Members.end() ? static_cast<int>(found - Members.begin()) : -1;
}

void CPhotoSet::SetFolderFilter(const std::string& folder) {
  FolderFilter = folder.empty() ? nullptr : std::make_unique<CFolderFilter>(folder);
}
