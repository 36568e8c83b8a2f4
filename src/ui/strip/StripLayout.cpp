#include "ui/strip/StripLayout.h"

#include "ui/kit/DevicePainter.h"

namespace {

constexpr int kFrameWidth = 145;
constexpr int kSeparatorWidth = 6;
constexpr int kFrameTop = 3;
constexpr int kFrameBottom = 125;
constexpr int kBandHeight = 12;

constexpr int kBoxLeft = 1;
constexpr int kBoxTop = 4;
constexpr int kMarksLeft = 111;
constexpr int kFirstMarkLeft = 113;
constexpr int kMarkPitch = 16;
constexpr int kMarkTargetShift = -2;  // a mark's target begins left of its picture's place
constexpr int kMarkTargetWidth = 16;

constexpr int kLensBorder = 4;
constexpr int kLensFoot = 27;  // the part that holds the buttons
constexpr int kBarHeight = 27;

int CountVisible(int width, const StripMetrics& metrics) {
  const int room = width - metrics.SeparatorWidth;
  int count = room / metrics.Pitch;
  if (count % 2 == 0) --count;
  if (metrics.Pitch * count < room) count += 2;
  return count;
}

}  // namespace

StripMetrics::StripMetrics(double pixelRatio)
    : PixelRatio(pixelRatio),
      FrameWidth(Scaled(kFrameWidth)),
      SeparatorWidth(Scaled(kSeparatorWidth)),
      Pitch(FrameWidth + SeparatorWidth),
      Height(Scaled(kStripHeight)),
      FrameTop(Scaled(kFrameTop)),
      FrameBottom(Scaled(kFrameBottom)),
      BandTop(Scaled(kFrameBottom - kBandHeight)) {}

int StripMetrics::Scaled(double length) const { return ToDevicePixels(length, PixelRatio); }

QRect StripMetrics::ThumbnailBoxAt(int left) const {
  const int top = Scaled(kBoxTop);
  return {left + Scaled(kBoxLeft), top, Scaled(kThumbnailWidth), Scaled(kBoxTop + kThumbnailHeight) - top};
}

QRect StripMetrics::BandLabelAt(int left) const {
  return {left, BandTop, Scaled(kMarksLeft), FrameBottom - BandTop};
}

QRect StripMetrics::MarksAt(int left) const {
  const int begin = Scaled(kMarksLeft);
  return {left + begin, BandTop, FrameWidth - begin, FrameBottom - BandTop};
}

QPoint StripMetrics::MarkCornerAt(int left, int mark) const {
  return {left + Scaled(kFirstMarkLeft + mark * kMarkPitch), BandTop};
}

QRect StripMetrics::MarkTargetAt(int left, int mark) const {
  const int begin = kFrameWidth + kMarkPitch * (mark - kMarkCount) + kMarkTargetShift;
  const int from = left + Scaled(begin);
  const int to = left + Scaled(begin + kMarkTargetWidth);
  return {from, BandTop, to - from, FrameBottom - BandTop};
}

StripLayout::StripLayout(double pixelRatio, int width)
    : Metrics(pixelRatio), Width(width < 0 ? 0 : width), VisibleCount(CountVisible(Width, Metrics)) {}

int StripLayout::GetBorder() const { return (GetShownWidth() - Width) / 2; }

int StripLayout::GetCellLeft(int cell) const {
  return Metrics.Pitch * cell - GetBorder() + Metrics.SeparatorWidth;
}

StripHit StripLayout::HitTest(QPoint point) const {
  for (int cell = 0; cell < VisibleCount; ++cell) {
    const int left = GetCellLeft(cell);
    if (!Metrics.FrameAt(left).contains(point)) continue;
    StripHit hit{cell, point.y() >= Metrics.BandTop, -1};
    for (int mark = 0; mark < kMarkCount; ++mark) {
      if (Metrics.MarkTargetAt(left, mark).contains(point)) hit.Mark = mark;
    }
    return hit;
  }
  return {};
}

int StripLayout::GetSourceLeft(int offset, int cachedBefore) const {
  return GetBorder() + offset + (cachedBefore - GetLensCell()) * Metrics.Pitch;
}

QRect StripLayout::GetLensPart(LensPart part) const {
  const QRect frame = GetCellFrame(GetLensCell());
  const int border = Metrics.Scaled(kLensBorder);
  const int right = frame.x() + frame.width();
  const int bottom = frame.y() + frame.height();
  switch (part) {
    case LensPart::Top:
      return {frame.x() - border, frame.y() - border, frame.width() + 2 * border, border};
    case LensPart::Left:
      return {frame.x() - border, frame.y(), border, frame.height()};
    case LensPart::Right:
      return {right, frame.y(), border, frame.height()};
    case LensPart::Bottom:
      return {frame.x() - border, bottom, frame.width() + 2 * border, Metrics.Scaled(kLensFoot)};
  }
  return {};
}

QRect StripLayout::GetRightBar() const {
  const QRect foot = GetLensPart(LensPart::Bottom);
  const int left = foot.x() + foot.width();
  return {left, Metrics.Height, Width - left, Metrics.Scaled(kStripHeight + kBarHeight) - Metrics.Height};
}

QRect StripLayout::GetLeftBar() const {
  QRect bar = GetRightBar();
  bar.moveLeft(GetLensPart(LensPart::Bottom).x() - bar.width());
  return bar;
}
