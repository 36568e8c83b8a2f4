#include "ui/kit/ClickFocus.h"

#include <QApplication>
#include <QFocusEvent>
#include <QWidget>
#include <QWindow>

void KeepFocusOnClick(QWidget& widget) {
  // The search for a widget that takes a click's focus ends at one that stands for the focused one.
  const auto follow = [&widget](QWidget*, QWidget* now) {
    const bool isField = now != nullptr && now != widget.window() && now->window() == widget.window();
    widget.setFocusProxy(isField ? now : nullptr);
  };
  QObject::connect(qApp, &QApplication::focusChanged, &widget, follow);
  follow(nullptr, QApplication::focusWidget());
}

bool IsLostToPopup(const QFocusEvent& event) {
  const QWindow* window = QGuiApplication::focusWindow();
  return event.reason() == Qt::PopupFocusReason || (window != nullptr && window->type() == Qt::Popup);
}
