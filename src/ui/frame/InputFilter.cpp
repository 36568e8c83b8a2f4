#include "ui/frame/InputFilter.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QWindow>

#include "ui/frame/CommandTable.h"
#include "ui/frame/MainFrame.h"
#include "ui/kit/InputEvents.h"

CInputFilter::CInputFilter(CMainFrame& frame) : Frame(frame) {
  QCoreApplication::instance()->installEventFilter(this);
}

CInputFilter::~CInputFilter() { QCoreApplication::instance()->removeEventFilter(this); }

bool CInputFilter::eventFilter(QObject* watched, QEvent* event) {
  if (Blocked && IsInput(event->type()) && IsOfFrame(watched)) return true;
  switch (event->type()) {
    case QEvent::MouseMove:
      // The window of the system gets every move, its widgets only those that they ask for.
      if (watched == Frame.windowHandle()) {
        Frame.GetFullScreenTools().OnPointerMoved(
            static_cast<QMouseEvent*>(event)->globalPosition().toPoint());
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

bool CInputFilter::RunAccelerator(const QKeyEvent& event) {
  const Command* command = FindAccelerator(ReadKeyChord(event));
  if (command == nullptr) return false;
  Frame.OnKey(*command, event.isAutoRepeat());
  return true;
}
