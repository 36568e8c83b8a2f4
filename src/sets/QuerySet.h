#pragma once

#include "sets/PhotoSet.h"
#include "sets/SetKind.h"
#include "storage/View.h"

class CCatalog;

/// The photos that a condition on their rows picks out of the catalog, in the order in which they came in.
class CQuerySet : public CPhotoSet {
 public:
  /// Rebuilt when made. Without a catalog, or with the kind Invalid, the set is invalid and empty.
  CQuerySet(CCatalog* catalog, SetKind kind);

  void Rebuild() override;

 private:
  CCatalog* Catalog;
  c4_View Source;  // follows the catalog
};
