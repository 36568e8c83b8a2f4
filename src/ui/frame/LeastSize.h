#pragma once

#include <QMargins>
#include <QObject>
#include <QSize>

class QWidget;

/// `wanted`, or less where a window of that size and its frame have no room in `available`.
QSize LimitLeastSize(QSize wanted, QSize available, const QMargins& frame);

/// Keeps the least size of a window within what its screen has room for: also when the screen changes, the
/// window goes to another one, or the desktop gives it another frame.
class CLeastSize : public QObject {
 public:
  /// `window` outlives this object.
  explicit CLeastSize(QWidget& window);

  void SetWanted(QSize size);

  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void Update();

  QWidget& Window;
  QSize Wanted;
};
