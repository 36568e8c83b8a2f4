#pragma once

#include <QMouseEvent>
#include <vector>

#include "ui/WindowTest.h"
#include "ui/kit/Commands.h"

/// Notes the commands that arrive.
class CNotedCommands : public CCommandTarget {
 public:
  void OnCommand(CommandId id) override {
    Commands.push_back(id);
    if (OnEach) OnEach();
  }

  std::vector<CommandId> Commands;
  std::function<void()> OnEach;
};

/// A mouse event as the window system would send it; whether it was taken.
inline bool SendMouse(QWidget& widget, QEvent::Type type, QPoint at, Qt::MouseButton button,
                      Qt::MouseButtons held) {
  QMouseEvent event(type, at, widget.mapToGlobal(at), button, held, Qt::NoModifier);
  event.ignore();
  QCoreApplication::sendEvent(&widget, &event);
  return event.isAccepted();
}
inline void PressAt(QWidget& widget, QPoint at) {
  SendMouse(widget, QEvent::MouseButtonPress, at, Qt::LeftButton, Qt::LeftButton);
}
inline void MoveHeldTo(QWidget& widget, QPoint at) {
  SendMouse(widget, QEvent::MouseMove, at, Qt::NoButton, Qt::LeftButton);
}
inline void MoveOver(QWidget& widget, QPoint at) {
  SendMouse(widget, QEvent::MouseMove, at, Qt::NoButton, Qt::NoButton);
}
inline void ReleaseAt(QWidget& widget, QPoint at) {
  SendMouse(widget, QEvent::MouseButtonRelease, at, Qt::LeftButton, Qt::NoButton);
}
inline void ClickIn(QWidget& widget) {
  PressAt(widget, widget.rect().center());
  ReleaseAt(widget, widget.rect().center());
}
