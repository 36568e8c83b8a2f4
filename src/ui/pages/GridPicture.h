#pragma once

#include <QImage>
#include <QRect>

#include "ui/pages/PhotoGrid.h"

class CDevicePainter;
class CListPhotoSet;

/// The painted cells of a page of photos, in one picture of device pixels. A cell is painted when it is asked
/// for and then only copied, so that showing the page reads nothing. Cells are told by their index in the
/// set.
class CGridPicture {
 public:
  /// The set outlives the picture.
  explicit CGridPicture(CListPhotoSet& photos) : Photos(photos) {}

  /// An empty picture for a page of that size, in pixels of the layout. No memory gives no picture.
  void SetForm(QSize page, const PhotoGrid& grid, double pixelRatio);
  /// Gives the memory back.
  void Clear() { Image = QImage(); }

  /// Empties the cells from `first` on, since their photos are others now. False if none has been painted.
  bool EmptyFrom(int first);

  /// Whether all cells have been painted; also if there is no picture.
  bool IsComplete() const;
  /// Paints the next cell and returns what of the page has changed, in pixels of the layout.
  QRect PaintNext();
  /// Paints a cell anew, if it has been painted.
  QRect Repaint(int index);

  /// Null without a picture.
  const QImage& GetImage() const { return Image; }

 private:
  QRect PaintCell(int index);
  void PaintPhoto(CDevicePainter& painter, const QRect& cell, int index);
  void PaintPath(CDevicePainter& painter, const QRect& cell, int index);

  CListPhotoSet& Photos;
  PhotoGrid Grid;
  double PixelRatio = 1.0;
  QImage Image;
  int Painted = 0;  // cells, from the first on
};
