#include "ui/pages/PhotoView.h"

#include <QPainter>
#include <QPointer>
#include <cmath>

#include "base/Texts.h"
#include "imaging/Image.h"
#include "imaging/ImageFile.h"
#include "ui/kit/Colours.h"
#include "ui/kit/FontTable.h"
#include "ui/kit/ImageConversion.h"
#include "ui/kit/Job.h"
#include "ui/kit/QtText.h"

namespace {

constexpr int kMargin = 10;
constexpr int kReloadDelay = 100;  // milliseconds that a new size must rest

}  // namespace

CPhotoView::CPhotoView(QWidget* parent) : QWidget(parent) {
  setObjectName(QStringLiteral("SlideVue"));
  setAccessibleName(QStringLiteral("Current photo"));
  setAttribute(Qt::WA_OpaquePaintEvent);
  ReloadTimer.setSingleShot(true);
  ReloadTimer.setInterval(kReloadDelay);
  connect(&ReloadTimer, &QTimer::timeout, this, [this] { Load(); });
}

void CPhotoView::SetPhoto(const std::string& path) {
  Path = path;
  Load();
}

QRect CPhotoView::GetPhotoArea() const { return rect().adjusted(kMargin, kMargin, -kMargin, -kMargin); }

void CPhotoView::Load() {
  Picture = {};
  const QSize area = GetPhotoArea().size();
  if (Path && !Path->empty() && !area.isEmpty()) {
    const double ratio = devicePixelRatioF();
    const auto image = LoadImageFile(*Path, static_cast<int>(std::ceil(area.width() * ratio)),
                                     static_cast<int>(std::ceil(area.height() * ratio)));
    if (image) Picture = FitToImage(*image, area, ratio, Enlarging::Allowed);
  }
  update();
}

void CPhotoView::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.fillRect(rect(), colours::kPage);
  if (!Path) return;
  if (Picture.isNull()) {
    painter.setFont(GetFont(FontId::EmptyPage));
    painter.setPen(colours::kInk);
    const StringId text = Path->empty() ? StringId::NoPhotosFound : StringId::UnableToDisplayPhoto;
    painter.drawText(rect(), Qt::AlignCenter, ToQString(LoadExpandedString(text)));
    return;
  }
  // Until the photo is loaded for a new size, the picture held is stretched.
  const QRect area = GetPhotoArea();
  QSize size = Picture.deviceIndependentSize().toSize();
  if (ReloadTimer.isActive()) {
    size.scale(area.size(), Qt::KeepAspectRatio);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
  }
  const QPoint corner(area.x() + (area.width() - size.width()) / 2,
                      area.y() + (area.height() - size.height()) / 2);
  painter.drawImage(QRect(corner, size), Picture);
}

void CPhotoView::resizeEvent(QResizeEvent*) { ReloadTimer.start(); }
