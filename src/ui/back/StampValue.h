#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "catalog/AssetRecord.h"
#include "catalog/StampList.h"
#include "ui/back/FieldValue.h"

class CTokenList;

/// The photo's stamps of one type, as one text, number or date. Of several texts the value is the list of
/// them all.
class CStampValue : public CFieldValue {
 public:
  CStampValue(const CAssetRecord& photo, StampId type, ChangeNotice onCommitted);

  void Commit() override;
  std::vector<std::string> GetChoices() override;
  std::string GetText() const override { return Text; }
  void SetText(const std::string& text) override;
  std::int32_t GetNumber() const override { return Number; }
  void SetNumber(std::int32_t value) override;
  std::int32_t GetDate() const override { return Time; }
  void SetDate(std::int32_t time) override;
  FieldKind GetKind() const override;
  bool IsMultiple() const override;
  bool HasChoices() const override;
  std::optional<std::int32_t> GetDateFrom(StampId source) const override;
  void Reload() override;

 private:
  std::string ReadText() const;
  void Write();
  void WriteTokens(const CTokenList& tokens);

  CStampList Stamps;
  std::string Text;
  std::int32_t Number = 0;
  std::int32_t Time = 0;
};
