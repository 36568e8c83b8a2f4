#pragma once

#include <QPoint>
#include <QRect>
#include <QSize>

/// Where the rows of a drop list stand, in pixels of the layout from its corner: within a frame of one pixel,
/// one below the other.
struct DropListLayout {
  int RowCount = 0;
  int RowHeight = 0;
  int Width = 0;  // with the frame

  static constexpr int kFrame = 1;

  QSize GetSize() const { return {Width, RowCount * RowHeight + 2 * kFrame}; }
  QRect GetRow(int row) const { return {kFrame, kFrame + row * RowHeight, Width - 2 * kFrame, RowHeight}; }
  /// The row at that point, or -1.
  int FindRow(QPoint point) const;
};

/// The list's width, with its frame, for the widest of its texts and the control that it belongs to.
int GetDropListWidth(double widestText, int controlWidth);

/// Where the list opens: under its control, above it if there is no room below, and in any case on the
/// screen. All on one plane.
QRect PlaceDropList(const QRect& control, QSize list, const QRect& screen);

/// The row that a step of the arrow keys leads to, round and round. `row` may be -1, before the first.
int StepRow(int row, int step, int rowCount);
