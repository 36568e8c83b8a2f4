#include "ui/kit/OutsideClicks.h"

#include <QApplication>
#include <QMouseEvent>
#include <QWidget>
#include <QWindow>
#include <memory>

namespace {

void Post(QWidget& window, QEvent::Type type, QPointF place, Qt::MouseButton button, Qt::MouseButtons buttons,
          Qt::KeyboardModifiers modifiers) {
  const QPointF inWindow = window.mapFromGlobal(place);
  auto event = std::make_unique<QMouseEvent>(type, inWindow, inWindow, place, button, buttons, modifiers);
  QCoreApplication::postEvent(window.windowHandle(), event.release());
}

class COutsideClicks final : public QObject {
 public:
  COutsideClicks(QWidget& popup, QWidget& opener) : QObject(&popup), Popup(popup), Opener(opener) {}

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override {
    const bool isPress =
        event->type() == QEvent::MouseButtonPress || event->type() == QEvent::MouseButtonDblClick;
    if (isPress) PassOn(*static_cast<QMouseEvent*>(event));
    return QObject::eventFilter(watched, event);
  }

 private:
  void PassOn(const QMouseEvent& press) const {
    const QPointF place = press.globalPosition();
    const auto isOn = [place](const QWidget& widget) {
      return widget.rect().contains(widget.mapFromGlobal(place).toPoint());
    };
    QWidget* const window = Opener.window();
    if (isOn(Popup) || isOn(Opener) || !isOn(*window)) return;
    // The popup closes first.
    const auto passOn = [window, place, button = press.button(), modifiers = press.modifiers()] {
      if (QApplication::activePopupWidget() != nullptr || window->windowHandle() == nullptr) return;
      Post(*window, QEvent::MouseButtonPress, place, button, button, modifiers);
      if ((QGuiApplication::mouseButtons() & button) != 0) return;
      // It was let go meanwhile.
      Post(*window, QEvent::MouseButtonRelease, place, button, Qt::NoButton, modifiers);
    };
    QMetaObject::invokeMethod(window, passOn, Qt::QueuedConnection);
  }

  QWidget& Popup;
  QWidget& Opener;
};

}  // namespace

void PassOnOutsideClicks(QWidget& popup, QWidget& opener) {
  popup.setAttribute(Qt::WA_NoMouseReplay);  // which only some desktops do
  popup.installEventFilter(std::make_unique<COutsideClicks>(popup, opener).release());  // the popup's child
}
