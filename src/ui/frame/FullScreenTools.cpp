#include "ui/frame/FullScreenTools.h"

#include <QCursor>
#include <QWidget>

namespace {

constexpr int kHideDelayOverPhoto = 3000;  // milliseconds
constexpr int kHideDelayElsewhere = 7000;

}  // namespace

CFullScreenTools::CFullScreenTools(QWidget& window, QWidget& photo, QWidget& row)
    : Window(window), Photo(photo), Row(row), LastMousePoint(QCursor::pos()) {
  HideTimer.setSingleShot(true);
  QObject::connect(&HideTimer, &QTimer::timeout, &HideTimer, [this] { Hide(); });
  // A timer without a delay comes after all events of the windowing system that are queued.
  DropTimer.setSingleShot(true);
  DropTimer.setInterval(0);
}

void CFullScreenTools::SetActive(bool on) {
  Active = on;
  HideTimer.stop();
  HiddenPointer.reset();
  Hidden = false;
  if (on) Show();
}

void CFullScreenTools::Show() {
  if (!Active) return;
  const bool overPhoto = Window.childAt(Window.mapFromGlobal(LastMousePoint)) == &Photo;
  HideTimer.start(overPhoto ? kHideDelayOverPhoto : kHideDelayElsewhere);
  if (!Hidden) return;
  Row.show();
  HiddenPointer.reset();
  Hidden = false;
}

void CFullScreenTools::Hide() {
  if (!Active || Hidden) return;
  HideTimer.stop();
  Row.hide();
  if (Window.isActiveWindow()) HiddenPointer.emplace();
  Hidden = true;
}

void CFullScreenTools::OnPointerMoved(QPoint place) {
  const bool moved = place != LastMousePoint;
  LastMousePoint = place;
  if (moved && !DropTimer.isActive()) Show();
}

void CFullScreenTools::DropMouseMoves() {
  if (Active) DropTimer.start();
}

void CFullScreenTools::OnActivationChanged(bool active) {
  if (!Hidden) return;
  if (active) {
    HiddenPointer.emplace();
  } else {
    HiddenPointer.reset();
  }
}
