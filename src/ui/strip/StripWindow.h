#pragma once

#include <QWidget>

#include "ui/strip/Filmstrip.h"

/// What stands below the strip: the push bars and the foot of the lens.
inline constexpr int kBelowStrip = 28;
inline constexpr int kStripWindowHeight = kStripHeight + kBelowStrip;

/// The band along the bottom of the main window: the strip, the lens over it and the push bars below it.
/// While the set is empty it says so instead. kStripWindowHeight pixels of the layout high.
class CStripWindow : public QWidget, public CPaintedGroup {
 public:
  /// The host outlives it.
  CStripWindow(CFilmstripHost& host, QWidget* parent);

  CFilmstrip& GetStrip() { return Strip; }

  /// The main window, whose keys move the strip, has got or lost the focus, which a frame in the strip shows.
  void UpdateFocus();

  std::vector<GroupPart> ListParts() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

 private:
  CFilmstrip Strip;
};
