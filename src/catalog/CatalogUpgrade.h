#pragma once

#include <cstdint>

class CAssetRecord;
class CCatalog;

/// Brings an older catalog up to kCatalogVersion, step by step from its version on. All steps are one
/// transaction: a catalog is either of the old version or of the new one.
class CCatalogUpgrade {
 public:
  explicit CCatalogUpgrade(CCatalog& catalog) : Catalog(catalog) {}

  /// Does nothing, and writes nothing, on a catalog of this version or a newer one.
  void Run();

 private:
  void DropUncountedStrings();
  void CompleteAssets();
  void RenewDates();
  void RenewDatesOf(const CAssetRecord& record);
  void RemoveDuplicates();

  CCatalog& Catalog;
};
