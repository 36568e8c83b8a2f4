#include "ui/back/FieldValue.h"

#include <utility>

CFieldValue::CFieldValue(FieldNumber field, ChangeNotice onCommitted)
    : Field(field), OnCommitted(std::move(onCommitted)) {}

void CFieldValue::Commit() {
  if (OnCommitted) OnCommitted(Field);
}

bool CFieldValue::ValidateText(std::string&) { return true; }
bool CFieldValue::ValidateNumber(std::int32_t) { return true; }
bool CFieldValue::ValidateDate(std::int32_t) { return true; }

void CFieldValue::Clear() {
  switch (GetKind()) {
    case FieldKind::Text:
      SetText({});
      break;
    case FieldKind::Number:
      SetNumber(0);
      break;
    case FieldKind::Date:
      SetDate(0);
      break;
  }
}

std::vector<std::string> CFieldValue::GetChoices() { return {}; }
std::optional<std::int32_t> CFieldValue::GetDateFrom(StampId) const { return std::nullopt; }

void CFieldValue::SetText(const std::string&) { TellListener(); }
void CFieldValue::SetNumber(std::int32_t) { TellListener(); }
void CFieldValue::SetDate(std::int32_t) { TellListener(); }

void CFieldValue::TellListener() {
  if (Listener != nullptr) Listener->OnValueChanged();
}
