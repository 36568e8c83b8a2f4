#pragma once

#include <QPoint>
#include <QRect>
#include <QString>
#include <QWidget>
#include <functional>
#include <vector>

#include "ui/controls/ButtonTip.h"
#include "ui/kit/PaintedGroup.h"
#include "ui/strip/StripLayout.h"

enum class BarSide { Left, Right };

// How far along a set of photos the strip is, from 0 to 100.

/// At rest on a photo. 0 for a set of one.
double GetRestPercent(int current, int count);

/// During a slide that began at the photo `start` and has come `offset` pixels, negative backwards, over
/// cells of `pitch` pixels.
double GetSlidePercent(int start, int count, int offset, int pitch);

/// A push bar: a rod that reaches from the lens to a round end, its cap, which the user presses to jump. All
/// in device pixels, from the bar window's top left corner.
struct PushBarForm {
  BarSide Side = BarSide::Left;
  double PixelRatio = 1.0;
  int Width = 0;   // of the bar's window
  int Height = 0;  // of the bar's window
  double Percent = 0.0;

  QRect GetBody() const;  // may be empty
  QRect GetCap() const;

  /// The index of the photo that a press there jumps to, -1 for none.
  int FindTarget(QPoint point, int current, int count) const;

 private:
  int GetLength() const;
};

/// Where the strip stands in its set.
struct BarPosition {
  double Percent = 0.0;
  int Current = 0;
  int Count = 0;

  friend bool operator==(const BarPosition&, const BarPosition&) = default;
};

/// One of the two bars beside the lens's foot. Assistive tools are told of one of them, as a slider for the
/// position in the set.
class CPushBar : public QWidget, public CFaceMaker {
 public:
  /// Called with the index of a photo.
  using Jump = std::function<void(int index)>;
  /// Called with the index under the pointer, -1 for none, and the pointer's place in the bar's parent.
  using Point = std::function<void(int index, QPoint place)>;

  CPushBar(BarSide side, QWidget& strip, Jump jump, Point point);

  /// `area` in device pixels, from the strip's corner.
  void Place(const QRect& area);
  void SetPosition(const BarPosition& position);
  const BarPosition& GetPosition() const { return Position; }
  void GoTo(int index) { JumpTo(index); }

  QAccessibleInterface* MakeFace() override;

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
  const QString& GetText() const { return Text; }

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
  /// Tells assistive tools where the strip has come to rest.
  void TellPosition();
  std::vector<GroupPart> ListParts() const;

 private:
  void ShowTip(int index, QPoint place);

  QWidget& Strip;
  const LabelOf GetLabel;
  CPushBar Left;
  CPushBar Right;
  CPositionLabel Label;
  CButtonTip Tip;
};
