#include "sets/PhotoSet.h"

#include <algorithm>
#include <array>
#include <cctype>

#include "base/Paths.h"
#include "base/Texts.h"
#include "catalog/Catalog.h"
#include "sets/GroupKey.h"

namespace {

std::string Trimmed(const std::string& text) {
  const auto isSpace = [](char byte) { return std::isspace(static_cast<unsigned char>(byte)) != 0; };
  const auto begin = std::find_if_not(text.begin(), text.end(), isSpace);
  const auto end = std::find_if_not(text.rbegin(), std::make_reverse_iterator(begin), isSpace).base();
  return {begin, end};
}

}  // namespace

int CPhotoSet::GetCount() const { return GetMemberCount() + (Guest != -1 ? 1 : 0); }

std::int32_t CPhotoSet::GetAssetId(int index) const {
  if (!IsValid() || index < 0 || index >= GetCount()) return -1;
  return IsGuestIndex(index) ? Guest : Members[static_cast<std::size_t>(index)].AssetID;
}

CAssetRecord CPhotoSet::GetAsset(int index) const {
  CCatalog* const catalog = CCatalog::GetInstance();
  const std::int32_t assetId = GetAssetId(index);
  return catalog != nullptr && assetId != -1 ? catalog->FindAssetById(assetId) : CAssetRecord();
}

int CPhotoSet::IndexOf(std::int32_t assetId) const {
  if (!IsValid()) return -1;
  if (Guest != -1 && assetId == Guest) return GetMemberCount();
  const auto found = std::find_if(Members.begin(), Members.end(), [assetId](const CPhotoSetEntry& entry) {
    return entry.AssetID == assetId;
  });
  return found != Members.end() ? static_cast<int>(found - Members.begin()) : -1;
}

std::vector<std::string> CPhotoSet::GetPaths() const {
  std::vector<std::string> paths;
  for (int i = 0; i < GetCount(); ++i) {
    if (const CAssetRecord record = GetAsset(i); record.IsValid()) paths.push_back(record.GetPath());
  }
  return paths;
}

void CPhotoSet::RemoveAt(int index) {
  if (!IsValid() || index < 0 || index >= GetCount()) return;
  if (IsGuestIndex(index)) {
    Guest = -1;
  } else {
    Members.erase(Members.begin() + index);
  }
}

bool CPhotoSet::CanSort(SortKind kind, bool descending) const {
  return kind == SortKind::None && !descending;
}

bool CPhotoSet::SetSort(SortKind kind, bool descending) {
  if (!CanSort(kind, descending)) return false;
  Kind = kind;
  Descending = descending;
  return true;
}

void CPhotoSet::Rebuild() {
  const std::array<CPhotoFilter*, 5> filters{FolderFilter.get(), TextFilter.get(), RatingFilter.get(),
                                             SpareFilter.get(), RollFilter.get()};
  for (CPhotoFilter* const filter : filters) {
    if (filter != nullptr) filter->Refresh();
  }
  Grouped = Kind != SortKind::None;
}

std::string CPhotoSet::GetName() const { return HasName() ? Name : LoadExpandedString(StringId::UnnamedSet); }

void CPhotoSet::SetFolderFilter(const std::string& folder) {
  if (folder.empty()) return FolderFilter.reset();
  if (FolderFilter && FolderFilter->GetFolder() == WithClosingSlash(folder)) return;
  FolderFilter = std::make_unique<CFolderFilter>(folder);
}

std::string CPhotoSet::GetFolderFilter() const { return FolderFilter ? FolderFilter->GetFolder() : ""; }

void CPhotoSet::SetTextFilter(const std::string& text) {
  const std::string trimmed = Trimmed(text);
  if (trimmed == GetTextFilter()) return;
  TextFilter = trimmed.empty() ? nullptr : std::make_unique<CTextFilter>(trimmed);
}

std::string CPhotoSet::GetTextFilter() const { return TextFilter ? TextFilter->GetText() : ""; }

void CPhotoSet::SetRatingFilter(RatingFilterCode code) {
  RatingFilter = code == RatingFilterCode::Any ? nullptr : std::make_unique<CRatingFilter>(code);
}

void CPhotoSet::SetRollFilter(std::int32_t first, std::int32_t last) {
  RollFilter = std::make_unique<CRollFilter>(first, last);
}

bool CPhotoSet::HasFilters() const {
  return FolderFilter || TextFilter || RatingFilter || SpareFilter || RollFilter;
}

bool CPhotoSet::Matches(const CAssetRecord& record) const {
  const std::array<const CPhotoFilter*, 5> filters{RatingFilter.get(), RollFilter.get(), SpareFilter.get(),
                                                   FolderFilter.get(), TextFilter.get()};
  return std::all_of(filters.begin(), filters.end(), [&record](const CPhotoFilter* filter) {
    return filter == nullptr || filter->Matches(record);
  });
}

std::int32_t CPhotoSet::GetGroupKey(const CAssetRecord& record, SortKind kind) {
  return CGroupKeyFinder(kind).Find(record);
}

bool CPhotoSet::IsGroupStart(int index) const {
  if (!HasGroups()) return false;
  const int member = std::min(index, GetMemberCount() - 1);
  return member < 1 || KeyAt(member) != KeyAt(member - 1);
}

bool CPhotoSet::IsGroupEnd(int index) const {
  if (!HasGroups()) return false;
  const int member = std::max(index, 0);
  return member >= GetMemberCount() - 1 || KeyAt(member + 1) != KeyAt(member);
}

int CPhotoSet::GetNextGroupStart(int index) const {
  if (!HasGroups() || Members.empty()) return -1;
  if (index < 0) return 0;
  const int last = GetMemberCount() - 1;
  if (index >= last - 1) return last;
  int next = index + 1;
  while (next < last && KeyAt(next) == KeyAt(index)) ++next;
  return next;
}

int CPhotoSet::GetPreviousGroupStart(int index) const {
  if (!HasGroups() || Members.empty()) return -1;
  int member = std::min(index, GetMemberCount() - 1);
  if (member < 1) return 0;
  if (IsGroupStart(member)) --member;
  while (!IsGroupStart(member)) --member;
  return member;
}
