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

/// What of the strip is at a point.
struct StripHit {
  int Cell = -1;        // its position in the window, -1 for none
  bool InBand = false;  // in the band along the cell's bottom
  int Mark = -1;        // -1 for none

  friend bool operator==(const StripHit&, const StripHit&) = default;
};

enum class LensPart : int { Top, Left, Right, Bottom };

/// Where everything stands in a strip of a given width. Cells are told by their position in the window; the
/// cell in the middle is that under the lens. All in device pixels, from the strip's top left corner; what
/// belongs to the lens and the push bars reaches beyond the strip.
class StripLayout {
 public:
  explicit StripLayout(double pixelRatio = 1.0, int width = 0);

  const StripMetrics& GetMetrics() const { return Metrics; }
  int GetWidth() const { return Width; }
  /// How many cells the window can show: the smallest odd number that covers it.
  int GetVisibleCount() const { return VisibleCount; }
  int GetLensCell() const { return VisibleCount / 2; }

  /// The left edge of a cell's frame.
  int GetCellLeft(int cell) const;
  QRect GetCellFrame(int cell) const { return Metrics.FrameAt(GetCellLeft(cell)); }
  StripHit HitTest(QPoint point) const;

  /// The first column of the cache that the window shows. `offset` is that of a slide; `cachedBefore` the
  /// number of cells before that at rest under the lens.
  int GetSourceLeft(int offset, int cachedBefore) const;
  int GetShownWidth() const { return Metrics.Pitch * VisibleCount + Metrics.SeparatorWidth; }

  QRect GetLensPart(LensPart part) const;
  QRect GetLeftBar() const;
  QRect GetRightBar() const;

  friend bool operator==(const StripLayout&, const StripLayout&) = default;

 private:
  int GetBorder() const;  // what of the visible cells is cut off at the window's left

  StripMetrics Metrics;
  int Width;
  int VisibleCount;
};
