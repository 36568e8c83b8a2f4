#include "ui/frame/LeastSize.h"

#include <QEvent>
#include <QGuiApplication>
#include <QScreen>
#include <QWidget>
#include <QWindow>

namespace {

// Until the desktop has told the frame of the window, one that is as wide as those of usual desktops.
constexpr QMargins kUnknownFrame(4, 40, 4, 4);

/// Of a window on the screen. Without a frame of its own it has the desktop's title bar or none at all.
QMargins GetFrame(const QWidget& window) {
  const QWindow* native = window.windowHandle();
  return native != nullptr && native->isExposed() ? native->frameMargins() : kUnknownFrame;
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
