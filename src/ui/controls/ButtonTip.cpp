#include "ui/controls/ButtonTip.h"

#include <QFontMetricsF>
#include <QScreen>
#include <algorithm>
#include <cmath>

#include "ui/kit/Colours.h"
#include "ui/kit/DevicePainter.h"

namespace {

// How far a label and its button overlap.
constexpr int kOverlapAbove = 3;
constexpr int kOverlapBelow = 2;

constexpr QSize kPlainMargin(1, 1);  // for the copy of the text
constexpr QSize kFramedMargin(5, 2);
constexpr QColor kOuterLine(222, 222, 222);
constexpr QColor kInnerLine(60, 60, 60);

void DrawFrame(CDevicePainter& painter) {
  const QRect area = painter.GetArea();
  const int line = painter.Scaled(1);
  painter.Fill(area, kOuterLine);
  painter.Fill(area.adjusted(line, line, -line, -line), kInnerLine);
  painter.Fill(area.adjusted(2 * line, 2 * line, -2 * line, -2 * line), colours::kTip);
}

}  // namespace

QRect PlaceButtonTip(const QSize& tip, const QRect& owner, TipSide side, const QRect& bounds) {
  const int above = owner.top() + kOverlapAbove - tip.height();
  const int below = owner.top() + owner.height() - kOverlapBelow;
  const int end = bounds.top() + bounds.height();
  int top = side == TipSide::Above ? above : below;
  if (top < bounds.top()) {
    top = below;
  } else if (top + tip.height() > end) {
    top = above;
  }
  // The text is centred; the last column belongs to its copy.
  const int left = (2 * owner.left() + owner.width() - tip.width() + 1) / 2;
  const int last = bounds.left() + bounds.width() - tip.width();
  return {QPoint(std::max(std::min(left, last), bounds.left()), top), tip};
}

QSize MeasureCaption(const QString& text, FontId font) {
  const double width = QFontMetricsF(GetFont(font)).horizontalAdvance(text);
  return QSize(static_cast<int>(std::ceil(width)), CFontTable::GetInstance().GetCellHeight(font)) +
         kPlainMargin;
}

CButtonTip::CButtonTip(QWidget* parent) : QWidget(parent) {
  setObjectName(QStringLiteral("ButtonTip"));
  setAttribute(Qt::WA_TransparentForMouseEvents);
  hide();
}

void CButtonTip::SetText(const QString& text) {
  if (text == Text) return;
  Text = text;
  update();
}

void CButtonTip::SetFont(FontId font) {
  if (font == Font) return;
  Font = font;
  update();
}

void CButtonTip::SetFramed(bool on) {
  Framed = on;
  update();
}

QSize CButtonTip::GetExtent() const {
  const QSize plain = MeasureCaption(Text, Font);
  return Framed ? plain - kPlainMargin + kFramedMargin : plain;
}

QRect CButtonTip::GetBounds() const {
  const QWidget* around = parentWidget();
  if (!around->isWindow() || around->screen() == nullptr) return around->rect();
  const QRect screenArea = around->screen()->geometry();
  return around->rect() & QRect(around->mapFromGlobal(screenArea.topLeft()), screenArea.size());
}

void CButtonTip::ShowAt(const QRect& owner) {
  setVisible(!Text.isEmpty());
  if (Text.isEmpty()) return;
  setGeometry(PlaceButtonTip(GetExtent(), owner, Side, GetBounds()));
  raise();
}

void CButtonTip::paintEvent(QPaintEvent*) {
  CDevicePainter painter(*this);
  const QRect area = painter.GetArea();
  const QFont& font = GetFont(Font);
  if (Framed) {
    DrawFrame(painter);
    painter.DrawText(area, Qt::AlignCenter | Qt::TextSingleLine, font, colours::kInk, Text);
    return;
  }
  const int offset = painter.Scaled(1);
  const QRect text = area.adjusted(0, 0, -offset, -offset);
  // A caption that stays is transparent, so that the shadow of its button shows.
  if (parentWidget()->isWindow()) painter.Fill(area, colours::kPage);
  painter.DrawText(text.translated(offset, offset), Qt::AlignCenter | Qt::TextSingleLine, font, Qt::white,
                   Text);
  painter.DrawText(text, Qt::AlignCenter | Qt::TextSingleLine, font, colours::kInk, Text);
}
