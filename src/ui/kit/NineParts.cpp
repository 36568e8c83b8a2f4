#include "ui/kit/NineParts.h"

#include <algorithm>
#include <cstddef>

#include "ui/kit/DevicePainter.h"

namespace {

constexpr int kParts = 9;

/// The ends of three spans of which the outer two are `corner` wide.
std::array<int, 4> DivideIntoThree(int start, int length, int corner) {
  const int first = std::min(corner, length / 2);
  const int last = std::min(corner, length - first);
  return {start, start + first, start + length - last, start + length};
}

}  // namespace

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
