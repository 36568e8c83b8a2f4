#pragma once

#include <QPoint>

#include "ui/kit/DevicePainter.h"

class QWidget;

/// Paints on a widget in the device pixels of a sibling, counted from the sibling's top left corner on the
/// screen. So what stands around the sibling meets it without a gap, though the widgets' own corners lie
/// between two pixels of the screen.
class CSiblingPainter : public CDevicePainter {
 public:
  CSiblingPainter(QWidget& widget, const QWidget& sibling);
};

/// The smallest place, in their parent's coordinates, that shows `area`, told in device pixels from the
/// sibling's corner.
QRect PlaceBySibling(const QRect& area, const QWidget& sibling);

/// A widget's point in the device pixels of a sibling.
QPoint ToSiblingPixel(QPointF point, const QWidget& widget, const QWidget& sibling);
