#include "ui/kit/DropListLayout.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr int kNarrowestText = 50;
constexpr int kBesideText = 24;  // to the left and the right of the widest text
constexpr int kNarrowerThanControl = 4;
constexpr int kWidest = 400;  // longer texts are shortened

}  // namespace

int DropListLayout::FindRow(QPoint point) const {
  if (point.x() < kFrame || point.x() >= Width - kFrame || point.y() < kFrame) return -1;
  const int row = (point.y() - kFrame) / RowHeight;
  return row < RowCount ? row : -1;
}

int GetDropListWidth(double widestText, int controlWidth) {
  const int forText = std::max(static_cast<int>(std::ceil(widestText)), kNarrowestText) + kBesideText;
  const int rows = std::max(std::min(forText, kWidest), controlWidth - kNarrowerThanControl);
  return rows + 2 * DropListLayout::kFrame;
}

QRect PlaceDropList(const QRect& control, QSize list, const QRect& screen) {
  QRect place(QPoint(control.left(), control.top() + control.height()), list);
  const int below = screen.bottom() + 1 - place.top();
  const int above = control.top() - screen.top();
  if (list.height() > below && above > below) place.moveTop(control.top() - list.height());
  place.moveTop(std::max(std::min(place.top(), screen.bottom() + 1 - list.height()), screen.top()));
  place.moveLeft(std::max(std::min(place.left(), screen.right() + 1 - list.width()), screen.left()));
  return place;
}

int StepRow(int row, int step, int rowCount) {
  if (rowCount == 0) return -1;
  if (row < 0 && step < 0) row = 0;
  return ((row + step) % rowCount + rowCount) % rowCount;
}
