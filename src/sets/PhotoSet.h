#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "catalog/AssetRecord.h"
#include "catalog/PhotoFacts.h"
#include "sets/FolderFilter.h"
#include "sets/PhotoFilter.h"
#include "sets/TextFilter.h"

/// A member of a set. Neighbours with equal keys are one group.
struct CPhotoSetEntry {
  std::int32_t AssetID;
  std::int32_t GroupKey;
};

/// An ordered list of photos with an index-based interface: what every view works on. It holds AssetIDs and
/// fetches records on demand. A set doesn't watch the catalog: changes of filters, sort order or photos are
/// seen after Rebuild().
///
/// A set may have a guest: one photo that isn't a member but is shown behind the last one. Group navigation
/// passes it over.
class CPhotoSet {
 public:
  CPhotoSet() = default;
  virtual ~CPhotoSet() = default;
  CPhotoSet(const CPhotoSet&) = delete;
  CPhotoSet& operator=(const CPhotoSet&) = delete;

  virtual bool IsValid() const { return Valid; }
  virtual void Invalidate() { Valid = false; }

  /// The members and the guest.
  virtual int GetCount() const;
  /// -1 for an index out of range.
  virtual std::int32_t GetAssetId(int index) const;
  /// An invalid record for an index out of range.
  virtual CAssetRecord GetAsset(int index) const;
  /// -1 if the photo isn't in the set.
  virtual int IndexOf(std::int32_t assetId) const;
  /// The whole paths of all photos that the catalog still has, in order.
  virtual std::vector<std::string> GetPaths() const;
  /// Takes a photo out of the set, not out of the catalog.
  virtual void RemoveAt(int index);

  /// -1 for none.
  virtual std::int32_t GetGuest() const { return Guest; }
  virtual void SetGuest(std::int32_t assetId) { Guest = assetId; }

  virtual bool CanSort(SortKind kind, bool descending) const;
  /// False, with nothing changed, if the set can't be sorted so.
  virtual bool SetSort(SortKind kind, bool descending);
  SortKind GetSortKind() const { return Kind; }
  bool IsDescending() const { return Descending; }
  bool IsGrouped() const { return Grouped; }

  virtual void Rebuild();
  virtual std::string GetName() const;
  void SetName(const std::string& name) { Name = name; }

  // Filters. A photo must pass all of them.

  /// Narrows the set to a folder and those below it; an empty one removes the filter.
  void SetFolderFilter(const std::string& folder);
  std::string GetFolderFilter() const;  // with its closing "/"; empty for none
  void ClearFolderFilter() { FolderFilter.reset(); }
  /// Blanks at the ends don't count; a text without anything else removes the filter.
  void SetTextFilter(const std::string& text);
  std::string GetTextFilter() const;
  void ClearTextFilter() { TextFilter.reset(); }
  void SetRatingFilter(RatingFilterCode code);
  void ClearRatingFilter() { RatingFilter.reset(); }
  void SetRollFilter(std::int32_t first, std::int32_t last);
  void ClearRollFilter() { RollFilter.reset(); }
  void ClearSpareFilter() { SpareFilter.reset(); }
  bool HasFilters() const;
  bool Matches(const CAssetRecord& record) const;

  // Groups: runs of members with equal keys. -1 or false on a set that isn't valid or isn't grouped.

  static std::int32_t GetGroupKey(const CAssetRecord& record, SortKind kind);
  bool IsGroupStart(int index) const;
  bool IsGroupEnd(int index) const;
  /// The first member of the group after that of `index`, or the last member of the set.
  int GetNextGroupStart(int index) const;
  /// The first member of the group of `index`, or, from there, that of the group before.
  int GetPreviousGroupStart(int index) const;

 protected:
  bool HasName() const { return !Name.empty(); }

  std::vector<CPhotoSetEntry> Members;  // the result of the last rebuild
  bool Grouped = false;

 private:
  int GetMemberCount() const { return static_cast<int>(Members.size()); }
  bool IsGuestIndex(int index) const { return Guest != -1 && index == GetMemberCount(); }
  bool HasGroups() const { return IsValid() && Grouped; }
  std::int32_t KeyAt(int index) const { return Members[static_cast<std::size_t>(index)].GroupKey; }

  bool Valid = true;
  std::string Name;
  SortKind Kind = SortKind::None;
  bool Descending = false;
  std::unique_ptr<CFolderFilter> FolderFilter;
  std::unique_ptr<CTextFilter> TextFilter;
  std::unique_ptr<CRatingFilter> RatingFilter;
  std::unique_ptr<CPhotoFilter> SpareFilter;  // consulted like the others; nothing fills it yet
  std::unique_ptr<CRollFilter> RollFilter;
  std::int32_t Guest = -1;
};
