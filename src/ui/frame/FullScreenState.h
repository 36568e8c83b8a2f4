#pragma once

#include <QTimer>
#include <functional>

class QWidget;

/// Asks the desktop to let a window fill the screen, or to end that. The desktop does so a moment later, and
/// meanwhile the toolkit may read and tell the state of before: only what holds after a pause is the
/// desktop's own wish.
class CFullScreenState {
 public:
  /// `onEnded`: the desktop has ended full screen by itself.
  CFullScreenState(QWidget& window, std::function<void()> onEnded);

  void Request(bool on);

  /// To be called for every change of the window's state.
  void OnStateChanged();

 private:
  void Ask();
  void Settle();
  void End();

  QWidget& Window;
  const std::function<void()> OnEnded;
  QTimer Settling;  // until nothing has been asked or told for a while
  bool Wanted = false;
  bool AskedAgain = false;
};
