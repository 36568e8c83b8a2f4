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

}  // namespace

void CCatalogUpgrade::Run() {
  const std::int32_t version = Catalog.GetDBVersion();
  if (version >= kCatalogVersion) return;
  CAutoCommitPause pause(Catalog);
  if (version < 1) {
    DropUncountedStrings();
    CompleteAssets();
  }
  if (version < 2) RenewDates();
  // Versions 2 to 4 came with nothing that the first rows don't bring.
  if (version < 8) Catalog.RenewDBGUID();
  if (version < 9) RemoveDuplicates();
  Catalog.SetDBVersion(kCatalogVersion);
  pause.Commit();
  Catalog.Defragment();
}

void CCatalogUpgrade::DropUncountedStrings() {
  // Texts without counts are of no use.
  c4_View& strings = Catalog.Strings;
  if (props::RefCount.Get(strings[0]) != 0) return;
  strings.SetSize(0);
  Catalog.AddFirstStrings();
}

void CCatalogUpgrade::CompleteAssets() {
  for (int i = 0; i < Catalog.Assets.GetSize(); ++i) {
    CAssetRecord record(&Catalog, Catalog.Assets[i]);
    const c4_RowRef& row = record.GetRow();
    if (props::ID.Get(row).empty()) props::ID.Set(row, CGuid::Generate().ToBytes());
    if (record.GetCachedDate() == 0 && record.GetCachedRating() == 0) {
      props::CachedDate.Set(row, record.GetStamps(StampId::Date).Get(0).GetDate());
      props::CachedRating.Set(row, record.GetStamps(StampId::Rating).Get(0).GetNumber());
    }
    if (record.GetLocationType() == LocationType::WholePath) record.SetPath(record.GetPath());
  }
}

void CCatalogUpgrade::RenewDates() {
  for (int i = 0; i < Catalog.Assets.GetSize(); ++i) RenewDatesOf({&Catalog, Catalog.Assets[i]});
}

void CCatalogUpgrade::RenewDatesOf(const CAssetRecord& record) {
  c4_View obsolete = Catalog.Stamps.Select(props::AssetID[record.GetAssetID()] +
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

void CCatalogUpgrade::RemoveDuplicates() {
  std::unordered_map<std::string, std::vector<std::string>> kept;  // spellings by folded path
  std::vector<c4_RowRef> doomed;
  for (int i = 0; i < Catalog.Assets.GetSize(); ++i) {
    const c4_RowRef row = Catalog.Assets[i];
    const std::string path = JoinPath(props::Location.Get(row), props::Filename.Get(row));
    std::vector<std::string>& spellings = kept[platform::FoldCase(path)];
    const auto isSamePhoto = [&path](const std::string& other) {
      return other == path || IsFormerSpelling(other, path) || IsFormerSpelling(path, other);
    };
    if (std::any_of(spellings.begin(), spellings.end(), isSamePhoto)) {
      doomed.push_back(row);
    } else {
      spellings.push_back(path);
    }
  }
  for (const c4_RowRef& row : doomed) Catalog.Assets.RemoveAt(Catalog.Assets.GetIndexOf(row));
}
