#pragma once

#include <QPoint>
#include <QTimer>
#include <optional>

#include "ui/kit/WaitCursor.h"

class QWidget;

/// The button row and the pointer in full-screen mode: a move of the pointer brings them up, and a while
/// later they vanish.
class CFullScreenTools {
 public:
  /// `window` fills the screen with `photo`, over which the tools vanish sooner; `row` are the buttons.
  CFullScreenTools(QWidget& window, QWidget& photo, QWidget& row);

  /// Begins or ends full-screen mode: the tools show; outside of the mode nothing is ever hidden.
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
