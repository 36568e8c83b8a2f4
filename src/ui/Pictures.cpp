#include "ui/Pictures.h"

#include <QIcon>
#include <QPainter>
#include <QPixmapCache>
#include <QSvgRenderer>
#include <cmath>

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

QSize GetPictureSize(PictureId id) { return QSvgRenderer(GetResourcePath(id)).defaultSize(); }

QPixmap GetPicture(PictureId id, double pixelRatio) {
  const QString key = QStringLiteral("%1@%2").arg(GetResourcePath(id)).arg(pixelRatio);
  QPixmap pixmap;
  if (QPixmapCache::find(key, &pixmap)) return pixmap;
  QSvgRenderer renderer(GetResourcePath(id));
  if (!renderer.isValid()) return {};
  pixmap = Render(renderer, (QSizeF(renderer.defaultSize()) * pixelRatio).toSize());
  pixmap.setDevicePixelRatio(pixelRatio);
  QPixmapCache::insert(key, pixmap);
  return pixmap;
}

QIcon MakeProgramIcon() {
  QSvgRenderer renderer(GetResourcePath(PictureId::ProgramIcon));
  QIcon icon;
  for (const int side : {16, 24, 32, 48, 64, 128}) icon.addPixmap(Render(renderer, {side, side}));
  return icon;
}
