#include "catalog/CatalogUpgrade.h"

#include <algorithm>
#include <string>
#include <unordered_map>
#include <vector>

#include "base/PathIdentity.h"
#include "base/Paths.h"
#include "base/Times.h"
#include "catalog/Catalog.h"
#include "catalog/Properties.h"
#include "catalog/StampList.h"
#include "imaging/ExifReader.h"
#include "platform/Files.h"
#include "platform/Unicode.h"

namespace {

std::int32_t ReadCameraDate(const std::string& path) {
  CExifReader reader;
  reader.Load(path);
  return reader.GetDateTime(kDateTimeTag);
}

void CompleteAssets(CCatalog& catalog) {
  const c4_View assets = catalog.GetAssets();
  for (int i = 0; i < assets.GetSize(); ++i) {
    CAssetRecord record(&catalog, assets[i]);
    const c4_RowRef& row = record.GetRow();
    if (props::ID.Get(row).empty()) props::ID.Set(row, CGuid::Generate().ToBytes());
    if (record.GetCachedDate() == 0 && record.GetCachedRating() == 0) {
      props::CachedDate.Set(row, record.GetStamps(StampId::Date).Get(0).GetDate());
      props::CachedRating.Set(row, record.GetStamps(StampId::Rating).Get(0).GetNumber());
    }
    if (record.GetLocationType() == LocationType::WholePath) record.SetPath(record.GetPath());
  }
}

void RenewDatesOf(const CAssetRecord& record, const c4_View& stamps) {
  c4_View obsolete = stamps.Select(props::AssetID[record.GetAssetID()] +
                                   props::StampType[static_cast<std::int32_t>(StampId::Obsolete)]);
  obsolete.RemoveAt(0);

  CStampList fileDates = record.GetStamps(StampId::FileCreateDate);
  platform::FileStatus status;
  const std::int32_t written =
      platform::GetStatus(record.GetPath(), status) ? 0 : TimeFromFile(status.Modified);
  const std::int32_t known = fileDates.Get(0).GetDate();
  if (written != 0 && (known == 0 || written < known)) fileDates.SetDate(written, 0, StampId::None);

  if (const std::int32_t cameraDate = ReadCameraDate(record.GetPath()); cameraDate != 0) {
    record.GetStamps(StampId::CameraDate).SetDate(cameraDate, 0, StampId::None);
    record.GetStamps(StampId::Date).SetDate(cameraDate, 0, StampId::CameraDate);
  } else if (const std::int32_t fileDate = fileDates.Get(0).GetDate(); fileDate != 0) {
    record.GetStamps(StampId::Date).SetDate(fileDate, 0, StampId::FileCreateDate);
  }
}

void RemoveDuplicates(c4_View assets) {
  std::unordered_map<std::string, std::vector<std::string>> kept;  // spellings by folded path
  std::vector<c4_RowRef> duplicates;
  for (int i = 0; i < assets.GetSize(); ++i) {
    const c4_RowRef row = assets[i];
    const std::string path = JoinPath(props::Location.Get(row), props::Filename.Get(row));
    std::vector<std::string>& spellings = kept[platform::FoldCase(path)];
    const auto isSamePhoto = [&path](const std::string& other) {
      return other == path || IsFormerSpelling(other, path) || IsFormerSpelling(path, other);
    };
    if (std::any_of(spellings.begin(), spellings.end(), isSamePhoto)) {
      duplicates.push_back(row);
    } else {
      spellings.push_back(path);
    }
  }
  for (const c4_RowRef& row : duplicates) assets.RemoveAt(assets.GetIndexOf(row));
}

}  // namespace

void UpgradePhotos(CCatalog& catalog, std::int32_t version) {
  const c4_View assets = catalog.GetAssets();
  if (version < 1) CompleteAssets(catalog);
  if (version < 2) {
    for (int i = 0; i < assets.GetSize(); ++i) RenewDatesOf({&catalog, assets[i]}, catalog.GetStamps());
  }
  // Versions 2 to 4 added only what CCatalog::AddFirstRows adds.
  if (version < 9) RemoveDuplicates(assets);
}
