#pragma once

#include <QPixmap>
#include <QWidget>
#include <functional>
#include <string>
#include <vector>

#include "ui/kit/DropListLayout.h"
#include "ui/kit/DropText.h"

class CDevicePainter;

/// The list that a drop control opens: rows of text, yellow under the pointer. It takes the mouse and the
/// keyboard while it shows, without taking the focus from the field that has it: a click on a row or Enter
/// picks, the arrow keys move, Esc and a click elsewhere close it. That click also does what it does there;
/// on the control it doesn't open the list again.
class CDropList : public QWidget {
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

  /// Shows the list. `current` is the row that the arrow keys start from, or -1.
  void Open(std::vector<Row> rows, int current, int rowHeight);

  const DropListLayout& GetLayout() const { return Layout; }
  /// The yellow row, or -1.
  int GetHotRow() const { return HotRow; }

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
  double MeasureWidest() const;
  void Place();
  DropTextStyle GetStyle(const Row& row, bool hot) const;
  void SetHotRow(int row);
  void MoveHotRow(int step);
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
  bool Opened = false;
};
