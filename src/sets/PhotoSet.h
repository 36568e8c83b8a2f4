#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "catalog/AssetRecord.h"
#include "sets/FolderFilter.h"

/// An ordered list of photos with an index-based interface: what every view works on. It holds AssetIDs and
/// fetches records on demand. A set doesn't watch the catalog: a change of filter, or of photos, is seen
/// after Rebuild().
class CPhotoSet {
 public:
  CPhotoSet() = default;
  virtual ~CPhotoSet() = default;
  CPhotoSet(const CPhotoSet&) = delete;
  CPhotoSet& operator=(const CPhotoSet&) = delete;

  bool IsValid() const { return Valid; }
  int GetCount() const { return Valid ? static_cast<int>(Members.size()) : 0; }

  /// -1 for an index out of range.
  std::int32_t GetAssetId(int index) const;
  /// An invalid record for an index out of range.
  CAssetRecord GetAsset(int index) const;
  /// -1 if the photo isn't in the set.
  int IndexOf(std::int32_t assetId) const;

  /// Narrows the set to a folder and those below it; an empty one lets every photo pass.
  void SetFolderFilter(const std::string& folder);

  virtual void Rebuild() = 0;

 protected:
  void Invalidate() { Valid = false; }
  bool Matches(const CAssetRecord& record) const { return !FolderFilter || FolderFilter->Matches(record); }

  std::vector<std::int32_t> Members;  // AssetIDs; the result of the last rebuild

 private:
  bool Valid = true;
  std::unique_ptr<CFolderFilter> FolderFilter;
};
