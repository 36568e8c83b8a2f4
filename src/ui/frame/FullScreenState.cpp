#include "ui/frame/FullScreenState.h"

#include <QWidget>
#include <utility>

namespace {

constexpr int kSettleTime = 300;  // milliseconds

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
  // The toolkit doesn't pass on a request for what it wrongly takes for the state.
  if (!std::exchange(AskedAgain, true)) return Ask();
  if (!Window.isFullScreen()) End();
}

void CFullScreenState::End() {
  if (std::exchange(Wanted, false)) OnEnded();
}
