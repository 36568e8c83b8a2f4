#include "ui/frame/LeastSize.h"

#include <QEvent>
#include <QGuiApplication>
#include <QScreen>
#include <QWidget>
#include <QWindow>

namespace {

// Where the desktop doesn't tell it: the frame of the window, and a panel.
constexpr QMargins kUntoldFrame(4, 100, 4, 4);

/// What the window's screen has no room for. Wayland tells neither frame nor panels, X11 no frame before the
/// window shows.
QMargins GetFrame(const QWidget& window) {
  const QWindow* native = window.windowHandle();
  const QMargins frame = native != nullptr ? native->frameMargins() : QMargins();
  const bool isTold =
      !frame.isNull() && !QGuiApplication::platformName().startsWith(QLatin1String("wayland"));
  return isTold ? frame : kUntoldFrame;
}

}  // namespace

QSize LimitLeastSize(QSize wanted, QSize available, const QMargins& frame) {
  return wanted.boundedTo(available.shrunkBy(frame)).expandedTo({0, 0});
}

CLeastSize::CLeastSize(QWidget& window) : Window(window) {
  Window.installEventFilter(this);
  const auto watch = [this](QScreen* screen) {
    connect(screen, &QScreen::availableGeometryChanged, this, &CLeastSize::Update);
  };
  for (QScreen* screen : QGuiApplication::screens()) watch(screen);
  connect(qGuiApp, &QGuiApplication::screenAdded, this, watch);
}

void CLeastSize::SetWanted(QSize size) {
  Wanted = size;
  Update();
}

bool CLeastSize::eventFilter(QObject* watched, QEvent* event) {
  switch (event->type()) {
    case QEvent::Resize:
    case QEvent::Move:
    case QEvent::WindowStateChange:
    case QEvent::ScreenChangeInternal:
      Update();
      break;
    default:
      break;
  }
  return QObject::eventFilter(watched, event);
}

void CLeastSize::Update() {
  const QSize least = LimitLeastSize(Wanted, Window.screen()->availableSize(), GetFrame(Window));
  if (least != Window.minimumSize()) Window.setMinimumSize(least);
}
