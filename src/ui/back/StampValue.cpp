#include "ui/back/StampValue.h"

#include <utility>

#include "catalog/Catalog.h"
#include "ui/back/TokenList.h"

namespace {

constexpr std::int32_t kHasList = 2;  // bit of a stamp type's style

}  // namespace

CStampValue::CStampValue(const CAssetRecord& photo, StampId type, ChangeNotice onCommitted)
    : CFieldValue(static_cast<FieldNumber>(type), std::move(onCommitted)), Stamps(photo.GetStamps(type)) {
  Reload();
}

FieldKind CStampValue::GetKind() const {
  switch (Stamps.GetType().Format) {
    case StampFormat::Text:
    case StampFormat::SharedText:
      return FieldKind::Text;
    case StampFormat::Date:
    case StampFormat::DateWithSource:
      return FieldKind::Date;
    default:
      return FieldKind::Number;
  }
}

bool CStampValue::IsMultiple() const {
  return Stamps.GetType().IsKnown() && (Stamps.GetType().Style & kHasList) != 0;
}

bool CStampValue::HasChoices() const {
  return Stamps.GetType().Format == StampFormat::SharedText &&
         CCatalog::GetInstance()->CountStrings(Stamps.GetType().Type) > 0;
}

std::vector<std::string> CStampValue::GetChoices() { return Stamps.GetChoices(); }

std::optional<std::int32_t> CStampValue::GetDateFrom(StampId source) const {
  const CStampList stamps = Stamps.GetAsset().GetStamps(source);
  const std::int32_t time = stamps.Get(0).GetDate();
  return time != 0 ? std::optional(time) : std::nullopt;
}

void CStampValue::SetText(const std::string& text) {
  Text = text;
  TellListener();
}

void CStampValue::SetNumber(std::int32_t value) {
  Number = value;
  TellListener();
}

void CStampValue::SetDate(std::int32_t time) {
  Time = time;
  TellListener();
}

void CStampValue::Reload() {
  const CStamp first = Stamps.Get(0);
  Text = ReadText();
  Number = first.GetNumber();
  Time = 0;
  if (first.IsValid() && first.IsDate()) {
    StampId source = StampId::None;
    Time = first.GetDate(&source);
    Number = static_cast<std::int32_t>(source);
  }
  TellListener();
}

std::string CStampValue::ReadText() const {
  if (GetKind() != FieldKind::Text) return {};
  if (!IsMultiple()) return Stamps.Get(0).GetText();
  CTokenList texts({}, GetListSeparators());
  for (int i = 0; i < Stamps.Count(); ++i) texts.Add(Stamps.Get(i).GetText());
  return texts.GetText();
}

void CStampValue::Commit() {
  if (Stamps.GetAsset().IsValid()) {
    CAutoCommitPause oneChange(*CCatalog::GetInstance());
    Write();
    oneChange.Commit();
  }
  Reload();
  CFieldValue::Commit();
}

void CStampValue::Write() {
  switch (GetKind()) {
    case FieldKind::Text:
      if (IsMultiple()) {
        WriteTokens(CTokenList(Text, GetListSeparators()));
      } else if (Text.empty()) {
        Stamps.Remove(0);
      } else {
        Stamps.SetText(Text, 0);
      }
      break;
    case FieldKind::Number:
      if (Number == 0) {
        Stamps.Remove(0);
      } else {
        Stamps.SetNumber(Number, 0);
      }
      break;
    case FieldKind::Date:
      Stamps.SetDate(Time, 0, static_cast<StampId>(Number));
      break;
  }
}

void CStampValue::WriteTokens(const CTokenList& tokens) {
  int index = 0;
  for (const std::string& token : tokens.GetTokens()) {
    if (index >= Stamps.Count()) {
      Stamps.Add(token);
    } else if (Stamps.Get(index).GetText() != token) {
      Stamps.SetText(token, index);
    }
    ++index;
  }
  while (Stamps.Count() > index) Stamps.Remove(index);
}
