#include "catalog/StampList.h"

#include <cstdio>
#include <ctime>

#include "base/Format.h"
#include "base/Texts.h"
#include "base/Times.h"
#include "catalog/Catalog.h"
#include "catalog/Properties.h"
#include "platform/Unicode.h"

namespace {

std::int32_t NumberOf(StampId type) { return static_cast<std::int32_t>(type); }

bool IsDateFormat(StampFormat format) {
  return format == StampFormat::Date || format == StampFormat::DateWithSource;
}

bool IsTextFormat(StampFormat format) {
  return format == StampFormat::Text || format == StampFormat::SharedText;
}

std::string TextFromDate(std::int32_t time) { return FormatLocalTime(time, "%Y%m%d%H%M%S"); }

std::int32_t DateFromText(const std::string& text) {
  std::tm local{};
  if (std::sscanf(text.c_str(), "%4d%2d%2d%2d%2d%2d", &local.tm_year, &local.tm_mon, &local.tm_mday,
                  &local.tm_hour, &local.tm_min, &local.tm_sec) != 6) {
    return 0;
  }
  local.tm_year -= 1900;
  local.tm_mon -= 1;
  return TimeFromLocal(local);
}

std::string TextFromNumber(std::int32_t value) { return Format("%08x", value); }

}  // namespace

bool CStamp::IsDate() const { return IsDateFormat(Type.Format); }

bool CStamp::IsText() const { return IsTextFormat(Type.Format); }

std::int32_t CStamp::GetDate(StampId* source) const {
  if (source != nullptr) *source = static_cast<StampId>(props::IndexInt.Get(Row));
  return IsDate() ? DateFromText(std::string(props::SortedString.Get(Row))) : 0;
}

std::int32_t CStamp::GetNumber() const { return IsNumber() ? props::IndexInt.Get(Row) : 0; }

std::string CStamp::GetText() const {
  switch (Type.Format) {
    case StampFormat::Text:
      return std::string(props::SortedString.Get(Row));
    case StampFormat::SharedText:
      return IsValid() ? Owner->GetString(props::IndexInt.Get(Row)) : "";
    case StampFormat::Date:
    case StampFormat::DateWithSource:
      return FormatDate(GetDate(), false);
    case StampFormat::Number:
      return std::to_string(GetNumber());
    case StampFormat::Person:
    case StampFormat::Invalid:
      break;
  }
  return {};
}

CStampList::CStampList(CCatalog* owner, CAssetRecord asset, StampId type)
    : Owner(owner),
      Type(owner != nullptr ? owner->GetStampType(type) : CStampType()),
      Asset(std::move(asset)),
      Valid(Type.IsKnown() && Asset.IsValid()) {
  if (Valid) {
    Rows = Owner->GetStamps().Select(props::AssetID[Asset.GetAssetID()] + props::StampType[Type.Type]);
  }
}

CStamp CStampList::Get(int index) const {
  return IsInRange(index) ? CStamp(Owner, Rows[index], Type) : CStamp();
}

void CStampList::AddRow(const std::string& sorted, std::int32_t indexInt) {
  Owner->GetStamps().Add(props::StampType[Type.Type] + props::SortedString[sorted] +
                         props::AssetID[Asset.GetAssetID()] + props::IndexInt[indexInt] + props::PersonID[0]);
}

void CStampList::WriteRow(int index, const std::string& sorted, std::int32_t indexInt) {
  const c4_RowRef row = Rows[index];
  props::IndexInt.Set(row, indexInt);
  props::SortedString.Set(row, sorted);
}

bool CStampList::SetNumber(std::int32_t value, int index) {
  const bool isFirst = index == 0 && Count() == 0;
  if (!Valid || Type.Format != StampFormat::Number || (!isFirst && !IsInRange(index))) return false;
  CAutoCommitPause pause(*Owner);
  if (isFirst) {
    AddRow(TextFromNumber(value), value);
  } else {
    WriteRow(index, TextFromNumber(value), value);
  }
  if (index == 0 && Type.Type == NumberOf(StampId::Rating)) Asset.SetCachedRating(value);
  pause.Commit();
  return true;
}

bool CStampList::Add(const std::string& text) {
  if (!Valid || !IsTextFormat(Type.Format)) return false;
  CAutoCommitPause pause(*Owner);
  if (Type.Format == StampFormat::Text) {
    AddRow(text, 0);
  } else {
    AddRow(platform::ToLower(text), Owner->AddString(Type.Type, text));
  }
  pause.Commit();
  Choices.reset();
  return true;
}

bool CStampList::SetText(const std::string& text, int index) {
  if (index == 0 && Count() == 0) return Add(text);
  if (!Valid || !IsInRange(index) || !IsTextFormat(Type.Format)) return false;
  CAutoCommitPause pause(*Owner);
  if (Type.Format == StampFormat::Text) {
    WriteRow(index, text, 0);
  } else {
    Owner->ReleaseString(props::IndexInt.Get(Rows[index]));
    WriteRow(index, platform::ToLower(text), Owner->AddString(Type.Type, text));
  }
  pause.Commit();
  Choices.reset();
  return true;
}

bool CStampList::SetDate(std::int32_t time, int index, StampId source) {
  const bool isFirst = index == 0 && Count() == 0;
  if (!Valid || !IsDateFormat(Type.Format) || (!isFirst && !IsInRange(index))) return false;
  // A time read from the source's stamp is copied as text: to convert a summer time adds an hour each time.
  const CStamp origin = source != StampId::None ? Asset.GetStamps(source).Get(0) : CStamp();
  const bool isAsRead = origin.IsValid() && origin.GetDate() == time;
  const std::string text =
      isAsRead ? std::string(props::SortedString.Get(origin.GetRow())) : TextFromDate(time);
  CAutoCommitPause pause(*Owner);
  if (isFirst) {
    AddRow(text, NumberOf(source));
  } else {
    WriteRow(index, text, NumberOf(source));
  }
  if (index == 0 && Type.Type == NumberOf(StampId::Date)) Asset.SetCachedDate(time);
  if (!isFirst && !isAsRead && source != StampId::None) {
    Asset.GetStamps(source).SetDate(time, 0, StampId::None);
  }
  pause.Commit();
  return true;
}

bool CStampList::Remove(int index) {
  if (!Valid || !IsInRange(index)) return false;
  CAutoCommitPause pause(*Owner);
  if (Type.Format == StampFormat::SharedText) Owner->ReleaseString(props::IndexInt.Get(Rows[index]));
  Rows.RemoveAt(index);
  if (Type.Type == NumberOf(StampId::Rating)) Asset.SetCachedRating(0);
  pause.Commit();
  Choices.reset();
  return true;
}

const std::vector<std::string>& CStampList::GetChoices() {
  if (!Choices) {
    Choices.emplace();
    if (Valid && Type.Format == StampFormat::SharedText) Owner->ListStrings(Type.Type, *Choices, true);
  }
  return *Choices;
}
