#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <utility>

#include "catalog/PhotoFacts.h"
#include "storage/Row.h"

class CCatalog;
class CImage;
class CStampList;

/// A reference to one row of the catalog, by identity: rows that come and go around it don't shift it. Base
/// of the records; a small value, copied freely. It becomes invalid when its row is removed.
class CRecord {
 public:
  CRecord() = default;
  CRecord(CCatalog* owner, c4_RowRef row) : Owner(owner), Row(std::move(row)) {}
  virtual ~CRecord() = default;
  CRecord(const CRecord&) = default;
  CRecord& operator=(const CRecord&) = default;

  virtual bool IsValid() const { return Owner != nullptr && Row.IsValid(); }
  const c4_RowRef& GetRow() const { return Row; }

 protected:
  CCatalog* Owner = nullptr;
  c4_RowRef Row;
};

/// A row of People.
class CPersonRecord : public CRecord {
 public:
  using CRecord::CRecord;
};

enum class PhotoFlag { Tossed = 0, ToEmail = 1, ToRemotePrint = 2 };

/// How a photo's path is stored. Any other value means no path.
enum class LocationType : std::int32_t {
  WholePath = 0,  // in Location; in old catalogs, before their upgrade
  FolderAndName = 1,
};

/// What is stored in Missing.
enum class MissingState : std::int32_t {
  InPlace = 0,
  Gone = 1,           // the file wasn't there at the last check
  FolderRemoved = 2,  // its folder was taken off the list; stays until a search finds the file
};

/// A photo of the catalog: a row of Asset. Reading an invalid record gives 0 or empty; writing through one
/// does nothing and answers false. Every writing operation is one transaction (CCommittingStore).
class CAssetRecord : public CRecord {
 public:
  using CRecord::CRecord;

  std::int32_t GetAssetID() const;
  LocationType GetLocationType() const;
  std::int32_t GetRollID() const;
  std::int32_t GetCachedDate() const;    // seconds since 1970; 0 until the first date stamp
  std::int32_t GetCachedRating() const;  // 0 to 4; 0 is not rated
  MissingState GetMissing() const;
  std::string GetPath() const;
  std::string GetFolder() const;    // with its closing "/"
  std::string GetFilename() const;  // with its extension
  std::string GetTitle() const;     // the file name up to its last dot
  bool GetFlag(PhotoFlag which) const;
  CStampList GetStamps(StampId type) const;

  void SetFlag(PhotoFlag which, bool on);
  void SetMissing(MissingState value);
  /// Says that the photo's file has another path now. The file itself is not touched.
  bool SetPath(const std::string& path);

  /// The first stamps of a new photo: its dates, from its camera or its file. All are seconds since 1970, 0
  /// for unknown; `created` and `written` are the file's times. False for an invalid record or one without a
  /// path.
  bool StampNewPhoto(std::int32_t created, std::int32_t written, std::int32_t cameraDate);

  /// Decodes the photo and stores its thumbnail; see CThumbnailCache::StorePrepared.
  void MakeThumbnail();

  /// The stored thumbnail, or null. Opens no photo file and raises nothing.
  std::unique_ptr<CImage> LoadThumbnail() const;

 private:
  friend class CStampList;
  void SetCachedRating(std::int32_t value);
  void SetCachedDate(std::int32_t seconds);
};
