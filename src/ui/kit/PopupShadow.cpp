#include "ui/kit/PopupShadow.h"

#include <QImage>
#include <QPainter>
#include <QWidget>
#include <algorithm>
#include <cmath>
#include <numbers>

#include "ui/kit/Colours.h"

namespace {

constexpr QPointF kOffset(2, 3);
constexpr double kDeviation = 4;  // half the blur
constexpr double kStrength = 0.45;
constexpr int kRoom = 9;  // beyond this it can't be seen

/// The share of an edge's light side that is dark at that distance from it.
double BlurredEdge(double distance) { return 0.5 * std::erfc(distance / (kDeviation * std::numbers::sqrt2)); }

}  // namespace

double GetPopupShadowStrength(QPointF point, const QRectF& caster) {
  const QRectF shadow = caster.translated(kOffset);
  const double across = BlurredEdge(shadow.left() - point.x()) * BlurredEdge(point.x() - shadow.right());
  const double down = BlurredEdge(shadow.top() - point.y()) * BlurredEdge(point.y() - shadow.bottom());
  return kStrength * across * down;
}

QSize GetPopupShadowRoom(const QRect& list, const QRect& behind) {
  if (!behind.contains(list)) return {0, 0};
  return {std::min(behind.right() - list.right(), kRoom), std::min(behind.bottom() - list.bottom(), kRoom)};
}

QPixmap GrabShadowedBackdrop(QWidget& behind, const QRect& area, QSize list) {
  QPixmap backdrop = behind.grab(area);
  const double ratio = backdrop.devicePixelRatio();
  const QRectF caster(0, 0, list.width(), list.height());
  QImage shadow(backdrop.size(), QImage::Format_ARGB32);
  QColor colour = colours::kInk;
  for (int y = 0; y < shadow.height(); ++y) {
    for (int x = 0; x < shadow.width(); ++x) {
      const QPointF point((x + 0.5) / ratio, (y + 0.5) / ratio);
      colour.setAlphaF(caster.contains(point) ? 0.F
                                              : static_cast<float>(GetPopupShadowStrength(point, caster)));
      shadow.setPixelColor(x, y, colour);
    }
  }
  shadow.setDevicePixelRatio(ratio);
  QPainter(&backdrop).drawImage(QPoint(), shadow);
  return backdrop;
}
