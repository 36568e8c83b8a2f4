#include "ui/strip/FilmstripLayout.h"

#include <algorithm>

int StripStart(int stripWidth, int count, int current) {
  const int length = count * kCellPitch;
  if (length <= stripWidth) return (stripWidth - length) / 2;
  const int centred = (stripWidth - kCellPitch) / 2 - current * kCellPitch;
  return std::clamp(centred, stripWidth - length, 0);
}

CellRange VisibleCells(int stripWidth, int stripStart, int count) {
  const int first = stripStart >= 0 ? 0 : -stripStart / kCellPitch;
  const int end = (stripWidth - stripStart + kCellPitch - 1) / kCellPitch;
  return {std::min(first, count), std::clamp(end, 0, count)};
}

int CellAt(int x, int stripStart, int count) {
  if (x < stripStart) return -1;
  const int cell = (x - stripStart) / kCellPitch;
  return cell < count ? cell : -1;
}

int CellsPerPage(int stripWidth) { return std::max(1, stripWidth / kCellPitch); }

QRect CellRect(int cell, int stripStart) {
  return {stripStart + cell * kCellPitch, 0, kCellPitch, kStripHeight};
}

QRect ThumbnailBox(const QRect& cell) {
  return {cell.x() + (cell.width() - kThumbnailWidth) / 2, cell.y() + (cell.height() - kThumbnailHeight) / 2,
          kThumbnailWidth, kThumbnailHeight};
}
