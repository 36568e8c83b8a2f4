#include "ui/kit/Pictures.h"

#include <QHash>
#include <QIcon>
#include <QPainter>
#include <QPixmapCache>
#include <QSvgRenderer>
#include <cmath>

#include "imaging/Image.h"

namespace {

QString GetResourcePath(PictureId id) {
  return QStringLiteral(":/pictures/%1.svg").arg(static_cast<int>(id));
}

/// Renders a picture over the whole of a pixmap of `size` device pixels.
QPixmap Render(QSvgRenderer& renderer, const QSize& size) {
  QPixmap pixmap(size);
  pixmap.fill(Qt::transparent);
  QPainter painter(&pixmap);
  painter.setRenderHint(QPainter::Antialiasing);
  renderer.render(&painter, QRectF(QPointF(), QSizeF(size)));
  return pixmap;
}

}  // namespace

QSize GetPictureSize(PictureId id) {
  static QHash<int, QSize> known;  // reading one takes longer than painting it
  const auto found = known.constFind(static_cast<int>(id));
  if (found != known.constEnd()) return *found;
  return *known.insert(static_cast<int>(id), QSvgRenderer(GetResourcePath(id)).defaultSize());
}

QPixmap GetPicture(PictureId id, double pixelRatio) { return GetPictureImage(id, 0, 1, pixelRatio); }

QPixmap GetPictureImage(PictureId id, int index, int count, double pixelRatio) {
  const QSize whole = GetPictureSize(id);
  const QSize size(whole.width() / count, whole.height());
  QPixmap pixmap =
      GetPicturePart(id, {QPoint(index * size.width(), 0), size}, (QSizeF(size) * pixelRatio).toSize());
  pixmap.setDevicePixelRatio(pixelRatio);
  return pixmap;
}

QPixmap GetPicturePart(PictureId id, const QRect& part, QSize size) {
  const QString key = QStringLiteral("%1 %2,%3,%4,%5 %6x%7")
                          .arg(static_cast<int>(id))
                          .arg(part.x())
                          .arg(part.y())
                          .arg(part.width())
                          .arg(part.height())
                          .arg(size.width())
                          .arg(size.height());
  QPixmap pixmap;
  if (QPixmapCache::find(key, &pixmap)) return pixmap;
  QSvgRenderer renderer(GetResourcePath(id));
  if (size.isEmpty() || !renderer.isValid()) return {};
  renderer.setViewBox(part);
  pixmap = Render(renderer, size);
  QPixmapCache::insert(key, pixmap);
  return pixmap;
}

QIcon MakeProgramIcon() {
  QSvgRenderer renderer(GetResourcePath(PictureId::ProgramIcon));
  QIcon icon;
  for (const int side : {16, 24, 32, 48, 64, 128}) icon.addPixmap(Render(renderer, {side, side}));
  return icon;
}

QImage FitToImage(const CImage& image, QSize box, double pixelRatio, Enlarging enlarging) {
  if (image.GetCurrentSize() == ImageSize() || box.isEmpty()) return {};
  const double layoutScale = image.FitScale(box.width(), box.height(), enlarging == Enlarging::Allowed);
  const ImageSize size = image.ScaledSize(layoutScale * pixelRatio);
  QImage result(size.Width, size.Height, QImage::Format_RGB32);
  if (result.isNull()) return {};
  image.DrawOver({result.bits(), result.bytesPerLine(), size, 4});
  result.setDevicePixelRatio(pixelRatio);
  return result;
}
