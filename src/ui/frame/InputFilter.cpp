#include "ui/frame/InputFilter.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QWindow>
#include <utility>

#include "ui/frame/CommandTable.h"
#include "ui/kit/InputBlock.h"

CInputFilter::CInputFilter(QWidget& window, QWidget& panel, InputHandlers handlers)
    : Window(window), Panel(panel), Handlers(std::move(handlers)) {
  QCoreApplication::instance()->installEventFilter(this);
}

CInputFilter::~CInputFilter() { QCoreApplication::instance()->removeEventFilter(this); }

bool CInputFilter::eventFilter(QObject* watched, QEvent* event) {
  // The native window gets each key once, before the widgets do.
  const bool isKey = event->type() == QEvent::KeyPress || event->type() == QEvent::KeyRelease;
  if (isKey && watched->isWindowType() &&
      !AdmitKey(static_cast<QWindow&>(*watched), static_cast<QKeyEvent&>(*event))) {
    return true;
  }
  if (Blocked && IsInput(event->type()) && IsOfWindow(watched)) return true;
  switch (event->type()) {
    case QEvent::MouseMove:
      // The native window gets every mouse move; widgets get only those that they track.
      if (watched == Window.windowHandle()) {
        Handlers.OnPointerMoved(static_cast<QMouseEvent*>(event)->globalPosition().toPoint());
      }
      return false;
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseButtonPress:
      if (!AdmitClick(*watched, *event)) return true;
      if (watched->isWidgetType() && Panel.isAncestorOf(static_cast<QWidget*>(watched))) {
        Handlers.OnPanelClicked();
      }
      return false;
    case QEvent::KeyPress:
      return watched->isWidgetType() && IsOfWindow(watched) &&
             RunAccelerator(*static_cast<QKeyEvent*>(event));
    default:
      return false;
  }
}

bool CInputFilter::IsOfWindow(const QObject* object) const {
  if (object == Window.windowHandle()) return true;
  return object->isWidgetType() && static_cast<const QWidget*>(object)->window() == &Window;
}

bool CInputFilter::AdmitKey(QWindow& receiving, const QKeyEvent& event) {
  if (event.type() == QEvent::KeyRelease) {
    Keys.OnRelease(event);
    return true;
  }
  QObject* receiver = QApplication::activePopupWidget();
  const Command* command = nullptr;
  if (receiver == nullptr) {
    receiver = receiving.focusObject();
    if (&receiving == Window.windowHandle()) command = FindAccelerator(ReadKeyChord(event));
  }
  return Keys.OnPress(event, receiver, command);
}

bool CInputFilter::AdmitClick(const QObject& watched, const QEvent& event) {
  if (&watched == Window.windowHandle()) ClickArrives = true;
  if (!watched.isWidgetType() || !std::exchange(ClickArrives, false)) return true;
  if (event.type() == QEvent::MouseButtonPress) ClickedPart = &watched;
  return ClickedPart == &watched;
}

bool CInputFilter::RunAccelerator(const QKeyEvent& event) {
  const Command* command = FindAccelerator(ReadKeyChord(event));
  if (command == nullptr) return false;
  Handlers.OnAccelerator(*command, Keys.IsRepeat(event));
  return true;
}
