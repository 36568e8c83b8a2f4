#pragma once

#include <QRect>
#include <QSize>
#include <QString>
#include <QWidget>

#include "ui/kit/FontTable.h"

enum class TipSide : int { Above = 0, Below = 1 };

/// A small label with a button's caption. It never takes input. A caption that stays on view is a child of
/// the button's parent, so it is clipped by that and goes with it; one that comes with the pointer is a
/// child of the top-level window and overlaps all else. Assistive tools have the caption from the button.
class CButtonTip : public QWidget {
 public:
  explicit CButtonTip(QWidget* parent);

  void SetText(const QString& text);
  void SetFont(FontId font);
  void SetSide(TipSide side) { Side = side; }
  void SetFramed(bool on);

  /// The size of the text in its font.
  QSize GetExtent() const;

  /// Shows the label beside `owner`, a rectangle in the parent's coordinates; hides it if it has no text.
  void ShowAt(const QRect& owner);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  QRect GetBounds() const;

  QString Text;
  FontId Font = FontId::Note;
  TipSide Side = TipSide::Above;
  bool Framed = false;
};

/// Where a label of that size stands: centred on its owner, overlapping its edge a little, on the other
/// side where it would leave `bounds` at the top or bottom, pushed inside at the left and right.
QRect PlaceButtonTip(const QSize& tip, const QRect& owner, TipSide side, const QRect& bounds);

/// The room that a caption needs in a font: the text and the copy to its lower right.
QSize MeasureCaption(const QString& text, FontId font);
