#pragma once

#include <QElapsedTimer>
#include <QProgressBar>

/// What assistive tools see of a progress bar that a window paints itself: a child of the window, in the
/// bar's place, that paints nothing. They hear of it once a second, and of the end.
class CToldBar : public QProgressBar {
 public:
  CToldBar(const QString& name, QWidget* parent);

  /// `total` 0 stands for a work of unknown length; `text` is what the bar says.
  void Tell(int done, int total, const QString& text);

 protected:
  void paintEvent(QPaintEvent*) override {}

 private:
  QElapsedTimer SinceTold;
};
