#pragma once

#include <string>

#include "catalog/AssetRecord.h"
#include "ui/back/FieldValue.h"

/// The folder that the photo's file is in, by its name for the eye. It can't be changed.
class CFolderValue : public CFieldValue {
 public:
  explicit CFolderValue(const CAssetRecord& photo);

  std::string GetText() const override { return Text; }
  void Reload() override;

 private:
  CAssetRecord Photo;
  std::string Text;
};
