#include "ui/back/StoreValue.h"

#include <QCoreApplication>
#include <QMetaObject>
#include <memory>
#include <string>

#include "base/Exceptions.h"
#include "base/Messages.h"
#include "ui/back/FieldValue.h"

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
