#include "ui/kit/TextButton.h"

#include <QLinearGradient>
#include <QPainter>

#include "ui/kit/Colours.h"
#include "ui/kit/FontTable.h"

namespace {

constexpr double kRadius = 4.5;

void PaintPlate(QPainter& painter, const QRectF& plate, bool pressed) {
  QLinearGradient face(plate.topLeft(), plate.bottomLeft());
  const auto& shades = pressed ? colours::kPressedPlate : colours::kPlate;
  face.setColorAt(0, shades[0]);
  face.setColorAt(0.5, shades[1]);
  face.setColorAt(1, shades[2]);
  painter.setPen(colours::kOutline);
  painter.setBrush(face);
  painter.drawRoundedRect(plate, kRadius, kRadius);

  // The light falls from the top left: on the rim of a raised plate, past that of a pressed one.
  painter.setPen(pressed ? QColor(49, 53, 67, 60) : QColor(Qt::white));
  painter.drawLine(plate.topLeft() + QPointF(kRadius, 1), plate.topRight() + QPointF(-kRadius, 1));
}

}  // namespace

CTextButton::CTextButton(const QString& text, QWidget* parent) : QAbstractButton(parent) {
  setText(text);
  setAccessibleName(text);
  setFont(GetFont(FontId::Caption));
}

void CTextButton::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  const bool pressed = isDown();
  const QRectF plate = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -1.5);
  if (!pressed) {
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(49, 53, 67, 77));
    painter.drawRoundedRect(plate.translated(0.25, 1.25), kRadius, kRadius);
  }
  PaintPlate(painter, plate, pressed);

  const QRect place = rect().adjusted(0, 0, 0, -1).translated(pressed ? QPoint(1, 1) : QPoint());
  painter.setPen(Qt::white);
  painter.drawText(place.translated(1, 1), Qt::AlignCenter, text());
  painter.setPen(colours::kInk);
  painter.drawText(place, Qt::AlignCenter, text());
}
