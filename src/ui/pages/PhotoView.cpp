#include "ui/pages/PhotoView.h"

#include <QMouseEvent>
#include <cmath>
#include <utility>

#include "base/Texts.h"
#include "catalog/StampList.h"
#include "imaging/Image.h"
#include "imaging/ImageFile.h"
#include "ui/kit/Colours.h"
#include "ui/kit/DevicePainter.h"
#include "ui/kit/FontTable.h"
#include "ui/kit/Job.h"
#include "ui/kit/PaintedGroup.h"
#include "ui/kit/Pictures.h"
#include "ui/kit/QtText.h"
#include "ui/kit/WaitCursor.h"
#include "ui/pages/PhotoViewLayout.h"

namespace {

constexpr int kMargin = 10;
constexpr int kShadowPiece = 8;
constexpr bool kEnlarge = true;  // a photo smaller than the page is scaled up

struct ToldPhoto {
  QString Title;
  QString Description;
};

/// The photo's caption, and what it is marked for.
QString DescribePhoto(const CAssetRecord& photo) {
  std::string text = photo.GetStamps(StampId::Note).Get(0).GetText();
  const std::string marks = DescribeMarks(photo);
  if (!text.empty() && !marks.empty()) text += ", ";
  return ToQString(text + marks);
}

class CPhotoFace final : public CLeafFace {
 public:
  explicit CPhotoFace(CPhotoView& view) : CLeafFace(&view, QAccessible::Graphic) {}

  QString text(QAccessible::Text text) const override {
    const auto* view = dynamic_cast<const CPhotoView*>(object());
    if (view == nullptr || (text != QAccessible::Name && text != QAccessible::Description)) return {};
    const auto& photo = view->GetPhoto();
    if (!photo) return text == QAccessible::Name ? view->GetMissingText() : QString();
    const ToldPhoto& told = Last.Ask([&]() -> ToldPhoto {
      return {ToQString(photo->GetTitle()), DescribePhoto(*photo)};
    });
    if (text == QAccessible::Name) return told.Title;
    const QString missing = view->isVisible() ? view->GetMissingText() : QString();
    return missing.isEmpty() ? told.Description : missing;
  }

 private:
  mutable CLastAnswer<ToldPhoto> Last;
};

bool Suits(const CImage* image, QSize view) {
  return image &&
         !NeedsReload({image->GetNaturalSize(), image->GetCurrentSize(), image->GetRequestedSize()}, view);
}

}  // namespace

CPhotoView::CPhotoView(QWidget* parent) : QWidget(parent) {
  setObjectName(QStringLiteral("SlideVue"));
  setAttribute(Qt::WA_OpaquePaintEvent);
}

CPhotoView::~CPhotoView() = default;

QAccessibleInterface* CPhotoView::MakeFace() { return std::make_unique<CPhotoFace>(*this).release(); }

void CPhotoView::SetPhoto(const std::optional<CAssetRecord>& photo) {
  Photo = photo;
  Image.reset();
  IsTooLarge = false;
  ShownFlags = {};
  UpdateFlags();
  Reload(false);
  update();
  TellTools(*this, QAccessible::NameChanged);
  TellDescription();
  if (CountsAsFocused(*this)) TellFocus();
}

void CPhotoView::OnPhotoRenamed() {
  if (Photo) Path = Photo->GetPath();
}

void CPhotoView::UpdateFlags() {
  decltype(ShownFlags) flags{};
  for (std::size_t slot = 0; Photo && slot < flags.size(); ++slot) {
    flags[slot] = Photo->GetFlag(kPhotoMarks[slot].Flag);
  }
  if (flags == ShownFlags) return;
  ShownFlags = flags;
  update();
  TellDescription();
}

void CPhotoView::TellDescription() { TellTools(*this, QAccessible::DescriptionChanged); }

void CPhotoView::SetLook(const Look& look) {
  if (look == TheLook) return;
  TheLook = look;
  Fit();
}

QSize CPhotoView::GetDeviceSize() const {
  const double ratio = devicePixelRatioF();
  return {ToDevicePixels(width(), ratio), ToDevicePixels(height(), ratio)};
}

int CPhotoView::GetDeviceMargin() const {
  return TheLook.Margin ? ToDevicePixels(kMargin, devicePixelRatioF()) : 0;
}

void CPhotoView::Reload(bool force) {
  if (!Photo || (!isVisible() && !force)) {
    Fit();
    return;
  }
  const QSize view = GetDeviceSize();
  if (force || !Suits(Image.get(), view)) {
    const CWaitCursor waiting;
    if (!IsJobRunning()) Path = Photo->GetPath();  // a job owns the catalog
    Image = force ? nullptr : Ahead.Take(Path);
    if (!Suits(Image.get(), view)) {
      Image.reset();
      Image = LoadImageFile(Path, view.width(), view.height(), &IsTooLarge);
    }
  }
  Fit();
  LookAhead();
}

void CPhotoView::SetNeighbours(std::vector<std::string> paths) {
  Neighbours = std::move(paths);
  LookAhead();
}

bool CPhotoView::IsReady(const CAssetRecord& photo) const {
  return isVisible() && Ahead.Has(photo.GetPath());
}

void CPhotoView::LookAhead() {
  if (!isVisible() || IsJobRunning()) return Ahead.GiveUp();
  const QSize view = GetDeviceSize();
  Ahead.Prepare(Neighbours, {view.width(), view.height()});
}

std::unique_ptr<CImage> CPhotoView::TakeImage() {
  if (!Image && !isVisible()) Reload(true);
  return std::move(Image);
}

void CPhotoView::SetImage(std::unique_ptr<CImage> image) {
  Image = std::move(image);
  Fit();
}

void CPhotoView::Fit() {
  Picture = {};
  update();
  if (!Image || Image->GetCurrentSize() == ImageSize()) return;
  const QSize view = GetDeviceSize();
  const int margin = GetDeviceMargin();
  const QRect area = PhotoArea(view, margin);
  if (area.isEmpty()) return;
  const ImageSize size = Image->ScaledSize(Image->FitScale(area.width(), area.height(), kEnlarge));
  Picture = QImage(size.Width, size.Height, QImage::Format_RGB32);
  if (Picture.isNull()) return;
  Image->DrawOver({Picture.bits(), Picture.bytesPerLine(), size, 4});
  Place = PlacePhoto(view, margin, Picture.size(), TheLook.CentreVertically);
}

QString CPhotoView::GetMissingText() const {
  if (!Picture.isNull()) return {};
  const StringId reason = IsTooLarge ? StringId::PhotoTooLarge : StringId::UnableToDisplayPhoto;
  return ToQString(LoadExpandedString(Photo ? reason : StringId::NoPhoto));
}

void CPhotoView::paintEvent(QPaintEvent*) {
  CDevicePainter painter(*this);
  painter.Fill(painter.GetArea(), colours::kPage);
  if (Picture.isNull()) {
    painter.DrawText(painter.GetArea(), Qt::AlignCenter, GetFont(FontId::EmptyPage), colours::kInk,
                     GetMissingText());
    return;
  }
  painter.GetPainter().drawImage(Place.topLeft(), Picture);
  if (TheLook.Margin) DrawDropShadow(painter, PictureId::PhotoShadow, kShadowPiece, Place);
  const std::vector<QRect> marks = PlaceMarks(Place, ShownFlags, painter.GetPixelRatio());
  for (std::size_t slot = 0; slot < marks.size(); ++slot) {
    if (marks[slot].isEmpty()) continue;
    painter.Draw(marks[slot].topLeft(), GetPicture(kPhotoMarks[slot].PhotoPicture, painter.GetPixelRatio()));
  }
}

bool CPhotoView::event(QEvent* event) {
  const bool handled = QWidget::event(event);
  if (event->type() == QEvent::ScreenChangeInternal) Reload(false);  // the pixel ratio may be another now
  return handled;
}

void CPhotoView::resizeEvent(QResizeEvent*) { Reload(false); }

void CPhotoView::showEvent(QShowEvent*) { Reload(false); }

void CPhotoView::hideEvent(QHideEvent*) { LookAhead(); }

void CPhotoView::changeEvent(QEvent* event) {
  // The user comes back from elsewhere, where a photo that couldn't be shown may have been put right.
  if (event->type() == QEvent::ActivationChange && !Image && isActiveWindow()) Reload(false);
  QWidget::changeEvent(event);
}

void CPhotoView::mousePressEvent(QMouseEvent* event) {
  event->ignore();  // the main window takes the focus
  Drag.Forget();
  const QPoint place = (event->position() * devicePixelRatioF()).toPoint();
  const bool isOnPhoto = !Picture.isNull() && QRect(Place.topLeft(), Picture.size()).contains(place);
  // In full-screen mode there is nowhere to drag it to.
  if (event->button() == Qt::LeftButton && isOnPhoto && TheLook.Margin) {
    Drag.Press(event->position().toPoint());
  }
}

void CPhotoView::mouseMoveEvent(QMouseEvent* event) {
  event->ignore();
  if (Photo && Drag.BeginsWith(*event)) Drag.Run(Photo->GetPath(), Photo->LoadThumbnail().get());
}

void CPhotoView::mouseDoubleClickEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton && OnDoubleClick) OnDoubleClick();
}
