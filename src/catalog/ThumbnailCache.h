#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "base/Guid.h"
#include "storage/CommittingStore.h"
#include "storage/View.h"

class CJpegImage;
struct PreparedPhoto;

/// The thumbnails of the catalog's photos, one JPEG each, in a file of their own that can be lost: what is
/// missing is remade by the next search. It is paired with one catalog by GUID and emptied when it is opened
/// for another. One object in the program.
///
/// Thread: the one that owns the data. A change raises CStorageException when the disk refuses; all
/// uncommitted changes are then undone.
class CThumbnailCache : public CCommittingStore {
 public:
  /// Makes this the program's cache.
  CThumbnailCache();
  ~CThumbnailCache();

  /// The program's cache; null before there is one.
  static CThumbnailCache* GetInstance();

  /// Opens or makes the file. One that is damaged, or no storage of ours, is set aside under a name that is
  /// free, beginning with its own, and remade. Where that can't be done, or the file is out of reach, there
  /// are no thumbnails, and each change tries again and raises what is wrong.
  void Open(const std::string& path, const CGuid& catalogGuid);

  /// Commits nothing: what auto commit has left uncommitted is lost.
  void Close();

  /// Stores an image as a thumbnail, or an empty one for null. CException if it can't be encoded.
  void Store(std::int32_t assetId, const CJpegImage* image);

  /// Stores a whole JPEG, or an empty block for a photo that gives no picture; replaces the one of that
  /// photo. Commits if auto commit is on.
  void StoreBytes(std::int32_t assetId, std::span<const std::uint8_t> bytes);

  /// Stores what reading a photo gave: an empty thumbnail for a file that gives no picture, none for one that
  /// couldn't be read, so that the next search tries again.
  void StorePrepared(std::int32_t assetId, const PreparedPhoto& photo);

  /// The photos whose thumbnails an earlier version of the program made, which didn't heed how photos stand.
  std::vector<std::int32_t> GetUncertain() const;
  bool IsUncertain(std::int32_t assetId) const;
  /// Says that such a thumbnail is right as it is. Commits if auto commit is on.
  void MarkCertain(std::int32_t assetId);

  /// Forgets the photo's thumbnail. Commits if auto commit is on.
  void Remove(std::int32_t assetId);

  /// After a change has failed because the file is damaged: sets it aside and begins an empty one, as Open
  /// does. False, with nothing done, if no change failed so.
  bool RenewIfDamaged();

  /// The thumbnail, decoded. Null if there is none, it is empty, or it can't be read; never an exception,
  /// so it can be asked for while painting.
  std::unique_ptr<CJpegImage> Load(std::int32_t assetId) const;

  /// Whether the photo has been dealt with; its thumbnail may be empty.
  bool Has(std::int32_t assetId) const { return FindRow(assetId) >= 0; }

  /// The photo's position in the order in which the thumbnails came, or -1.
  int FindRow(std::int32_t assetId) const;

 private:
  void TryToOpen(bool damaged);
  bool OpenUnlessDamaged();
  void OpenPaired();
  void Drop();
  void Pair();
  template <typename Change>
  void Run(const Change& change);

  std::string Path;  // empty unless it was opened
  CGuid CatalogGuid;
  bool Damaged = false;  // a change has shown it
  c4_View Cache;
  c4_View Singletons;
  c4_View CacheByID;
};
