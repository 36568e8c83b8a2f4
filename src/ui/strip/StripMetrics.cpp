#include "ui/strip/StripMetrics.h"

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
