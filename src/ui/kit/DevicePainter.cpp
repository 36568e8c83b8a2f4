#include "ui/kit/DevicePainter.h"

#include <QWidget>
#include <cmath>

#include "ui/kit/Pictures.h"

int ToDevicePixels(double length, double pixelRatio) {
  return static_cast<int>(std::lround(length * pixelRatio));
}

CDevicePainter::CDevicePainter(QWidget& widget) : Painter(&widget), PixelRatio(widget.devicePixelRatioF()) {
  // A widget's corner may lie between two pixels of the screen.
  const QTransform toDevice = Painter.deviceTransform();
  const QPointF corner = toDevice.map(QPointF());
  const QPointF end = toDevice.map(QPointF(widget.width(), widget.height()));
  const QPoint whole(static_cast<int>(std::lround(corner.x())), static_cast<int>(std::lround(corner.y())));
  Area = QRect(0, 0, static_cast<int>(std::lround(end.x())) - whole.x(),
               static_cast<int>(std::lround(end.y())) - whole.y());
  Painter.translate((whole.x() - corner.x()) / toDevice.m11(), (whole.y() - corner.y()) / toDevice.m22());
  Painter.scale(1 / toDevice.m11(), 1 / toDevice.m22());
}

CDevicePainter::CDevicePainter(QPaintDevice& picture, double pixelRatio)
    : Painter(&picture), PixelRatio(pixelRatio), Area(0, 0, picture.width(), picture.height()) {}

QRect CDevicePainter::Scaled(const QRect& area) const {
  const QPoint corner(Scaled(area.left()), Scaled(area.top()));
  const QPoint end(Scaled(area.left() + area.width()), Scaled(area.top() + area.height()));
  return {corner, QSize(end.x() - corner.x(), end.y() - corner.y())};
}

void CDevicePainter::Draw(QPoint corner, const QPixmap& pixmap) {
  Painter.drawPixmap(QRect(corner, pixmap.size()), pixmap, pixmap.rect());
}

void CDevicePainter::DrawPart(PictureId id, const QRect& part, const QRect& area) {
  if (!area.isEmpty()) Draw(area.topLeft(), GetPicturePart(id, part, area.size()));
}

void CDevicePainter::DrawText(const QRect& area, int flags, const QFont& font, const QColor& colour,
                              const QString& text) {
  Painter.save();
  Painter.scale(PixelRatio, PixelRatio);
  Painter.setFont(font);
  Painter.setPen(colour);
  Painter.drawText(QRectF(area.x() / PixelRatio, area.y() / PixelRatio, area.width() / PixelRatio,
                          area.height() / PixelRatio),
                   flags, text);
  Painter.restore();
}
