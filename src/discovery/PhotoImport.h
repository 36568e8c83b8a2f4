#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>

class CCatalog;
class CSearchProgress;
class CThumbnailCache;
struct PreparedPhoto;

/// A photo file that needs work.
struct CFoundFile {
  std::string Path;
  std::int64_t Created = 0;  // seconds since 1970, UTC
  std::int64_t Written = 0;
  std::optional<std::int32_t> Known;  // the photo of the catalog whose thumbnail is missing; none: it is new
};

/// Brings found files into the catalog, and their thumbnails into the cache. The files are decoded ahead on
/// all cores; one thread writes, in the order of the files.
class CPhotoImport {
 public:
  /// `progress` may be null.
  CPhotoImport(CCatalog& catalog, CThumbnailCache& cache, CSearchProgress* progress)
      : Catalog(catalog), Cache(cache), Progress(progress) {}

  /// One transaction; the new photos form one roll. False if the user stopped it: what was done until then
  /// stays. Any exception undoes all of it.
  bool Run(std::span<const CFoundFile> files);

 private:
  void ImportFile(const CFoundFile& found, const PreparedPhoto& prepared);

  CCatalog& Catalog;
  CThumbnailCache& Cache;
  CSearchProgress* const Progress;
};
