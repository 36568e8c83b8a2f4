#include "ui/strip/PushBarLayout.h"

#include <algorithm>
#include <cmath>

#include "ui/kit/DevicePainter.h"

namespace {

constexpr int kCap = 12;
constexpr int kRodHeight = 7;
constexpr int kReach = 6;      // how far above and below the pointer still holds it
constexpr int kEndReach = 15;  // and beyond the cap

}  // namespace

double GetRestPercent(int current, int count) { return count > 1 ? current * 100.0 / (count - 1) : 0.0; }

double GetSlidePercent(int start, int count, int offset, int pitch) {
  if (count < 2) return 0.0;
  const double whole = static_cast<double>(count) * pitch;
  return (offset + static_cast<double>(start) / (count - 1) * whole) * 100.0 / whole;
}

int PushBarForm::GetLength() const {
  const int longest = std::max(0, Width - ToDevicePixels(kCap, PixelRatio));
  return static_cast<int>(longest * std::clamp(Percent, 0.0, 100.0) * 0.01);
}

QRect PushBarForm::GetBody() const {
  const int height = ToDevicePixels(kRodHeight, PixelRatio);
  const int top = (Height - height) / 2;
  const int length = GetLength();
  if (Side == BarSide::Left) return {Width - length, top, length, height};
  return {0, top, std::max(0, Width - ToDevicePixels(kCap, PixelRatio) - length), height};
}

QRect PushBarForm::GetCap() const {
  const QRect body = GetBody();
  const int width = ToDevicePixels(kCap, PixelRatio);
  return {Side == BarSide::Left ? body.x() - width : body.x() + body.width(), body.y(), width, body.height()};
}

int PushBarForm::FindTarget(QPoint point, int current, int count) const {
  const bool left = Side == BarSide::Left;
  const int reach = ToDevicePixels(kReach, PixelRatio);
  const int endReach = ToDevicePixels(kEndReach, PixelRatio);

  const QRect cap = GetCap();
  const QRect square(cap.x(), (Height - cap.width()) / 2, cap.width(), cap.width());
  if (square.adjusted(left ? -endReach : 0, -reach, left ? 0 : endReach, reach).contains(point)) {
    return left ? 0 : count - 1;
  }

  const QRect body = GetBody();
  if (body.isEmpty() || !body.adjusted(0, -reach, 0, reach).contains(point)) return -1;
  const double start = left ? 0 : current + 1;
  const double end = left ? current : count;
  const double done = point.x() - body.x();
  const double rest = body.width() - done;
  return std::min(static_cast<int>(std::lround((rest * start + done * end) / body.width())), count - 1);
}
