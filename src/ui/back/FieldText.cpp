#include "ui/back/FieldText.h"

#include <QApplication>
#include <QMouseEvent>
#include <QPlainTextEdit>
#include <QTextLayout>
#include <QTextOption>

#include "ui/back/PhotoBackLayout.h"
#include "ui/controls/DropText.h"
#include "ui/kit/ClickFocus.h"
#include "ui/kit/Colours.h"
#include "ui/kit/DevicePainter.h"
#include "ui/kit/PaintedGroup.h"
#include "ui/kit/ShownText.h"
#include "ui/kit/ToolTips.h"

namespace {

// Of the text in its field.
constexpr int kTextLeft = 4;
constexpr int kTextRight = 2;

constexpr QChar kEllipsis(0x2026);

constexpr double kFrameRadius = 2;
constexpr QColor kFrameShade(49, 53, 67, 40);  // along the inside of its upper edge
constexpr int kBelowLine = 1;                  // between a line's cell and the ruled line under it

/// A row of dots, one pixel of the layout on and one off.
void DrawDots(CDevicePainter& painter, int left, int right, int y) {
  const int dot = painter.Scaled(1);
  for (int x = left; x + dot <= right; x += 2 * dot) painter.Fill({x, y, dot, dot}, colours::kWindow);
}

/// Line feeds as the layout of texts knows them.
QString WithLineSeparators(QString text) {
  text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
  return text.replace(u'\n', QChar(QChar::LineSeparator));
}

/// At rest a text of which a press begins the edit. While it is edited the edit box in it is the text.
class CFieldTextFace final : public CPartFace, public CShownText {
 public:
  explicit CFieldTextFace(CFieldText& field) : CPartFace(&field) {}

  using CPartFace::text;
  using CShownText::text;

  QAccessible::Role role() const override {
    return IsEdited() ? QAccessible::Grouping : QAccessible::EditableText;
  }
  QAccessible::State state() const override {
    QAccessible::State state = CPartFace::state();
    state.readOnly = GetField() == nullptr || !GetField()->IsEditable();
    if (CanBegin()) state.focusable = true;
    return state;
  }
  void* interface_cast(QAccessible::InterfaceType type) override {
    if (type == QAccessible::TextInterface && !IsEdited()) {
      return static_cast<QAccessibleTextInterface*>(this);
    }
    return CPartFace::interface_cast(type);
  }
  QString GetShownText() const override { return GetField() != nullptr ? GetField()->GetText() : QString(); }

  QStringList actionNames() const override {
    return CanBegin() ? QStringList{pressAction(), setFocusAction()} : QStringList();
  }
  void doAction(const QString& action) override {
    CFieldText* field = GetField();
    if (field == nullptr || !actionNames().contains(action)) return;
    DoAsClicked(*field, [field, action] {
      if (action == pressAction()) return field->OnClicked();
      GiveFocus(*field->parentWidget(), Qt::TabFocusReason);  // where Tab stops
    });
  }

 private:
  CFieldText* GetField() const { return dynamic_cast<CFieldText*>(object()); }
  bool IsEdited() const { return GetField() != nullptr && GetField()->IsEditing(); }
  bool CanBegin() const { return GetField() != nullptr && GetField()->IsEditable() && !IsEdited(); }
};

}  // namespace

QString ShortenLine(const QString& text, bool maybePath, const QFontMetricsF& metrics, double width) {
  QString line = text;
  line.replace(u'\n', u' ').replace(u'\r', u' ');
  return maybePath && line.contains(u'/') ? ShortenPath(line, width, metrics)
                                          : metrics.elidedText(line, Qt::ElideRight, width);
}

QStringList BreakIntoLines(const QString& text, const QFont& font, double width, int most) {
  const QString whole = WithLineSeparators(text);
  QTextLayout layout(whole, font);
  QTextOption option;
  option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
  layout.setTextOption(option);
  layout.beginLayout();
  QStringList lines;
  for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
    line.setLineWidth(width);
    if (lines.size() + 1 == most && line.textStart() + line.textLength() < whole.size()) {
      // The ellipsis shows that text was left out, even where the rest of this line has room.
      QString rest = whole.mid(line.textStart()).section(QChar(QChar::LineSeparator), 0, 0) + kEllipsis;
      lines += QFontMetricsF(font).elidedText(rest, Qt::ElideRight, width);
      break;
    }
    lines += whole.mid(line.textStart(), line.textLength()).remove(QChar(QChar::LineSeparator));
  }
  layout.endLayout();
  return lines;
}

CFieldText::CFieldText(CFieldBoxOwner& owner, FieldStyle style, FontId font, QWidget* parent)
    : QWidget(parent), Owner(owner), Style(style), Font(font) {
  setFocusPolicy(Qt::NoFocus);
  if (HasFlag(style, FieldStyle::Editable)) setCursor(Qt::IBeamCursor);
}

QAccessibleInterface* CFieldText::MakeFace() { return std::make_unique<CFieldTextFace>(*this).release(); }

void CFieldText::SetText(const QString& text) {
  if (text == Text) return;
  Text = text;
  BreakText();
}

void CFieldText::SetLines(int count) {
  if (count == LineCount) return;
  LineCount = count;
  BreakText();
}

QRect CFieldText::GetTextArea() const {
  return rect().adjusted(kTextLeft, kFieldPadding, -kTextRight, -kFieldPadding);
}

void CFieldText::BreakText() {
  const double width = GetTextArea().width();
  if (LineCount > 1) {
    Lines = BreakIntoLines(Text, GetFont(Font), width, LineCount);
  } else {
    Lines = {
        ShortenLine(Text, HasFlag(Style, FieldStyle::PathOrEllipsis), QFontMetricsF(GetFont(Font)), width)};
  }
  const bool isCut = Lines.join(QString()).contains(kEllipsis) && !Text.contains(kEllipsis);
  SetToolTip(*this, isCut ? Text : QString());
  update();
}

void CFieldText::OpenBox(const QString& text) {
  if (Box == nullptr) {
    Box = MakeFieldBox(Owner, HasFlag(Style, FieldStyle::Wraps) && LineCount > 1, GetFont(Font), this);
    Box->GetWidget().setAccessibleName(accessibleName());
    PlaceBox();
    Box->GetWidget().show();
    RestartEdit(text);
    update();
  }
  Box->GetWidget().setFocus();
  TellFocus();  // the field may have had it for a moment
}

void CFieldText::CloseBox() {
  if (Box == nullptr) return;
  QWidget& widget = Box->GetWidget();
  Box = nullptr;
  widget.hide();
  widget.deleteLater();  // the box itself may be the caller
  update();
}

void CFieldText::RestartEdit(const QString& text) {
  Box->SetText(text);
  FirstText = Box->GetText();
  if (HasFlag(Style, FieldStyle::SelectAll)) Box->SelectAll();
}

void CFieldText::PlaceBox() {
  if (Box != nullptr) Box->GetWidget().setGeometry(GetTextArea());
}

bool CFieldText::event(QEvent* event) {
  // Another screen may have another pixel ratio, and its letters other widths.
  if (event->type() == QEvent::ScreenChangeInternal) BreakText();
  return QWidget::event(event);
}

void CFieldText::resizeEvent(QResizeEvent*) {
  PlaceBox();
  BreakText();
}

// The mouse.

void CFieldText::mousePressEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton || !HasFlag(Style, FieldStyle::Editable)) return event->ignore();
  if (OnClicked) OnClicked();
  ClickIsPassedOn = Box != nullptr && !HasFlag(Style, FieldStyle::SelectAll);
  if (ClickIsPassedOn) PassOn(*event);
}

void CFieldText::mouseMoveEvent(QMouseEvent* event) {
  if (ClickIsPassedOn) PassOn(*event);
}

void CFieldText::mouseReleaseEvent(QMouseEvent* event) {
  if (ClickIsPassedOn) PassOn(*event);
  ClickIsPassedOn = false;
}

void CFieldText::PassOn(QMouseEvent& event) {
  if (Box == nullptr) return;
  QWidget* target = &Box->GetWidget();
  if (auto* several = qobject_cast<QPlainTextEdit*>(target)) target = several->viewport();
  QMouseEvent passed(event.type(), target->mapFromGlobal(event.globalPosition()), event.globalPosition(),
                     event.button(), event.buttons(), event.modifiers());
  QApplication::sendEvent(target, &passed);
}

// Painting.

void CFieldText::paintEvent(QPaintEvent*) {
  CDevicePainter painter(*this);
  if (IsEditing()) return PaintFrame(painter);
  if (HasFlag(Style, FieldStyle::RuledLines)) PaintRuledLines(painter);
  PaintText(painter);
}

void CFieldText::PaintRuledLines(CDevicePainter& painter) {
  const QRect area = GetTextArea();
  for (int line = 1; line <= LineCount; ++line) {
    DrawDots(painter, painter.Scaled(area.left()), painter.Scaled(area.right() + 1),
             painter.Scaled(area.top() + line * GetLineHeight() + kBelowLine));
  }
}

void CFieldText::PaintText(CDevicePainter& painter) {
  const QRect area = GetTextArea();
  int y = area.top();
  for (const QString& line : Lines) {
    const QRect cell(painter.Scaled(area.left()), painter.Scaled(y), painter.Scaled(area.width()),
                     painter.Scaled(GetLineHeight()));
    painter.DrawText(cell, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine | Qt::TextDontClip,
                     GetFont(Font), colours::kInk, line);
    y += GetLineHeight();
  }
}

void CFieldText::PaintFrame(CDevicePainter& painter) {
  const int unit = painter.Scaled(1);
  QPainter& paint = painter.GetPainter();
  paint.setRenderHint(QPainter::Antialiasing);
  const double half = unit / 2.0;
  const QRectF frame = QRectF(painter.GetArea()).adjusted(unit, unit, -unit, -unit);
  const double radius = kFrameRadius * painter.GetPixelRatio();
  paint.setPen(QPen(colours::kOutline, unit));
  paint.setBrush(Qt::white);
  paint.drawRoundedRect(frame.adjusted(half, half, -half, -half), radius, radius);
  paint.fillRect(QRectF(frame.left() + 2 * unit, frame.top() + unit, frame.width() - 4 * unit, unit),
                 kFrameShade);
}
