#include "ui/kit/WaitCursor.h"

#include <QCursor>
#include <QGuiApplication>

namespace {

bool IsPointerHidden() {
  const QCursor* cursor = QGuiApplication::overrideCursor();
  return cursor != nullptr && cursor->shape() == Qt::BlankCursor;
}

}  // namespace

CWaitCursor::CWaitCursor() : Shown(!IsPointerHidden()) {
  if (Shown) QGuiApplication::setOverrideCursor(Qt::WaitCursor);
}

CWaitCursor::~CWaitCursor() {
  if (Shown) QGuiApplication::restoreOverrideCursor();
}

CHiddenPointer::CHiddenPointer() { QGuiApplication::setOverrideCursor(Qt::BlankCursor); }

CHiddenPointer::~CHiddenPointer() { QGuiApplication::restoreOverrideCursor(); }
