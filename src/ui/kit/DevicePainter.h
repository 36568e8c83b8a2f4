#pragma once

#include <QColor>
#include <QFont>
#include <QPainter>
#include <QPixmap>
#include <QRect>
#include <QString>

#include "resources/PictureIds.h"

class QWidget;

/// A length of the layout in whole pixels of a screen of that ratio.
int ToDevicePixels(double length, double pixelRatio);

/// Paints in whole pixels of the screen, so that edges stay sharp where a pixel of the layout is one and a
/// half of the screen's. Positions and sizes are device pixels, counted from the top left corner of what is
/// painted on.
class CDevicePainter {
 public:
  /// On a widget, in its paint event.
  explicit CDevicePainter(QWidget& widget);

  /// On a picture of device pixels, whose own ratio is 1.
  CDevicePainter(QPaintDevice& picture, double pixelRatio);

  /// All that is painted on.
  const QRect& GetArea() const { return Area; }
  double GetPixelRatio() const { return PixelRatio; }
  /// A length of the layout.
  int Scaled(double length) const { return ToDevicePixels(length, PixelRatio); }
  /// An area of the layout, each edge on the nearest whole pixel, so that neighbours stay neighbours.
  QRect Scaled(const QRect& area) const;

  void Fill(const QRect& area, const QColor& colour) { Painter.fillRect(area, colour); }
  /// Pixel by pixel, whatever ratio the pixmap names.
  void Draw(QPoint corner, const QPixmap& pixmap);
  /// A part of a picture, in the picture's own pixels of the layout, stretched over `area`.
  void DrawPart(PictureId id, const QRect& part, const QRect& area);
  /// `flags` are Qt::AlignmentFlag and Qt::TextFlag; `font` has a size of the layout.
  void DrawText(const QRect& area, int flags, const QFont& font, const QColor& colour, const QString& text);

  /// For what has no operation here; its coordinates are device pixels, too.
  QPainter& GetPainter() { return Painter; }

 private:
  QPainter Painter;
  double PixelRatio;
  QRect Area;
};
