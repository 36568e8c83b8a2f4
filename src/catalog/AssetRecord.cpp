#include "catalog/AssetRecord.h"

#include <algorithm>

#include "base/Paths.h"
#include "catalog/Catalog.h"
#include "catalog/Properties.h"
#include "catalog/StampList.h"
#include "catalog/ThumbnailCache.h"
#include "imaging/Image.h"
#include "imaging/PreparedPhoto.h"

namespace {

const c4_IntProp& PropertyOf(PhotoFlag which) {
  switch (which) {
    case PhotoFlag::Tossed:
      return props::Tossed;
    case PhotoFlag::ToEmail:
      return props::ToEmail;
    case PhotoFlag::ToRemotePrint:
      break;
  }
  return props::ToRemotePrint;
}

LocationType LocationTypeOf(const c4_RowRef& row) {
  return static_cast<LocationType>(props::LocationType.Get(row));
}

PathParts PartsOf(const c4_RowRef& row) {
  switch (LocationTypeOf(row)) {
    case LocationType::WholePath:
      return SplitPath(props::Location.Get(row));
    case LocationType::FolderAndName:
      return {std::string(props::Location.Get(row)), std::string(props::Filename.Get(row))};
    default:
      return {};
  }
}

/// The earlier of the two, where 0 is unknown.
std::int32_t EarlierOf(std::int32_t a, std::int32_t b) {
  if (a == 0 || b == 0) return a + b;
  return std::min(a, b);
}

}  // namespace

std::int32_t CAssetRecord::GetAssetID() const { return props::AssetID.Get(Row); }
LocationType CAssetRecord::GetLocationType() const { return LocationTypeOf(Row); }
std::int32_t CAssetRecord::GetRollID() const { return props::RollID.Get(Row); }
std::int32_t CAssetRecord::GetCachedDate() const { return props::CachedDate.Get(Row); }
std::int32_t CAssetRecord::GetCachedRating() const { return props::CachedRating.Get(Row); }

MissingState CAssetRecord::GetMissing() const { return static_cast<MissingState>(props::Missing.Get(Row)); }

std::string CAssetRecord::GetPath() const {
  const PathParts parts = PartsOf(Row);
  return parts.Folder + parts.Name;
}

std::string CAssetRecord::GetFolder() const { return PartsOf(Row).Folder; }

std::string CAssetRecord::GetFilename() const { return PartsOf(Row).Name; }

std::string CAssetRecord::GetTitle() const {
  const std::string name = GetFilename();
  return name.substr(0, name.rfind('.'));
}

bool CAssetRecord::GetFlag(PhotoFlag which) const { return PropertyOf(which).Get(Row) != 0; }

CStampList CAssetRecord::GetStamps(StampId type) const { return {Owner, *this, type}; }

void CAssetRecord::SetFlag(PhotoFlag which, bool on) {
  if (!IsValid() || PropertyOf(which).Get(Row) == static_cast<std::int32_t>(on)) return;
  PropertyOf(which).Set(Row, on);
  Owner->CommitIfAuto();
}

void CAssetRecord::SetMissing(MissingState value) {
  if (!IsValid() || GetMissing() == value) return;
  props::Missing.Set(Row, static_cast<std::int32_t>(value));
  Owner->CommitIfAuto();
}

bool CAssetRecord::SetPath(const std::string& path) {
  if (!IsValid()) return false;
  const PathParts parts = SplitPath(path);
  CAutoCommitPause pause(*Owner);
  props::LocationType.Set(Row, static_cast<std::int32_t>(LocationType::FolderAndName));
  props::Location.Set(Row, parts.Folder);
  props::Filename.Set(Row, parts.Name);
  Owner->AddToSpellings(path, GetAssetID());
  pause.Commit();
  return true;
}

void CAssetRecord::SetCachedRating(std::int32_t value) { props::CachedRating.Set(Row, value); }

void CAssetRecord::SetCachedDate(std::int32_t seconds) { props::CachedDate.Set(Row, seconds); }

bool CAssetRecord::StampNewPhoto(std::int32_t created, std::int32_t written, std::int32_t cameraDate) {
  if (!IsValid() || GetPath().empty()) return false;
  const std::int32_t fileDate = EarlierOf(created, written);
  CAutoCommitPause pause(*Owner);
  bool stamped = GetStamps(StampId::FileCreateDate).SetDate(fileDate, 0, StampId::None);
  if (cameraDate != 0) {
    stamped = stamped && GetStamps(StampId::CameraDate).SetDate(cameraDate, 0, StampId::None) &&
              GetStamps(StampId::Date).SetDate(cameraDate, 0, StampId::CameraDate);
  } else {
    stamped = stamped && GetStamps(StampId::Date).SetDate(fileDate, 0, StampId::FileCreateDate);
  }
  if (stamped) pause.Commit();
  return stamped;
}

void CAssetRecord::MakeThumbnail() {
  if (IsValid()) CThumbnailCache::GetInstance()->StorePrepared(GetAssetID(), PreparePhoto(GetPath()));
}

std::unique_ptr<CImage> CAssetRecord::LoadThumbnail() const {
  if (!IsValid()) return nullptr;
  return CThumbnailCache::GetInstance()->Load(GetAssetID());
}
