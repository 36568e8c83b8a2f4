#pragma once

#include <QImage>
#include <QRect>
#include <vector>

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

  /// The box of a photo in its cell, in pixels of the layout: no larger than a thumbnail can be.
  QSize GetPhotoBox() const;
  /// The cells on view that have been painted from thumbnails with fewer pixels than the screen has there.
  std::vector<int> ListSoftCells() const;
  /// Paints a sharper picture of a photo, which stays until its cell is painted anew.
  QRect PaintSharp(int index, const QImage& picture);

  /// Null without a picture.
  const QImage& GetImage() const { return Image; }

 private:
  QRect PaintCell(int index);
  QRect BeginCell(CDevicePainter& painter, int index) const;
  QImage MakePicture(int index);
  void PaintPicture(CDevicePainter& painter, const QRect& cell, const QImage& picture) const;
  void PaintPath(CDevicePainter& painter, const QRect& cell, int index);

  CListPhotoSet& Photos;
  PhotoGrid Grid;
  double PixelRatio = 1.0;
  QImage Image;
  int Painted = 0;          // cells, from the first on
  std::vector<bool> Sharp;  // of the painted cells
};
