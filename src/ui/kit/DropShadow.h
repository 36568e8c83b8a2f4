#pragma once

#include <QRect>

#include "resources/PictureIds.h"

class CDevicePainter;

/// The shadow that a picture at `place`, in device pixels, throws to its right and below. `shadow` is a
/// picture of five square pieces, `piece` pixels of the layout wide: below the left corner, along the bottom,
/// below the right corner, along the right edge, at the upper end of the right edge.
void DrawDropShadow(CDevicePainter& painter, PictureId shadow, int piece, const QRect& place);
