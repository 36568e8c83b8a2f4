#include "sets/ListPhotoSet.h"

#include <algorithm>
#include <unordered_map>

#include "catalog/Catalog.h"

namespace {

constexpr int kMostThumbnails = 1000;  // of 44 kB each

}  // namespace

int CListPhotoSet::FindEntry(int index) const {
  if (index < 0 || index >= static_cast<int>(Places.size())) return -1;
  return static_cast<int>(Places[static_cast<std::size_t>(index)]);
}

void CListPhotoSet::FindPlaces() {
  // A photo that stands in the list several times passes the filters each time, so its n-th place among the
  // members is its n-th place in the list.
  std::unordered_map<std::int32_t, std::vector<std::size_t>> placesById;
  for (std::size_t i = Entries.size(); i-- > 0;) placesById[Entries[i].AssetID].push_back(i);
  Places.clear();
  for (const CPhotoSetEntry& member : Members) {
    std::vector<std::size_t>& places = placesById[member.AssetID];
    Places.push_back(places.back());
    places.pop_back();
  }
}

std::unique_ptr<CImage> CListPhotoSet::MakeThumbnail(std::int32_t assetId) const {
  CCatalog* const catalog = CCatalog::GetInstance();
  if (!HoldThumbnails || catalog == nullptr) return nullptr;
  return catalog->FindAssetById(assetId).LoadThumbnail();
}

void CListPhotoSet::ForgetThumbnails() {
  for (CListEntry& entry : Entries) entry.Thumbnail.reset();
  HeldThumbnails = 0;
}

void CListPhotoSet::RemoveAt(int index) {
  if (!IsValid()) return;
  const int entry = FindEntry(index);
  CPhotoSet::RemoveAt(index);
  if (entry < 0) return;
  Entries.erase(Entries.begin() + entry);
  FindPlaces();
}

void CListPhotoSet::RemoveAll(const CAssetIdSet& assetIds) {
  const auto isRemoved = [&](const auto& entry) { return assetIds.Contains(entry.AssetID); };
  std::erase_if(Entries, isRemoved);
  std::erase_if(Members, isRemoved);
  FindPlaces();
}

void CListPhotoSet::Rebuild() {
  CPhotoSet::Rebuild();
  Members.clear();
  CCatalog* const catalog = CCatalog::GetInstance();
  for (const CListEntry& entry : Entries) {
    if (catalog != nullptr && Matches(catalog->FindAssetById(entry.AssetID))) {
      Members.push_back({entry.AssetID, 0});
    }
  }
  FindPlaces();
}

void CListPhotoSet::Clear() {
  Entries.clear();
  HeldThumbnails = 0;
  SetGuest(-1);
  Rebuild();
}

void CListPhotoSet::AddAll(const CPhotoSet& set) {
  for (int i = 0; i < set.GetCount(); ++i) Add(set.GetAssetId(i));
}

void CListPhotoSet::Add(std::int32_t assetId) { Entries.push_back({assetId, std::nullopt}); }

void CListPhotoSet::InsertBefore(std::int32_t assetId, int index) {
  const int entry = FindEntry(index);
  if (entry < 0) return;
  Entries.insert(Entries.begin() + entry, {assetId, std::nullopt});
  for (std::size_t& place : Places) {
    if (place >= static_cast<std::size_t>(entry)) ++place;
  }
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
  FindPlaces();
}

CImage* CListPhotoSet::GetThumbnail(int index) {
  const int place = FindEntry(index);
  if (!HoldThumbnails || place < 0) return nullptr;
  CListEntry& entry = Entries[static_cast<std::size_t>(place)];
  if (!entry.Thumbnail) {
    if (HeldThumbnails >= kMostThumbnails) ForgetThumbnails();
    entry.Thumbnail = MakeThumbnail(entry.AssetID);
    ++HeldThumbnails;
  }
  return entry.Thumbnail->get();
}

void CListPhotoSet::RefreshThumbnail(std::int32_t assetId) {
  for (CListEntry& entry : Entries) {
    if (entry.AssetID == assetId) entry.Thumbnail.reset();
  }
}
