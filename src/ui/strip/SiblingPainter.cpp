#include "ui/strip/SiblingPainter.h"

#include <QWidget>
#include <cmath>

CSiblingPainter::CSiblingPainter(QWidget& widget, const QWidget& sibling)
    : CDevicePainter(widget, widget.devicePixelRatioF()) {
  QPainter& painter = GetPainter();
  const QPointF origin = sibling.pos() - widget.pos();
  const QTransform toDevice = painter.deviceTransform();
  const QPointF corner = toDevice.map(origin);
  painter.translate(origin.x() + (std::round(corner.x()) - corner.x()) / toDevice.m11(),
                    origin.y() + (std::round(corner.y()) - corner.y()) / toDevice.m22());
  painter.scale(1 / toDevice.m11(), 1 / toDevice.m22());
}

QRect PlaceBySibling(const QRect& area, const QWidget& sibling) {
  const double ratio = sibling.devicePixelRatioF();
  // By so much the sibling's corner may be off its place where a pixel of the layout isn't a whole number
  // of the screen's.
  const double slack = ratio == std::floor(ratio) ? 0.0 : 0.5;
  const auto before = [&](int position) { return static_cast<int>(std::floor((position - slack) / ratio)); };
  const auto behind = [&](int position) { return static_cast<int>(std::ceil((position + slack) / ratio)); };
  const QPoint from(before(area.x()), before(area.y()));
  const QPoint to(behind(area.x() + area.width()), behind(area.y() + area.height()));
  return {sibling.pos() + from, QSize(to.x() - from.x(), to.y() - from.y())};
}

QPoint ToSiblingPixel(QPointF point, const QWidget& widget, const QWidget& sibling) {
  const QPointF pixel = (point + widget.pos() - sibling.pos()) * sibling.devicePixelRatioF();
  return {static_cast<int>(std::floor(pixel.x())), static_cast<int>(std::floor(pixel.y()))};
}
