#include "ui/back/FieldValue.h"

#include <QCoreApplication>
#include <QMetaObject>
#include <utility>

#include "base/Exceptions.h"
#include "base/Messages.h"

CFieldValue::CFieldValue(StampId fact, ChangeNotice onCommitted)
    : Fact(fact), OnCommitted(std::move(onCommitted)) {}

void CFieldValue::Commit() {
  if (OnCommitted) OnCommitted(Fact);
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

void StoreValue(CFieldValue& value) {
  const std::shared_ptr<CFieldValue> keep = value.weak_from_this().lock();
  try {
    value.Commit();
  } catch (const CException& exception) {
    value.Reload();
    // Not from here: this may be the middle of a change of the focus or of the photo.
    const auto tell = [text = exception.GetMessage()] { ShowMessage(text); };
    QMetaObject::invokeMethod(QCoreApplication::instance(), tell, Qt::QueuedConnection);
  }
}
