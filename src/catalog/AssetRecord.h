#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "catalog/PhotoFacts.h"
#include "catalog/Record.h"

class CImage;
class CStampList;
struct PreparedPhoto;

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

  /// The first stamps of a new photo: its dates, from its camera or its file, and its thumbnail. `created`
  /// and `written` are the file's times in seconds since 1970, 0 for unknown. False for an invalid record or
  /// one without a path. The first form reads the file, the second takes what was read ahead.
  bool StampNewPhoto(std::int32_t created, std::int32_t written);
  bool StampNewPhoto(std::int32_t created, std::int32_t written, const PreparedPhoto& prepared);

  /// Decodes the photo and stores its thumbnail; an empty one if it can't be decoded, none if the file can't
  /// be read now. The second form takes what was read ahead.
  void MakeThumbnail();
  void StoreThumbnail(const PreparedPhoto& prepared);

  /// The stored thumbnail, or null. Opens no photo file and raises nothing.
  std::unique_ptr<CImage> LoadThumbnail() const;

 private:
  friend class CStampList;
  void SetCachedRating(std::int32_t value);
  void SetCachedDate(std::int32_t seconds);
};
