#pragma once

#include <QRect>

/// Where the cells of the strip stand, in pixels of its client area.

inline constexpr int kStripHeight = 128;
inline constexpr int kCellPitch = 151;  // from one cell's start to the next
inline constexpr int kThumbnailWidth = 140;
inline constexpr int kThumbnailHeight = 105;

/// Where the first cell of a strip of `count` cells begins: a row that fits stands in the middle; a longer
/// one has the current cell in the middle, as far as its ends stay at the window's edges or beyond.
int StripStart(int stripWidth, int count, int current);

/// The cells that can be seen at least in part: First to End - 1.
struct CellRange {
  int First = 0;
  int End = 0;
  bool Contains(int cell) const { return cell >= First && cell < End; }
};
CellRange VisibleCells(int stripWidth, int stripStart, int count);

/// The cell at that distance from the window's left edge, -1 for none.
int CellAt(int x, int stripStart, int count);

/// How many cells fit whole; at least 1.
int CellsPerPage(int stripWidth);

QRect CellRect(int cell, int stripStart);

/// The box in a cell that a thumbnail is centred in.
QRect ThumbnailBox(const QRect& cell);
