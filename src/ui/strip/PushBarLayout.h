#pragma once

#include <QPoint>
#include <QRect>

enum class BarSide { Left, Right };

// How far along a set of photos the strip is, from 0 to 100.

/// At rest on a photo. 0 for a set of one.
double GetRestPercent(int current, int count);

/// During a slide that began at the photo `start` and has come `offset` pixels, negative backwards, over
/// cells of `pitch` pixels.
double GetSlidePercent(int start, int count, int offset, int pitch);

/// A push bar: a rod that reaches from the lens to a round end, its cap, which the user presses to jump. All
/// in device pixels, from the bar window's top left corner.
struct PushBarForm {
  BarSide Side = BarSide::Left;
  double PixelRatio = 1.0;
  int Width = 0;   // of the bar's window
  int Height = 0;  // of the bar's window
  double Percent = 0.0;

  QRect GetBody() const;  // may be empty
  QRect GetCap() const;

  /// The index of the photo that a press there jumps to, -1 for none.
  int FindTarget(QPoint point, int current, int count) const;

 private:
  int GetLength() const;
};
