#pragma once

#include <QImage>
#include <QPixmap>
#include <QWidget>
#include <array>
#include <atomic>
#include <cstddef>
#include <string>
#include <vector>

#include "ui/controls/PaintedButton.h"
#include "ui/kit/Commands.h"
#include "ui/kit/PaintedGroup.h"
#include "ui/kit/ToldBar.h"
#include "ui/search/SearchProgressLayout.h"

/// The window that tells how a search goes: a bar with a text, the photos found last in five small cells,
/// a button to stop. Esc stops too, and any other key takes that back. In its large form, shown at
/// start, it carries the product's name and version.
///
/// Window thread; IsStopRequested may be asked by any.
class CSearchProgressWindow : public QWidget, public CPaintedGroup, private CCommandTarget {
 public:
  explicit CSearchProgressWindow(bool showSplash, QWidget* parent = nullptr);

  /// Shows the window in the middle of its parent, or of the screen, with the focus. Does nothing when it
  /// shows already.
  void ShowCentered();

  void SetTotal(int total);

  /// The photo at `index` is done. Its picture, unless null, replaces that of the cell whose turn it is.
  void SetCurrent(int index, const QImage& picture);

  void RequestStop() { StopRequested = true; }
  /// The program is to end: a stop that no key takes back.
  void End() { Ending = true; }
  bool IsStopRequested() const { return StopRequested || Ending; }

  QAccessible::Role GetGroupRole() const override { return QAccessible::Dialog; }
  std::vector<GroupPart> ListParts() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void closeEvent(QCloseEvent* event) override;

 private:
  void OnCommand(CommandId id) override;
  QString GetBarText() const;
  void PaintProductLines(QPainter& painter) const;
  void PaintBar(QPainter& painter) const;
  void PaintCells(QPainter& painter) const;

  const bool ShowSplash;
  int Total = -1;    // photos that need work, once known
  int Current = -1;  // position of the last one done
  std::size_t NextSlot = 0;
  std::array<QPixmap, kProgressCells> Pictures;
  std::atomic<bool> StopRequested = false;
  std::atomic<bool> Ending = false;
  std::array<std::string, kProductLines> Lines;
  CToldBar ToldBar;
  CPaintedButton StopButton;
};
