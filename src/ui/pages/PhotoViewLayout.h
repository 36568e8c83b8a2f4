#pragma once

#include <QPoint>
#include <QRect>
#include <QSize>
#include <span>
#include <vector>

#include "imaging/PixelBuffer.h"

/// Where the large photo and its marks stand, and when it has to be decoded anew. All in device pixels.

/// What is held of a photo.
struct HeldPhoto {
  ImageSize Natural;    // of the stored picture
  ImageSize Current;    // of the bitmap held
  ImageSize Requested;  // the box it was decoded for
};

/// Whether the bitmap has become too small for a view of that size while the file has more to give.
bool NeedsReload(const HeldPhoto& held, QSize view);

/// The area that a photo may take up in a view.
QRect PhotoArea(QSize view, int margin);

/// Where a photo drawn in that size stands.
QRect PlacePhoto(QSize view, int margin, QSize drawn, bool centreVertically);

/// Where the marks of a photo at `place` stand, by slot; a slot that shows none has an empty place. They
/// stand in its lower right corner, the last one outermost. `scale` is the screen's pixel ratio.
std::vector<QRect> PlaceMarks(const QRect& place, std::span<const bool> shown, double scale);
