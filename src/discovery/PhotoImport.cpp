#include "discovery/PhotoImport.h"

#include <algorithm>
#include <thread>
#include <vector>

#include "base/Exceptions.h"
#include "base/Times.h"
#include "catalog/Catalog.h"
#include "catalog/ThumbnailCache.h"
#include "discovery/PrepareAhead.h"
#include "discovery/SearchProgress.h"

bool CPhotoImport::Run(std::span<const CFoundFile> files) {
  bool goesOn = Progress == nullptr || Progress->SetTotal(static_cast<int>(files.size()));
  CAutoCommitPause catalogPause(Catalog);
  CAutoCommitPause cachePause(Cache);
  std::vector<std::string> paths;
  std::transform(files.begin(), files.end(), std::back_inserter(paths),
                 [](const CFoundFile& found) { return found.Path; });
  CPrepareAhead prepareAhead(std::move(paths), std::thread::hardware_concurrency());
  bool addedNew = false;
  for (std::size_t i = 0; goesOn && i < files.size(); ++i) {
    const PreparedPhoto prepared = prepareAhead.TakeNext();
    ImportFile(files[i], prepared);
    addedNew |= !files[i].Known;
    goesOn = Progress == nullptr ||
             Progress->Progress({static_cast<int>(i), files[i].Path, prepared.Thumbnail, true});
  }
  if (addedNew) Catalog.AdvanceRoll();
  // The thumbnails are committed first. A stop between the two commits leaves thumbnails under numbers that
  // the catalog has yet to give out; each is overwritten when its number is given. The other order would
  // leave photos in the catalog although the search is reported as failed.
  cachePause.Commit();
  catalogPause.Commit();
  return goesOn;
}

void CPhotoImport::ImportFile(const CFoundFile& found, const PreparedPhoto& prepared) {
  if (found.Known) return Cache.StorePrepared(*found.Known, prepared);
  CAssetRecord record = Catalog.AddAsset(found.Path);
  if (!record.StampNewPhoto(TimeFromFile(found.Created), TimeFromFile(found.Written), prepared.CameraDate)) {
    throw CStorageException("The catalog takes no dates.");
  }
  Cache.StorePrepared(record.GetAssetID(), prepared);
}
