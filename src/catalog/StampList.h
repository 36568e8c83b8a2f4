#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "catalog/AssetRecord.h"
#include "catalog/PhotoFacts.h"
#include "storage/View.h"

/// One stamp: a fact about a photo.
class CStamp : public CRecord {
 public:
  CStamp() = default;
  CStamp(CCatalog* owner, c4_RowRef row, CStampType type)
      : CRecord(owner, std::move(row)), Type(std::move(type)) {}

  bool IsValid() const override { return CRecord::IsValid() && Type.IsKnown(); }
  bool IsDate() const;
  bool IsNumber() const { return Type.Format == StampFormat::Number; }
  bool IsText() const;

  /// Seconds since 1970; 0 for a stamp that isn't a date. `source`, if given, receives where the date came
  /// from.
  std::int32_t GetDate(StampId* source = nullptr) const;
  /// 0 for a stamp that isn't a number.
  std::int32_t GetNumber() const;
  /// The value as the user reads it, whatever its format.
  std::string GetText() const;

 private:
  CStampType Type;
};

/// The stamps of one photo and one type, in the order of their rows; it follows the catalog. All changes of
/// stamps go through here, so that the photo's cached rating and date stay true. Each is one transaction; a
/// value that doesn't fit the type's format, or an index out of range, changes nothing and answers false.
class CStampList {
 public:
  CStampList(CCatalog* owner, CAssetRecord asset, StampId type);

  bool IsValid() const { return Valid; }
  const CStampType& GetType() const { return Type; }
  const CAssetRecord& GetAsset() const { return Asset; }

  int Count() const { return Rows.GetSize(); }
  /// An invalid stamp for an index out of range.
  CStamp Get(int index) const;

  // Each sets the stamp at `index`, or adds the first one if there is none and `index` is 0.
  bool SetNumber(std::int32_t value, int index);
  bool SetText(const std::string& text, int index);
  /// A source that isn't None names the stamp type that the date was taken from; changing an existing date
  /// with a source changes the first stamp of that type too.
  bool SetDate(std::int32_t time, int index, StampId source);

  /// A further stamp behind those that exist; for texts alone.
  bool Add(const std::string& text);
  bool Remove(int index);

  /// For shared texts: all texts of the type by text, read once until the next change through this object.
  const std::vector<std::string>& GetChoices();

 private:
  bool IsInRange(int index) const { return index >= 0 && index < Count(); }
  void AddRow(const std::string& sorted, std::int32_t indexInt);
  void WriteRow(int index, const std::string& sorted, std::int32_t indexInt);

  CCatalog* Owner;
  CStampType Type;
  CAssetRecord Asset;
  bool Valid;
  c4_View Rows;
  std::optional<std::vector<std::string>> Choices;
};
