#include "ui/kit/DevicePainter.h"

#include <QWidget>
#include <algorithm>
#include <cmath>
#include <cstddef>

#include "ui/kit/Pictures.h"

namespace {

constexpr int kParts = 9;

/// The ends of three spans of which the outer two are `corner` wide.
std::array<int, 4> DivideIntoThree(int start, int length, int corner) {
  const int first = std::min(corner, length / 2);
  const int last = std::min(corner, length - first);
  return {start, start + first, start + length - last, start + length};
}

}  // namespace

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

std::array<QRect, 9> DivideIntoNine(const QRect& area, int corner) {
  const auto columns = DivideIntoThree(area.left(), area.width(), corner);
  const auto rows = DivideIntoThree(area.top(), area.height(), corner);
  std::array<QRect, kParts> parts;
  for (std::size_t i = 0; i < kParts; ++i) {
    const std::size_t row = i / 3;
    const std::size_t column = i % 3;
    parts[i] = QRect(QPoint(columns[column], rows[row]),
                     QSize(columns[column + 1] - columns[column], rows[row + 1] - rows[row]));
  }
  return parts;
}

void DrawOneOfNine(CDevicePainter& painter, const NinePartSkin& skin, NinePart part, const QRect& area) {
  const auto sources = DivideIntoNine(skin.Piece, skin.Corner);
  painter.DrawPart(skin.Picture, sources[static_cast<std::size_t>(part)], area);
}

void DrawNineParts(CDevicePainter& painter, const NinePartSkin& skin, const QRect& area) {
  const auto targets = DivideIntoNine(area, painter.Scaled(skin.Corner));
  for (std::size_t i = 0; i < kParts; ++i) DrawOneOfNine(painter, skin, static_cast<NinePart>(i), targets[i]);
}

void DrawDropShadow(CDevicePainter& painter, PictureId shadow, int piece, const QRect& place) {
  const int depth = painter.Scaled(piece);
  const int right = place.x() + place.width();
  const int bottom = place.y() + place.height();
  const QRect areas[] = {
      {place.x(), bottom, depth, depth}, {place.x() + depth, bottom, place.width() - depth, depth},
      {right, bottom, depth, depth},     {right, place.y() + depth, depth, place.height() - depth},
      {right, place.y(), depth, depth},
  };
  int left = 0;
  for (const QRect& area : areas) {
    painter.DrawPart(shadow, {left, 0, piece, piece}, area);
    left += piece;
  }
}
