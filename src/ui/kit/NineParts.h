#pragma once

#include <QRect>
#include <array>

#include "resources/PictureIds.h"

class CDevicePainter;

/// A picture that is stretched over rectangles of any size: nine parts, of which the corners keep their
/// size and the edges and the middle are stretched. Sizes are pixels of the layout.
struct NinePartSkin {
  PictureId Picture;
  QRect Piece;  // of the picture
  int Corner;   // side of a corner
};

/// The panel that a page and its button row stand on.
inline constexpr NinePartSkin kPagePanel{PictureId::PanelCorners, {0, 0, 15, 15}, 5};

/// The parts by row and column, from the top left.
enum class NinePart : int { TopLeft, Top, TopRight, Left, Middle, Right, BottomLeft, Bottom, BottomRight };

/// The nine rectangles that `area` is divided into; where it is too small for both corners they share it.
std::array<QRect, 9> DivideIntoNine(const QRect& area, int corner);

/// `area` in device pixels.
void DrawNineParts(CDevicePainter& painter, const NinePartSkin& skin, const QRect& area);
void DrawOneOfNine(CDevicePainter& painter, const NinePartSkin& skin, NinePart part, const QRect& area);
