#include "ui/pages/GridPicture.h"

#include <QFontMetrics>
#include <algorithm>

#include "imaging/Image.h"
#include "imaging/PreparedPhoto.h"
#include "sets/ListPhotoSet.h"
#include "ui/kit/Colours.h"
#include "ui/kit/DevicePainter.h"
#include "ui/kit/FontTable.h"
#include "ui/kit/Pictures.h"
#include "ui/kit/QtText.h"

namespace {

constexpr QSize kThumbnail(kThumbnailBoxWidth, kThumbnailBoxHeight);  // the largest; it is never enlarged
constexpr int kShadowPiece = 4;
constexpr int kRoomForShadow = 5;  // of a cell's width and height
constexpr int kOffset = 1;         // to the upper left, so that picture and shadow together are in the middle

}  // namespace

void CGridPicture::SetForm(QSize page, const PhotoGrid& grid, double pixelRatio) {
  Grid = grid;
  PixelRatio = pixelRatio;
  Painted = 0;
  Sharp.clear();
  Image = QImage(ToDevicePixels(page.width(), pixelRatio), ToDevicePixels(page.height(), pixelRatio),
                 QImage::Format_RGB32);
  Image.fill(colours::kPage);
}

bool CGridPicture::EmptyFrom(int first) {
  if (Image.isNull() || first >= Painted) return false;
  CDevicePainter painter(Image, PixelRatio);
  for (int i = first; i < Painted; ++i) painter.Fill(painter.Scaled(Grid.GetCell(i)), colours::kPage);
  Painted = first;
  Sharp.resize(static_cast<std::size_t>(first));
  return true;
}

bool CGridPicture::IsComplete() const { return Image.isNull() || Painted >= Photos.GetCount(); }

QRect CGridPicture::PaintNext() {
  if (IsComplete()) return {};
  Sharp.push_back(false);
  return PaintCell(Painted++);
}

QRect CGridPicture::Repaint(int index) {
  if (Image.isNull() || index < 0 || index >= Painted) return {};
  Sharp[static_cast<std::size_t>(index)] = false;
  return PaintCell(index);
}

QRect CGridPicture::PaintSharp(int index, const QImage& picture) {
  if (Image.isNull() || index < 0 || index >= Painted) return {};
  Sharp[static_cast<std::size_t>(index)] = true;
  CDevicePainter painter(Image, PixelRatio);
  PaintPicture(painter, BeginCell(painter, index), picture);
  return Grid.GetCell(index);
}

QSize CGridPicture::GetPhotoBox() const {
  const QSize room = Grid.Cell - QSize(kRoomForShadow, kRoomForShadow);
  return room.boundedTo(kThumbnail).expandedTo({1, 1});
}

std::vector<int> CGridPicture::ListSoftCells() const {
  const QSize box = GetPhotoBox();
  const double scale =
      FitScaleOf({kThumbnail.width(), kThumbnail.height()}, box.width(), box.height(), false);
  if (scale * PixelRatio <= 1) return {};
  std::vector<int> cells;
  for (int i = 0; i < Painted; ++i) {
    const bool isOnView = ToDevicePixels(Grid.GetCell(i).top(), PixelRatio) < Image.height();
    if (isOnView && !Sharp[static_cast<std::size_t>(i)]) cells.push_back(i);
  }
  return cells;
}

QRect CGridPicture::PaintCell(int index) {
  CDevicePainter painter(Image, PixelRatio);
  const QRect cell = BeginCell(painter, index);
  if (const QImage picture = MakePicture(index); !picture.isNull()) {
    PaintPicture(painter, cell, picture);
  } else {
    PaintPath(painter, cell, index);
  }
  return Grid.GetCell(index);
}

/// Empties the cell, of which alone is painted then.
QRect CGridPicture::BeginCell(CDevicePainter& painter, int index) const {
  const QRect cell = painter.Scaled(Grid.GetCell(index));
  painter.GetPainter().setClipRect(cell);
  painter.Fill(cell, colours::kPage);
  return cell;
}

QImage CGridPicture::MakePicture(int index) {
  const CImage* const thumbnail = Photos.GetThumbnail(index);
  if (thumbnail == nullptr) return {};
  QImage picture = FitToImage(*thumbnail, GetPhotoBox(), PixelRatio, Enlarging::Never);
  picture.setDevicePixelRatio(1.0);
  return picture;
}

void CGridPicture::PaintPicture(CDevicePainter& painter, const QRect& cell, const QImage& picture) const {
  const QRect place(cell.x() + (cell.width() - picture.width()) / 2 - painter.Scaled(kOffset),
                    cell.y() + (cell.height() - picture.height()) / 2 - painter.Scaled(kOffset),
                    picture.width(), picture.height());
  painter.GetPainter().drawImage(place.topLeft(), picture);
  DrawDropShadow(painter, PictureId::PageThumbnailShadow, kShadowPiece, place);
}

void CGridPicture::PaintPath(CDevicePainter& painter, const QRect& cell, int index) {
  painter.Fill(cell, colours::kWindow);
  const QFont& font = GetFont(FontId::Band);
  const QString path = QFontMetrics(font).elidedText(ToQString(Photos.GetAsset(index).GetPath()),
                                                     Qt::ElideMiddle, Grid.Cell.width());
  painter.DrawText(cell, Qt::AlignCenter | Qt::TextSingleLine, font, colours::kInk, path);
}
