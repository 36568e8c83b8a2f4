#pragma once

#include <QObject>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "imaging/PreparedPhoto.h"

class CCatalog;
class CThumbnailCache;

/// Puts right the thumbnails that an earlier version of the program made of photos that are stored lying
/// down. It goes through them once, in the background: a thread looks at the headers of some files and makes
/// new thumbnails where they are needed, then the window thread stores these, and so on. What was looked at
/// isn't looked at again, so it goes on where the last session ended.
class CThumbnailCheck : public QObject {
 public:
  /// `onRemade` is called with the photos whose thumbnails have changed. The stores outlive the object.
  CThumbnailCheck(CCatalog& catalog, CThumbnailCache& cache,
                  std::function<void(const std::vector<std::int32_t>&)> onRemade);
  ~CThumbnailCheck() override;

  /// To be called once, on the window thread. Costs nothing if all thumbnails are right.
  void Start();

 private:
  struct Photo {
    std::int32_t AssetId = 0;
    std::string Path;
    std::optional<PreparedPhoto> Prepared;  // if the thumbnail has to be another
  };

  void GoOn();
  std::vector<Photo> TakeSome();
  void Store(const std::vector<Photo>& photos);

  CCatalog& Catalog;
  CThumbnailCache& Cache;
  const std::function<void(const std::vector<std::int32_t>&)> OnRemade;
  std::vector<std::int32_t> Photos;
  std::size_t Next = 0;
  std::jthread Worker;
};
