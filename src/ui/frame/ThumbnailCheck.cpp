#include "ui/frame/ThumbnailCheck.h"

#include <QPointer>
#include <algorithm>
#include <memory>
#include <utility>

#include "base/Exceptions.h"
#include "catalog/Catalog.h"
#include "catalog/ThumbnailCache.h"
#include "ui/kit/Job.h"

namespace {

// To one commit. What has been looked at since the last one is lost when the session ends: some seconds at
// most.
constexpr std::size_t kPhotosAtOnce = 200;

}  // namespace

CThumbnailCheck::CThumbnailCheck(CCatalog& catalog, CThumbnailCache& cache,
                                 std::function<void(const std::vector<std::int32_t>&)> onRemade)
    : Catalog(catalog), Cache(cache), OnRemade(std::move(onRemade)) {}

CThumbnailCheck::~CThumbnailCheck() = default;

void CThumbnailCheck::Start() {
  Photos = Cache.GetUncertain();
  GoOn();
}

void CThumbnailCheck::GoOn() {
  std::vector<Photo> photos = TakeSome();
  if (photos.empty()) return;
  Worker = std::jthread([this, taken = std::move(photos)](const std::stop_token& stop) mutable {
    for (Photo& photo : taken) {
      if (stop.stop_requested()) return;
      if (IsStoredLying(photo.Path)) photo.Prepared = PreparePhoto(photo.Path);
    }
    // The object drops what it is sent when it goes.
    auto looked = std::make_shared<std::vector<Photo>>(std::move(taken));
    QMetaObject::invokeMethod(
        this,
        [this, looked] {
          RunAfterJob([check = QPointer<CThumbnailCheck>(this), looked] {
            if (check) check->Store(*looked);
          });
        },
        Qt::QueuedConnection);
  });
}

/// A photo that isn't in its place waits for another session.
std::vector<CThumbnailCheck::Photo> CThumbnailCheck::TakeSome() {
  std::vector<Photo> photos;
  while (Next < Photos.size() && photos.size() < kPhotosAtOnce) {
    const CAssetRecord record = Catalog.FindAssetById(Photos[Next++]);
    if (!record.IsValid() || record.GetMissing() != MissingState::InPlace) continue;
    photos.push_back({record.GetAssetID(), record.GetPath(), std::nullopt});
  }
  return photos;
}

void CThumbnailCheck::Store(const std::vector<Photo>& photos) {
  std::vector<std::int32_t> remade;
  try {
    CAutoCommitPause pause(Cache);
    for (const Photo& photo : photos) {
      // Since then the photo may have been changed, and have a new thumbnail, or renamed or removed.
      if (!Cache.IsUncertain(photo.AssetId)) continue;
      if (Catalog.FindAssetById(photo.AssetId).GetPath() != photo.Path) continue;
      if (!photo.Prepared) {
        Cache.MarkCertain(photo.AssetId);
      } else if (photo.Prepared->WasRead) {
        Cache.StorePrepared(photo.AssetId, *photo.Prepared);
        remade.push_back(photo.AssetId);
      }
    }
    pause.Commit();
  } catch (const CStorageException&) {
    return;  // nobody has asked for it; the next session tries again
  }
  if (!remade.empty()) OnRemade(remade);
  GoOn();
}
