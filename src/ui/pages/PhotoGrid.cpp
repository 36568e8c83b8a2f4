#include "ui/pages/PhotoGrid.h"

#include <algorithm>

namespace {

constexpr int kFirstPitch = 149;  // from one cell to the next, while there is room
constexpr int kLeastCell = 4;
constexpr int kWidestPage = 608;  // of which the whole width is taken by help texts
constexpr int kHelpWidth = 600;
constexpr int kHelpGap = 24;

}  // namespace

QRect PhotoGrid::GetCell(int index) const {
  if (Columns == 0) return {};
  const QPoint corner(index % Columns * (Cell.width() + kGridGap),
                      index / Columns * (Cell.height() + kGridGap));
  return {corner + QPoint(kGridGap, kGridGap), Cell};
}

QRect PhotoGrid::GetFrame(int index) const {
  return GetCell(index).adjusted(-kGridGap, -kGridGap, kGridGap, kGridGap);
}

int PhotoGrid::FindCellAt(QPoint point, int count) const {
  if (Columns == 0 || point.x() < kGridGap || point.y() < kGridGap) return -1;
  const int column = (point.x() - kGridGap) / (Cell.width() + kGridGap);
  const int row = (point.y() - kGridGap) / (Cell.height() + kGridGap);
  const int index = row * Columns + column;
  return column < Columns && index < count && GetCell(index).contains(point) ? index : -1;
}

PhotoGrid FitPhotoGrid(QSize page, int photos) {
  if (page.isEmpty()) return {};
  const int width = page.width() - kGridGap;
  const int height = page.height() - kGridGap;
  PhotoGrid grid;
  for (int columns = std::max(1, width / kFirstPitch);; ++columns) {
    const int cellWidth = width / columns - kGridGap;
    if (cellWidth < kLeastCell && grid.Columns > 0) return grid;
    grid = {columns, {std::max(cellWidth, kLeastCell), std::max(cellWidth, kLeastCell) * 3 / 4}};
    const int rows = height / (grid.Cell.height() + kGridGap);
    if (photos <= columns * rows) return grid;
  }
}

int MoveInGrid(GridMove move, int selected, int columns, int count) {
  switch (move) {
    case GridMove::Left:
      return selected >= 1 ? selected - 1 : selected;
    case GridMove::Right:
      return std::min(selected + 1, count - 1);
    case GridMove::Up:
      return std::max(selected - columns, 0);
    case GridMove::Down:
      return std::min(selected + columns, count - 1);
  }
  return selected;
}

int GetHelpWidth(int pageWidth) { return pageWidth > kWidestPage ? kHelpWidth : pageWidth; }

HelpPlaces PlaceHelp(QSize page, int firstHeight, int secondHeight) {
  const int width = GetHelpWidth(page.width());
  const int gap = secondHeight > 0 ? kHelpGap : 0;
  const int left = (page.width() - width) / 2;
  const int top = (page.height() - firstHeight - gap - secondHeight) / 2;
  return {{left, top, width, firstHeight}, {left, top + firstHeight + gap, width, secondHeight}};
}
