#include "ui/pages/GridPicture.h"

#include <QFontMetrics>
#include <algorithm>

#include "imaging/Image.h"
#include "sets/ListPhotoSet.h"
#include "ui/kit/Colours.h"
#include "ui/kit/DevicePainter.h"
#include "ui/kit/FontTable.h"
#include "ui/kit/Pictures.h"
#include "ui/kit/QtText.h"

namespace {

constexpr int kShadowPiece = 4;
constexpr int kRoomForShadow = 5;  // of a cell's width and height
constexpr int kOffset = 1;         // to the upper left, so that picture and shadow together are in the middle

}  // namespace

void CGridPicture::SetForm(QSize page, const PhotoGrid& grid, double pixelRatio) {
  Grid = grid;
  PixelRatio = pixelRatio;
  Painted = 0;
  Image = QImage(ToDevicePixels(page.width(), pixelRatio), ToDevicePixels(page.height(), pixelRatio),
                 QImage::Format_RGB32);
  Image.fill(colours::kPage);
}

bool CGridPicture::EmptyFrom(int first) {
  if (Image.isNull() || first >= Painted) return false;
  CDevicePainter painter(Image, PixelRatio);
  for (int i = first; i < Painted; ++i) painter.Fill(painter.Scaled(Grid.GetCell(i)), colours::kPage);
  Painted = first;
  return true;
}

bool CGridPicture::IsComplete() const { return Image.isNull() || Painted >= Photos.GetCount(); }

QRect CGridPicture::PaintNext() { return IsComplete() ? QRect() : PaintCell(Painted++); }

QRect CGridPicture::Repaint(int index) {
  if (Image.isNull() || index < 0 || index >= Painted) return {};
  return PaintCell(index);
}

QRect CGridPicture::PaintCell(int index) {
  CDevicePainter painter(Image, PixelRatio);
  const QRect cell = painter.Scaled(Grid.GetCell(index));
  painter.GetPainter().setClipRect(cell);
  painter.Fill(cell, colours::kPage);
  PaintPhoto(painter, cell, index);
  return Grid.GetCell(index);
}

void CGridPicture::PaintPhoto(CDevicePainter& painter, const QRect& cell, int index) {
  QImage image;
  if (const CImage* thumbnail = Photos.GetThumbnail(index)) {
    const QSize box = Grid.Cell - QSize(kRoomForShadow, kRoomForShadow);
    image = FitToImage(*thumbnail, box.expandedTo({1, 1}), PixelRatio, Enlarging::Never);
  }
  if (image.isNull()) return PaintPath(painter, cell, index);
  image.setDevicePixelRatio(1.0);
  const QRect place(cell.x() + (cell.width() - image.width()) / 2 - painter.Scaled(kOffset),
                    cell.y() + (cell.height() - image.height()) / 2 - painter.Scaled(kOffset), image.width(),
                    image.height());
  painter.GetPainter().drawImage(place.topLeft(), image);
  DrawDropShadow(painter, PictureId::PageThumbnailShadow, kShadowPiece, place);
}

void CGridPicture::PaintPath(CDevicePainter& painter, const QRect& cell, int index) {
  painter.Fill(cell, colours::kWindow);
  const QFont& font = GetFont(FontId::Band);
  const QString path = QFontMetrics(font).elidedText(ToQString(Photos.GetAsset(index).GetPath()),
                                                     Qt::ElideMiddle, Grid.Cell.width());
  painter.DrawText(cell, Qt::AlignCenter | Qt::TextSingleLine, font, colours::kInk, path);
}
