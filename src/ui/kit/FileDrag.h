#pragma once

#include <QPoint>
#include <optional>
#include <string>

class CImage;
class QMouseEvent;
class QWidget;

/// Lets the user drag a photo's file out of a widget into another program, which gets a copy. The widget
/// tells it of presses and moves of the pointer. Window thread.
class CFileDrag {
 public:
  explicit CFileDrag(QWidget& source) : Source(source) {}

  /// The left button went down on something that can be dragged, or on something else.
  void Press(QPoint place) { Pressed = place; }
  void Forget() { Pressed.reset(); }

  /// Whether this move makes a drag of the press. It does so once, and not while a job runs.
  bool BeginsWith(const QMouseEvent& move);

  /// Drags until the button is let go, while events are handled. What happens to the file meanwhile does no
  /// harm; the widget stays until then. `picture` is what shows under the pointer; null for none.
  void Run(const std::string& path, const CImage* picture) const;

  /// Whether any photo is being dragged.
  static bool IsRunning();

 private:
  QWidget& Source;
  std::optional<QPoint> Pressed;
};
