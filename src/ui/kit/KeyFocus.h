#pragma once

#include <QObject>
#include <QRect>

class CDevicePainter;
class QWidget;

/// Knows whether the user moves the focus by keys. From the first such move to the next press of a mouse
/// button a frame shows where the focus is. One object, the application's; window thread.
class CKeyFocus : public QObject {
 public:
  CKeyFocus();
  ~CKeyFocus() override;

  bool IsShown() const { return Shown; }

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void Show(bool on);

  bool Shown = false;
};

/// Whether the widget has the focus and is to show that.
bool ShowsFocus(const QWidget& widget);

/// The frame of what has the focus, along the inside of `plate`: a line of ink, and inside it the colour of
/// what is selected, through which strokes stay visible. `plate` in device pixels, `radius` in those of the
/// layout.
void DrawFocusFrame(CDevicePainter& painter, const QRectF& plate, double radius);

/// The frame of what is selected, or has the focus without being a plate: a band along the inside of `area`,
/// in device pixels, `width` in those of the layout.
void DrawSelectionFrame(CDevicePainter& painter, const QRect& area, double width);
