#include "ui/kit/ClickFocus.h"

#include <QApplication>
#include <QFocusEvent>
#include <QMouseEvent>
#include <QWidget>
#include <QWindow>
#include <memory>

namespace {

void Send(QWidget& window, QEvent::Type type, QPointF place, Qt::MouseButton button, Qt::MouseButtons buttons,
          Qt::KeyboardModifiers modifiers) {
  const QPointF inWindow = window.mapFromGlobal(place);
  QMouseEvent event(type, inWindow, inWindow, place, button, buttons, modifiers);
  QCoreApplication::sendEvent(window.windowHandle(), &event);
}

/// Whether a click there goes to the window: no other one lies above it, or blocks it.
bool TakesClick(const QWidget& window, QPointF place) {
  if (QApplication::activePopupWidget() != nullptr) return false;
  const QWidget* blocking = QApplication::activeModalWidget();
  if (blocking != nullptr && blocking != &window) return false;
  return QApplication::topLevelAt(place.toPoint()) == &window;
}

class COutsideClicks final : public QObject {
 public:
  COutsideClicks(QWidget& popup, QWidget& opener) : QObject(&popup), Popup(popup), Opener(opener) {}

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override {
    if (event->type() != QEvent::MouseButtonPress && event->type() != QEvent::MouseButtonDblClick) {
      return QObject::eventFilter(watched, event);
    }
    const auto& press = *static_cast<QMouseEvent*>(event);
    if (IsOn(Popup, press)) return false;
    // A menu would close itself, and its window is gone before the release comes to it.
    Popup.hide();
    if (!IsOn(Opener, press)) PassOn(press);
    return true;
  }

 private:
  static bool IsOn(const QWidget& widget, const QMouseEvent& press) {
    return widget.rect().contains(widget.mapFromGlobal(press.globalPosition()).toPoint());
  }

  void PassOn(const QMouseEvent& press) const {
    // Later, for the popup is handling an event.
    QWidget* const window = Opener.window();
    const auto passOn = [window, place = press.globalPosition(), button = press.button(),
                         modifiers = press.modifiers()] {
      if (!TakesClick(*window, place)) return;
      const bool isDown = (QGuiApplication::mouseButtons() & button) != 0;
      // Sent, not posted, for the release may be the next event.
      Send(*window, QEvent::MouseButtonPress, place, button, button, modifiers);
      // The button was released already.
      if (!isDown) Send(*window, QEvent::MouseButtonRelease, place, button, Qt::NoButton, modifiers);
    };
    QMetaObject::invokeMethod(window, passOn, Qt::QueuedConnection);
  }

  QWidget& Popup;
  QWidget& Opener;
};

}  // namespace

void KeepFocusOnClick(QWidget& widget) {
  // When a click looks for a widget to focus, it stops at a proxy of the focused one.
  const auto follow = [&widget](QWidget*, QWidget* now) {
    const bool isField =
        now != nullptr && now != &widget && now != widget.window() && now->window() == widget.window();
    widget.setFocusProxy(isField ? now : nullptr);
  };
  QObject::connect(qApp, &QApplication::focusChanged, &widget, follow);
  follow(nullptr, QApplication::focusWidget());
}

void GiveFocus(QWidget& widget, Qt::FocusReason reason) {
  widget.setFocusProxy(nullptr);
  widget.setFocus(reason);
}

bool IsLostToPopup(const QFocusEvent& event) {
  const QWindow* window = QGuiApplication::focusWindow();
  return event.reason() == Qt::PopupFocusReason || (window != nullptr && window->type() == Qt::Popup);
}

void PassOnOutsideClicks(QWidget& popup, QWidget& opener) {
  popup.setAttribute(Qt::WA_NoMouseReplay);  // which only some desktops do
  popup.installEventFilter(std::make_unique<COutsideClicks>(popup, opener).release());  // the popup's child
}
