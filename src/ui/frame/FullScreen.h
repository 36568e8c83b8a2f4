#pragma once

#include <QPoint>
#include <QTimer>
#include <functional>
#include <optional>

#include "ui/kit/WaitCursor.h"

class QWidget;

enum class FullScreenChange { Toggle = -1, Normal = 0, FullScreen = 1 };

/// Asks the desktop to let a window fill the screen, or to end that. The desktop does so a moment later, and
/// until then the toolkit may report the former state. So a state that differs from the request counts as the
/// desktop's own decision only after a pause.
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
  QTimer Settling;  // runs until a while after the last request or report
  bool Wanted = false;
  bool AskedAgain = false;
};

/// The button row and the pointer in full-screen mode: a move of the pointer brings them up, and a while
/// later they vanish.
class CFullScreenTools {
 public:
  /// `window` fills the screen with `photo`, over which the tools vanish sooner; `row` are the buttons.
  CFullScreenTools(QWidget& window, QWidget& photo, QWidget& row);

  /// Begins or ends full-screen mode, with the tools shown. Outside of the mode they are never hidden.
  void SetActive(bool on);

  void Show();
  void Hide();
  bool AreHidden() const { return Hidden; }

  /// The pointer was moved, to that place on the screen. Less than a pixel doesn't count.
  void OnPointerMoved(QPoint place);

  /// Moves that wait in the queue, made during a long operation, don't bring the tools up.
  void DropMouseMoves();

  /// While another window is in front, the pointer shows.
  void OnActivationChanged(bool active);

 private:
  QWidget& Window;
  QWidget& Photo;
  QWidget& Row;
  QTimer HideTimer;
  QTimer DropTimer;
  std::optional<CHiddenPointer> HiddenPointer;
  QPoint LastMousePoint;
  bool Active = false;
  bool Hidden = false;
};
