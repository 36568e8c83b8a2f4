#include "sets/ListPhotoSet.h"

#include <algorithm>

#include "catalog/Catalog.h"

int CListPhotoSet::FindEntry(int index) const {
  if (index < 0 || index >= static_cast<int>(Members.size())) return -1;
  // A photo that stands in the list several times passes the filters each time, so its n-th place among the
  // members is its n-th place in the list.
  const std::int32_t assetId = Members[static_cast<std::size_t>(index)].AssetID;
  auto before = std::count_if(Members.begin(), Members.begin() + index,
                              [assetId](const CPhotoSetEntry& member) { return member.AssetID == assetId; });
  for (std::size_t i = 0; i < Entries.size(); ++i) {
    if (Entries[i].AssetID == assetId && before-- == 0) return static_cast<int>(i);
  }
  return -1;
}

std::unique_ptr<CImage> CListPhotoSet::MakeThumbnail(std::int32_t assetId) const {
  CCatalog* const catalog = CCatalog::GetInstance();
  if (!HoldThumbnails || catalog == nullptr) return nullptr;
  return catalog->FindAssetById(assetId).LoadThumbnail();
}

void CListPhotoSet::RemoveAt(int index) {
  if (!IsValid()) return;
  if (const int entry = FindEntry(index); entry >= 0) Entries.erase(Entries.begin() + entry);
  CPhotoSet::RemoveAt(index);
}

void CListPhotoSet::Rebuild() {
  CPhotoSet::Rebuild();
  Members.clear();
  CCatalog* const catalog = CCatalog::GetInstance();
  if (catalog == nullptr) return;
  for (const CListEntry& entry : Entries) {
    if (Matches(catalog->FindAssetById(entry.AssetID))) Members.push_back({entry.AssetID, 0});
  }
}

void CListPhotoSet::Clear() {
  Entries.clear();
  SetGuest(-1);
  Rebuild();
}

void CListPhotoSet::AddAll(const CPhotoSet& set) {
  for (int i = 0; i < set.GetCount(); ++i) Add(set.GetAssetId(i));
}

void CListPhotoSet::Add(std::int32_t assetId) { Entries.push_back({assetId, MakeThumbnail(assetId)}); }

void CListPhotoSet::InsertBefore(std::int32_t assetId, int index) {
  const int entry = FindEntry(index);
  if (entry >= 0) Entries.insert(Entries.begin() + entry, {assetId, MakeThumbnail(assetId)});
}

void CListPhotoSet::Move(int fromIndex, int toIndex) {
  const int from = FindEntry(fromIndex);
  const int to = FindEntry(toIndex);
  if (from < 0 || to < 0) return;
  const auto begin = Entries.begin();
  if (from < to) {
    std::rotate(begin + from, begin + from + 1, begin + to);
  } else {
    std::rotate(begin + to, begin + from, begin + from + 1);
  }
}

CImage* CListPhotoSet::GetThumbnail(int index) const {
  const int entry = FindEntry(index);
  return entry >= 0 ? Entries[static_cast<std::size_t>(entry)].Thumbnail.get() : nullptr;
}

void CListPhotoSet::RefreshThumbnail(std::int32_t assetId) {
  if (!HoldThumbnails) return;
  for (CListEntry& entry : Entries) {
    if (entry.AssetID == assetId) entry.Thumbnail = MakeThumbnail(assetId);
  }
}
