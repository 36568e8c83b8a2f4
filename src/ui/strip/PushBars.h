#pragma once

#include <QString>
#include <QWidget>
#include <functional>

#include "ui/kit/ButtonTip.h"
#include "ui/strip/PushBarLayout.h"
#include "ui/strip/StripLayout.h"

/// Where the strip stands in its set.
struct BarPosition {
  double Percent = 0.0;
  int Current = 0;
  int Count = 0;

  friend bool operator==(const BarPosition&, const BarPosition&) = default;
};

/// One of the two bars beside the lens's foot.
class CPushBar : public QWidget {
 public:
  /// Called with the index of a photo.
  using Jump = std::function<void(int index)>;
  /// Called with the index under the pointer, -1 for none, and the pointer's place in the bar's parent.
  using Point = std::function<void(int index, QPoint place)>;

  CPushBar(BarSide side, QWidget& strip, Jump jump, Point point);

  /// `area` in device pixels, from the strip's corner.
  void Place(const QRect& area);
  void SetPosition(const BarPosition& position);

 protected:
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void leaveEvent(QEvent* event) override;

 private:
  PushBarForm GetForm() const;
  int FindTarget(QPointF point) const;

  const BarSide Side;
  QWidget& Strip;
  const Jump JumpTo;
  const Point PointAt;
  QRect Area;
  BarPosition Position;
};

/// The position in the set as text.
class CPositionLabel : public QWidget {
 public:
  explicit CPositionLabel(QWidget& parent);

  void SetPosition(int current, int count);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  QString Text;
};

/// The two bars whose lengths show how many photos lie on either side of the current one, and the position
/// as text. A press on a bar jumps; the pointer over it shows the label of the photo there.
class CPushBars {
 public:
  using LabelOf = std::function<QString(int index)>;

  CPushBars(QWidget& strip, const CPushBar::Jump& jump, LabelOf labelOf);

  /// To be called when the strip has moved or has another width.
  void Place(const StripLayout& layout);
  void SetPosition(const BarPosition& position);
  void SetVisible(bool on);

 private:
  void ShowTip(int index, QPoint place);

  QWidget& Strip;
  const LabelOf GetLabel;
  CPushBar Left;
  CPushBar Right;
  CPositionLabel Label;
  CButtonTip Tip;
};
