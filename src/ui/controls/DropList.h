#pragma once

#include <QPixmap>
#include <QPoint>
#include <QRect>
#include <QSize>
#include <QWidget>
#include <functional>
#include <string>
#include <vector>

#include "ui/controls/DropText.h"
#include "ui/kit/PaintedItems.h"

class CDevicePainter;
class QHelpEvent;

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

/// The list that a drop control opens: rows of text, yellow under the pointer. It takes the mouse and the
/// keyboard while it shows, without taking the focus from the field that has it: a click on a row or Enter
/// picks, the arrow keys and the first letters of the rows move, Esc and a click elsewhere close it. That
/// click also does what it does there; on the control it doesn't open the list again.
class CDropList : public QWidget, public CPaintedItems {
 public:
  struct Row {
    std::string Text;
    QFont Font;
    bool LineBelow;  // plain, else dots
  };

  /// A window of its own that belongs to `control` and is placed by it.
  CDropList(QWidget& control, const DropImages& images, bool shortensPaths);

  /// Called once for each opening, when the list is closed: the row that was picked, or -1.
  std::function<void(int row)> OnClosed;

  /// Shows the list. `current` is the row that the arrow keys start from, or -1. With `byKey` a row is yellow
  /// at once.
  void Open(std::vector<Row> rows, int current, int rowHeight, bool byKey);

  const DropListLayout& GetLayout() const { return Layout; }
  /// The yellow row, or -1.
  int GetHotRow() const { return HotRow; }

  // The rows, for assistive tools. Those of another opening are other items.
  int CountItems() const override { return static_cast<int>(Rows.size()); }
  int GetItemKey(int row) const override { return FirstKey + row; }
  int FindItem(int key) const override {
    return key >= FirstKey && key < FirstKey + CountItems() ? key - FirstKey : -1;
  }
  PaintedItem DescribeItem(int row) const override;
  QRect PlaceItem(int row) const override { return Layout.GetRow(row); }
  int GetCurrentItem() const override { return HotRow >= 0 ? HotRow : Current; }
  bool IsItemSelected(int row) const override { return row == Current; }
  bool HasKeys() const override { return isVisible(); }
  void ActivateItem(int row) override { Pick(row); }

 protected:
  bool event(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void leaveEvent(QEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void hideEvent(QHideEvent* event) override;

 private:
  void ShowWholeText(QHelpEvent& event);
  double MeasureWidest() const;
  void Place();
  DropTextStyle GetStyle(const Row& row, bool hot) const;
  void SetHotRow(int row);
  void MoveHotRow(int step);
  /// To the next row that begins with that letter, round and round.
  void FindHotRow(const QString& letter);
  QString GetText(int row) const;
  void Pick(int row);
  void PaintRow(CDevicePainter& painter, int index) const;

  QWidget& Control;
  const DropImages Images;
  const bool ShortensPaths;
  std::vector<Row> Rows;
  DropListLayout Layout;
  QPixmap Backdrop;  // what lies behind, with the list's shadow on it
  int Current = -1;
  int HotRow = -1;
  int FirstKey = 0;  // of this opening
  bool Opened = false;
};
