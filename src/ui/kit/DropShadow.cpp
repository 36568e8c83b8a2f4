#include "ui/kit/DropShadow.h"

#include "ui/kit/DevicePainter.h"

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
