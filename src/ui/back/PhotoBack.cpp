#include "ui/back/PhotoBack.h"

#include <QPainterPath>

#include "base/Texts.h"
#include "catalog/StampList.h"
#include "ui/kit/Colours.h"
#include "ui/kit/DevicePainter.h"
#include "ui/kit/FontTable.h"
#include "ui/kit/QtText.h"

namespace {

constexpr double kCornerRadius = 5;
constexpr QRect kLabel(23, 24, 60, 15);
constexpr QPoint kStars(80, 21);

/// A panel lit from the top left.
void DrawPanel(QPainter& painter, const QRectF& area, double radius, const QColor& colour) {
  painter.setRenderHint(QPainter::Antialiasing);
  QPainterPath panel;
  panel.addRoundedRect(area, radius, radius);
  painter.fillPath(panel, colour);
  painter.setClipPath(panel);
  painter.setPen(QColor(255, 255, 255, 205));
  painter.drawPath(panel.translated(0.5, 0.5));
  painter.setPen(QColor(49, 53, 67, 51));
  painter.drawPath(panel.translated(-0.5, -0.5));
  painter.setClipping(false);
}

}  // namespace

CPhotoBack::CPhotoBack(QWidget* parent)
    : QWidget(parent), RatingControl(std::make_unique<CRatingControl>(*this, this)) {
  setObjectName(QStringLiteral("PhotoBack"));
  setAccessibleName(QStringLiteral("About the photo"));
  RatingControl->move(kStars);
  RatingControl->hide();
}

CPhotoBack::~CPhotoBack() = default;

void CPhotoBack::SetPhoto(const std::optional<CAssetRecord>& photo) {
  Photo = photo;
  RatingControl->setVisible(Photo.has_value());
  RatingControl->Refresh();
  update();
}

int CPhotoBack::GetRating() const {
  if (!Photo) return 0;
  const CStampList stamps = Photo->GetStamps(StampId::Rating);
  return stamps.Count() > 0 ? stamps.Get(0).GetNumber() : 0;
}

void CPhotoBack::SetRating(int value) {
  if (!Photo) return;
  CStampList stamps = Photo->GetStamps(StampId::Rating);
  if (value != 0) {
    stamps.SetNumber(value, 0);
  } else if (stamps.Count() > 0) {
    stamps.Remove(0);
  }
  Commit();
}

void CPhotoBack::Commit() {
  RatingControl->Refresh();
  if (OnStampChanged) OnStampChanged(StampId::Rating);
}

void CPhotoBack::paintEvent(QPaintEvent*) {
  CDevicePainter painter(*this);
  DrawPanel(painter.GetPainter(), painter.GetArea(), kCornerRadius * painter.GetPixelRatio(),
            colours::kPhotoBack);
  if (!Photo) return;
  const QRect label(painter.Scaled(kLabel.x()), painter.Scaled(kLabel.y()), painter.Scaled(kLabel.width()),
                    painter.Scaled(kLabel.height()));
  painter.DrawText(label, Qt::AlignLeft | Qt::AlignVCenter, GetFont(FontId::LabelItalic), colours::kInk,
                   ToQString(LoadExpandedString(StringId::Rating)));
}
