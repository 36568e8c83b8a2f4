#include "ui/kit/InputBlock.h"

#include <QApplication>
#include <QMessageBox>
#include <QWidget>

namespace {

bool IsOpen(const QWidget& window) {
  const QString name = window.objectName();
  return name == window_names::kSearchProgress || name == window_names::kUploadProgress ||
         name == window_names::kJobProgress || name == window_names::kLogin ||
         qobject_cast<const QMessageBox*>(&window) != nullptr;
}

/// The one that takes the keys; null if none shows.
QWidget* FindOpenWindow() {
  QWidget* open = QApplication::activeModalWidget();
  for (QWidget* window : QApplication::topLevelWidgets()) {
    if (open == nullptr && window->isVisible() && IsOpen(*window)) open = window;
  }
  return open;
}

}  // namespace

CInputBlock::CInputBlock(ArrowPlace arrow) : Arrow(arrow) {
  qApp->installEventFilter(this);
  QApplication::setOverrideCursor(Qt::WaitCursor);
}

CInputBlock::~CInputBlock() {
  QApplication::restoreOverrideCursor();
  qApp->removeEventFilter(this);
}

bool CInputBlock::eventFilter(QObject* receiver, QEvent* event) {
  if (!receiver->isWidgetType()) return false;
  const QWidget* widget = static_cast<const QWidget*>(receiver);
  if (!IsOpen(*widget->window())) {
    // After a click into it the keys go on to the window that takes them.
    if (widget->isWindow() && event->type() == QEvent::WindowActivate) {
      if (QWidget* open = FindOpenWindow()) open->activateWindow();
    }
    return IsInput(event->type());
  }
  if (widget->isWindow()) ShowCursorFor(event->type());
  return false;
}

void CInputBlock::ShowCursorFor(QEvent::Type type) const {
  const bool isOver = Arrow == ArrowPlace::OverOpenWindows;
  if (type == (isOver ? QEvent::Enter : QEvent::Show)) QApplication::changeOverrideCursor(Qt::ArrowCursor);
  if (type != (isOver ? QEvent::Leave : QEvent::Hide)) return;
  const bool isArrow = !isOver && FindOpenWindow() != nullptr;
  QApplication::changeOverrideCursor(isArrow ? Qt::ArrowCursor : Qt::WaitCursor);
}

bool IsInput(QEvent::Type type) {
  switch (type) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseMove:
    case QEvent::Wheel:
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
    case QEvent::Shortcut:
    case QEvent::ShortcutOverride:
    case QEvent::ContextMenu:
    case QEvent::InputMethod:
    case QEvent::TouchBegin:
    case QEvent::TouchUpdate:
    case QEvent::TouchEnd:
    case QEvent::TabletPress:
    case QEvent::TabletMove:
    case QEvent::TabletRelease:
    case QEvent::DragEnter:
    case QEvent::DragMove:
    case QEvent::Drop:
      return true;
    default:
      return false;
  }
}
