#pragma once

#include "sets/AssetIdSet.h"
#include "sets/PhotoSet.h"
#include "storage/View.h"

class CCatalog;

/// The kinds of query sets. The numbers are the ids of their names in the string table, where they have one.
enum class SetKind : int {
  Invalid = 5023,        // holds nothing
  Available = 5025,      // in place and not in the trash
  All = 5026,            // every row
  ToEmail = 5032,        // in place and marked for the email tab
  Deleted = 5034,        // in the trash, missing or not
  ToRemotePrint = 5036,  // in place and marked for the print and upload tab
};

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
