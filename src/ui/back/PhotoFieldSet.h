#pragma once

#include <memory>
#include <vector>

#include "catalog/AssetRecord.h"
#include "ui/back/FieldValue.h"

/// The values of one photo, read when this is made.
class CPhotoFieldSet {
 public:
  CPhotoFieldSet(const CAssetRecord& photo, const CFieldValue::ChangeNotice& onCommitted);
  ~CPhotoFieldSet();

  const CAssetRecord& GetPhoto() const { return Photo; }
  const std::vector<std::shared_ptr<CFieldValue>>& GetValues() const { return Values; }

 private:
  CAssetRecord Photo;
  std::vector<std::shared_ptr<CFieldValue>> Values;
};
