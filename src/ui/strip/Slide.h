#pragma once

#include <algorithm>
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
  int GetOffset(TimePoint now) const {
    const double seconds = std::chrono::duration<double>(now - Begin).count();
    const int way = static_cast<int>(std::clamp(seconds * Speed, 0.0, static_cast<double>(GetDistance())));
    return Delta < 0 ? -way : way;
  }
  /// Rounded up, so that the whole way has been made by then.
  TimePoint GetEnd() const {
    return Begin +
           std::chrono::ceil<TimePoint::duration>(std::chrono::duration<double>(GetDistance() / Speed));
  }
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
