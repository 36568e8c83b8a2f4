#include "ui/frame/InputFilter.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QWindow>
#include <utility>

#include "ui/back/PhotoBack.h"
#include "ui/frame/CommandTable.h"
#include "ui/frame/MainFrame.h"
#include "ui/kit/InputEvents.h"
#include "ui/strip/Filmstrip.h"

CInputFilter::CInputFilter(CMainFrame& frame) : Frame(frame) {
  QCoreApplication::instance()->installEventFilter(this);
}

CInputFilter::~CInputFilter() { QCoreApplication::instance()->removeEventFilter(this); }

bool CInputFilter::eventFilter(QObject* watched, QEvent* event) {
  // The window of the system gets each key once, before its widgets do.
  const bool isKey = event->type() == QEvent::KeyPress || event->type() == QEvent::KeyRelease;
  if (isKey && watched->isWindowType() &&
      !AdmitKey(static_cast<QWindow&>(*watched), static_cast<QKeyEvent&>(*event))) {
    return true;
  }
  if (Blocked && IsInput(event->type()) && IsOfFrame(watched)) return true;
  switch (event->type()) {
    case QEvent::MouseMove:
      // The window of the system gets every move, its widgets only those that they ask for.
      if (watched == Frame.windowHandle()) {
        Frame.GetFullScreenTools().OnPointerMoved(
            static_cast<QMouseEvent*>(event)->globalPosition().toPoint());
      }
      return false;
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseButtonPress:
      if (!AdmitClick(*watched, *event)) return true;
      if (watched->isWidgetType() && Frame.GetPhotoBack().isAncestorOf(static_cast<QWidget*>(watched))) {
        Frame.GetStrip().AnnounceNow();
      }
      return false;
    case QEvent::KeyPress:
      return watched->isWidgetType() && IsOfFrame(watched) && RunAccelerator(*static_cast<QKeyEvent*>(event));
    default:
      return false;
  }
}

bool CInputFilter::IsOfFrame(const QObject* object) const {
  if (object == Frame.windowHandle()) return true;
  return object->isWidgetType() && static_cast<const QWidget*>(object)->window() == &Frame;
}

bool CInputFilter::AdmitKey(QWindow& window, const QKeyEvent& event) {
  if (event.type() == QEvent::KeyRelease) {
    Keys.OnRelease(event);
    return true;
  }
  QObject* receiver = QApplication::activePopupWidget();
  const Command* command = nullptr;
  if (receiver == nullptr) {
    receiver = window.focusObject();
    if (&window == Frame.windowHandle()) command = FindAccelerator(ReadKeyChord(event));
  }
  return Keys.OnPress(event, receiver, command);
}

bool CInputFilter::AdmitClick(const QObject& watched, const QEvent& event) {
  if (&watched == Frame.windowHandle()) ClickArrives = true;
  if (!watched.isWidgetType() || !std::exchange(ClickArrives, false)) return true;
  if (event.type() == QEvent::MouseButtonPress) ClickedPart = &watched;
  return ClickedPart == &watched;
}

bool CInputFilter::RunAccelerator(const QKeyEvent& event) {
  const Command* command = FindAccelerator(ReadKeyChord(event));
  if (command == nullptr) return false;
  Frame.OnKey(*command, Keys.IsRepeat(event));
  return true;
}
