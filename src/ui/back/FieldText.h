#pragma once

#include <QFontMetricsF>
#include <QString>
#include <QStringList>
#include <QWidget>
#include <functional>

#include "ui/back/FieldBox.h"
#include "ui/back/FieldForms.h"
#include "ui/kit/AssistiveTools.h"

class CDevicePainter;

// Texts cut to the room that they have. Widths are pixels of the layout.

/// One line: if `maybePath` is set and it holds a "/" it is shortened as a path, else it loses its end.
QString ShortenLine(const QString& text, bool maybePath, const QFontMetricsF& metrics, double width);

/// The text broken at words into at most `most` lines; a longer word is broken too. What doesn't fit is left
/// out at the end of the last line.
QStringList BreakIntoLines(const QString& text, const QFont& font, double width, int most);

/// The text of a field. While it is edited an edit box stands over it, made for the edit and deleted after
/// it. The owner decides what happens to the text of the box.
class CFieldText : public QWidget, public CFaceMaker {
 public:
  CFieldText(CFieldBoxOwner& owner, FieldStyle style, FontId font, QWidget* parent);

  /// Called for a click on a text that can be edited.
  std::function<void()> OnClicked;

  /// The text at rest.
  void SetText(const QString& text);
  const QString& GetText() const { return Text; }

  /// The height is FieldHeight of so many lines.
  void SetLines(int count);

  /// Makes the edit box with that text and gives it the focus.
  void OpenBox(const QString& text);
  /// Removes the box and its text.
  void CloseBox();
  bool IsEditing() const { return Box != nullptr; }
  /// Null at rest.
  CFieldBox* GetBox() const { return Box; }
  /// Puts a text into the box as if the edit began with it.
  void RestartEdit(const QString& text);
  /// From now on the edit counts as begun with the text that is in the box.
  void TakeOverText() { FirstText = Box->GetText(); }
  /// The text that the edit began with, as the box gives it.
  const QString& GetFirstText() const { return FirstText; }

  bool IsEditable() const { return HasFlag(Style, FieldStyle::Editable); }
  QAccessibleInterface* MakeFace() override;

 protected:
  bool event(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;

 private:
  QRect GetTextArea() const;
  int GetLineHeight() const { return CFontTable::GetInstance().GetCellHeight(Font); }
  void BreakText();
  void PlaceBox();
  void PassOn(QMouseEvent& event);
  void PaintRuledLines(CDevicePainter& painter);
  void PaintText(CDevicePainter& painter);
  void PaintFrame(CDevicePainter& painter);

  CFieldBoxOwner& Owner;
  const FieldStyle Style;
  const FontId Font;
  int LineCount = 1;
  QString Text;
  QStringList Lines;         // as they are painted
  CFieldBox* Box = nullptr;  // a child
  QString FirstText;
  bool ClickIsPassedOn = false;
};
