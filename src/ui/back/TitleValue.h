#pragma once

#include <string>

#include "catalog/AssetRecord.h"
#include "ui/back/FieldValue.h"

/// The photo's title, which is the name of its file without the extension. A commit renames the file.
class CTitleValue : public CFieldValue {
 public:
  CTitleValue(const CAssetRecord& photo, ChangeNotice onCommitted);

  /// Makes the text, without blanks at its ends, a free name for the photo's file, with its extension,
  /// whatever was typed. An empty text is refused.
  bool ValidateText(std::string& text) override;

  /// CException with the reason if the file system refuses the name; the old one stays.
  void Commit() override;
  std::string GetText() const override { return Text; }
  void SetText(const std::string& text) override;
  void Reload() override;

 private:
  CAssetRecord Photo;
  std::string Text;
};
