#pragma once

#include <memory>
#include <vector>

#include "catalog/AssetRecord.h"
#include "ui/back/FieldValue.h"

/// The values of all fields for one photo, read when this is made: its stamps, and what the path of its file
/// gives. A value of several texts is the list of them all. A commit of the title renames the file; the
/// folder can't be changed.
class CPhotoFieldSet {
 public:
  CPhotoFieldSet(const CAssetRecord& photo, const CFieldValue::ChangeNotice& onCommitted);

  /// The value of a fact that has a field.
  CFieldValue& Get(StampId fact) const;

 private:
  std::vector<std::shared_ptr<CFieldValue>> Values;
};
