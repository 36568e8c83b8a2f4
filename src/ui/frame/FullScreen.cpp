#include "ui/frame/FullScreen.h"

#include <QCursor>
#include <QWidget>
#include <utility>

namespace {

// In milliseconds.
constexpr int kSettleTime = 300;
constexpr int kHideDelayOverPhoto = 3000;
constexpr int kHideDelayElsewhere = 7000;

}  // namespace

CFullScreenState::CFullScreenState(QWidget& window, std::function<void()> onEnded)
    : Window(window), OnEnded(std::move(onEnded)) {
  Settling.setSingleShot(true);
  Settling.setInterval(kSettleTime);
  QObject::connect(&Settling, &QTimer::timeout, &Settling, [this] { Settle(); });
}

void CFullScreenState::Request(bool on) {
  Wanted = on;
  AskedAgain = false;
  Ask();
}

void CFullScreenState::Ask() {
  Settling.start();
  Window.setWindowState(Wanted ? Window.windowState() | Qt::WindowFullScreen
                               : Window.windowState() & ~Qt::WindowFullScreen);
}

void CFullScreenState::OnStateChanged() {
  if (Settling.isActive()) return Settling.start();
  if (!Window.isFullScreen()) End();
}

void CFullScreenState::Settle() {
  if (Window.isFullScreen() == Wanted) return;
  // Qt ignores a request for the state that it believes the window is in already, even if it is wrong.
  if (!std::exchange(AskedAgain, true)) return Ask();
  if (!Window.isFullScreen()) End();
}

void CFullScreenState::End() {
  if (std::exchange(Wanted, false)) OnEnded();
}

CFullScreenTools::CFullScreenTools(QWidget& window, QWidget& photo, QWidget& row)
    : Window(window), Photo(photo), Row(row), LastMousePoint(QCursor::pos()) {
  HideTimer.setSingleShot(true);
  QObject::connect(&HideTimer, &QTimer::timeout, &HideTimer, [this] { Hide(); });
  // A timer without a delay fires after all queued events of the windowing system.
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
