#pragma once

#include <QColor>
#include <QFont>
#include <QPainter>
#include <QPixmap>
#include <QRect>
#include <QString>
#include <array>

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

/// The shadow that a picture at `place`, in device pixels, throws to its right and below. `shadow` is a
/// picture of five square pieces, `piece` pixels of the layout wide: below the left corner, along the bottom,
/// below the right corner, along the right edge, at the upper end of the right edge.
void DrawDropShadow(CDevicePainter& painter, PictureId shadow, int piece, const QRect& place);
