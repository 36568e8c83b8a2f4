#pragma once

#include <memory>
#include <vector>

#include "imaging/Image.h"
#include "sets/PhotoSet.h"

/// A photo of a list.
struct CListEntry {
  std::int32_t AssetID;
  std::unique_ptr<CImage> Thumbnail;  // null if none is held or there is none
};

/// Photos that the user has put together, in the user's order. Members are those of them that pass the
/// filters. Adding, inserting and moving are seen after Rebuild(). A list takes the same photo twice; callers
/// ask IndexOf first.
class CListPhotoSet : public CPhotoSet {
 public:
  /// With `holdThumbnails` each photo's thumbnail is kept decoded, so that painting the list reads nothing.
  explicit CListPhotoSet(bool holdThumbnails) : HoldThumbnails(holdThumbnails) {}

  void RemoveAt(int index) override;
  void Rebuild() override;

  virtual void Clear();
  virtual void AddAll(const CPhotoSet& set);
  virtual void Add(std::int32_t assetId);
  /// Before the photo at `index`; nothing if there is none.
  virtual void InsertBefore(std::int32_t assetId, int index);
  /// Before the photo at `toIndex`; nothing unless both are there.
  virtual void Move(int fromIndex, int toIndex);
  /// The held thumbnail, owned by the set, or null.
  virtual CImage* GetThumbnail(int index) const;
  /// Reads the photo's held thumbnail anew.
  virtual void RefreshThumbnail(std::int32_t assetId);

 private:
  int FindEntry(int index) const;
  std::unique_ptr<CImage> MakeThumbnail(std::int32_t assetId) const;

  const bool HoldThumbnails;
  std::vector<CListEntry> Entries;  // the whole list
};
