#pragma once

#include "sets/AssetIdSet.h"
#include "sets/PhotoSet.h"
#include "sets/SetKind.h"
#include "storage/View.h"

class CCatalog;

/// The photos that a condition on their rows picks out of the catalog, sorted and grouped.
class CQuerySet : public CPhotoSet {
 public:
  /// Rebuilt when made. Without a catalog, or with the kind Invalid, the set is invalid and empty.
  CQuerySet(CCatalog* catalog, SetKind kind);

  bool CanSort(SortKind kind, bool descending) const override;
  void Rebuild() override;
  std::string GetName() const override;

 private:
  CAssetIdSet FindMatches() const;

  SetKind Kind;
  CCatalog* Catalog;
  c4_View Source;  // follows the catalog
};
