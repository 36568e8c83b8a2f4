#pragma once

#include <chrono>

/// One slide of the strip, as a function of time: so many cells in one direction, at a steady speed, ended
/// exactly on its cell.
class CSlide {
 public:
  using TimePoint = std::chrono::steady_clock::time_point;

  /// From the photo at index `start` by `delta`, which isn't 0. `pitch` is the width of a cell, `speed` the
  /// way in a second, both in device pixels.
  CSlide(int start, int delta, int pitch, double speed, TimePoint begin)
      : Start(start), Delta(delta), Pitch(pitch), Speed(speed), Begin(begin) {}

  int GetStart() const { return Start; }
  int GetDelta() const { return Delta; }
  int GetTarget() const { return Start + Delta; }

  /// How far the strip has come, in device pixels; negative for a slide backwards.
  int GetOffset(TimePoint now) const;
  TimePoint GetEnd() const;
  /// The photo nearest behind the way that has been made.
  int GetIndexAt(int offset) const { return Start + offset / Pitch; }

 private:
  int GetDistance() const { return Pitch * (Delta < 0 ? -Delta : Delta); }

  int Start;
  int Delta;
  int Pitch;
  double Speed;
  TimePoint Begin;
};
