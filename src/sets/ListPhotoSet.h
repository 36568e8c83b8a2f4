#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <vector>

#include "imaging/Image.h"
#include "sets/AssetIdSet.h"
#include "sets/PhotoSet.h"

/// A photo of a list.
struct CListEntry {
  std::int32_t AssetID;
  std::optional<std::unique_ptr<CImage>> Thumbnail;  // null: there is none; no value: not read yet
};

/// Photos that the user has put together, in the user's order. Members are those of them that pass the
/// filters. Adding, inserting and moving are seen after Rebuild(). A list takes the same photo twice; callers
/// ask IndexOf first.
class CListPhotoSet : public CPhotoSet {
 public:
  /// With `holdThumbnails` thumbnails are kept decoded once they have been asked for, so that painting the
  /// list again reads nothing.
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
  /// The thumbnail, owned by the set, or null. One that isn't held yet is read; what was given before may
  /// then be gone, since only so many are held. Data thread.
  virtual CImage* GetThumbnail(int index);
  /// Forgets the photo's held thumbnail, so that it is read anew.
  virtual void RefreshThumbnail(std::int32_t assetId);

  /// Forgets all held thumbnails.
  void ForgetThumbnails();

  /// Takes several photos out at once, in a time that grows with the length of the list alone.
  void RemoveAll(const CAssetIdSet& assetIds);

 private:
  int FindEntry(int index) const;
  void FindPlaces();
  std::unique_ptr<CImage> MakeThumbnail(std::int32_t assetId) const;

  const bool HoldThumbnails;
  std::vector<CListEntry> Entries;  // the whole list
  std::vector<std::size_t> Places;  // of the members among the entries
  int HeldThumbnails = 0;
};
