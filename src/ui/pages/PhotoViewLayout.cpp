#include "ui/pages/PhotoViewLayout.h"

#include <cmath>
#include <cstddef>

namespace {

// Pixels of the layout. The drawing stands inside its picture, ten pixels from the photo's corner.
constexpr int kMarkPicture = 32;
constexpr int kFirstMark = 36;
constexpr int kMarkStep = 18;

}  // namespace

bool NeedsReload(const HeldPhoto& held, QSize view) {
  if (held.Requested.Width >= view.width() || held.Requested.Height >= view.height()) return false;
  const bool tooSmall = held.Current.Width < view.width() && held.Current.Height < view.height();
  const bool hasMore = held.Natural.Width > held.Current.Width && held.Natural.Height > held.Current.Height;
  return tooSmall && hasMore;
}

QRect PhotoArea(QSize view, int margin) {
  return QRect(QPoint(), view).adjusted(margin, margin, -margin, -margin);
}

QRect PlacePhoto(QSize view, int margin, QSize drawn, bool centreVertically) {
  const QRect area = PhotoArea(view, margin);
  const int y = centreVertically ? (area.height() - drawn.height()) / 2 : 0;
  return {QPoint(margin + (area.width() - drawn.width()) / 2, margin + y), drawn};
}

std::vector<QRect> PlaceMarks(const QRect& place, std::span<const bool> shown, double scale) {
  const auto scaled = [scale](int length) { return static_cast<int>(std::lround(length * scale)); };
  std::vector<QRect> places(shown.size());
  int x = place.x() + place.width() - scaled(kFirstMark);
  const int y = place.y() + place.height() - scaled(kFirstMark);
  for (std::size_t slot = shown.size(); slot-- > 0;) {
    if (!shown[slot]) continue;
    places[slot] = QRect(x, y, scaled(kMarkPicture), scaled(kMarkPicture));
    x -= scaled(kMarkStep);
  }
  return places;
}
