#pragma once

#include <QPoint>
#include <QRect>

// In pixels of the layout.
inline constexpr int kStripHeight = 128;
inline constexpr int kThumbnailWidth = 140;
inline constexpr int kThumbnailHeight = 105;

inline constexpr int kMarkCount = 2;  // of a cell: to print or upload, to email

/// The measures of the film in device pixels of a screen. Every cell has the same whole number of them, so
/// all cells look alike wherever they stand. The rectangles of a cell are told from `left`, the left edge of
/// its frame; its separators stand outside, and each is the neighbour's too.
struct StripMetrics {
  explicit StripMetrics(double pixelRatio = 1.0);

  /// A length of the layout.
  int Scaled(double length) const;

  /// What can be seen of the cell: picture area and band.
  QRect FrameAt(int left) const { return {left, FrameTop, FrameWidth, FrameBottom - FrameTop}; }
  QRect PictureAreaAt(int left) const { return {left, FrameTop, FrameWidth, BandTop - FrameTop}; }
  QRect ThumbnailBoxAt(int left) const;
  QRect BandLabelAt(int left) const;
  QRect MarksAt(int left) const;
  QPoint MarkCornerAt(int left, int mark) const;
  /// Where the pointer is on a mark.
  QRect MarkTargetAt(int left, int mark) const;

  friend bool operator==(const StripMetrics&, const StripMetrics&) = default;

  double PixelRatio;
  int FrameWidth;
  int SeparatorWidth;
  int Pitch;  // from one cell's start to the next
  int Height;
  int FrameTop;
  int FrameBottom;
  int BandTop;
};
