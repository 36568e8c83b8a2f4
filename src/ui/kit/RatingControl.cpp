#include "ui/kit/RatingControl.h"

#include <cstddef>

#include "base/Texts.h"
#include "ui/kit/Colours.h"
#include "ui/kit/DevicePainter.h"
#include "ui/kit/QtText.h"

namespace {

constexpr int kStarWidth = 21;
constexpr int kStarImages = 3;
constexpr int kCommandBeforeFirst = static_cast<int>(CommandId::RateByStar1) - 1;

}  // namespace

CRatingControl::CRatingControl(CRatingOwner& owner, QWidget* parent) : QWidget(parent), Owner(owner) {
  setObjectName(QStringLiteral("Rating"));
  setAccessibleName(ToQString(LoadText(StringId::Rating)));
  setFixedSize(kSize);
  CCommandTarget& target = *this;
  for (int i = 0; i < kStars; ++i) {
    auto& star = Stars[static_cast<std::size_t>(i)];
    star = std::make_unique<CPaintedButton>(target, this);
    star->SetTipString(StringId::RatePhoto);
    star->Create({i * kStarWidth, 0}, static_cast<CommandId>(kCommandBeforeFirst + 1 + i),
                 ButtonFlags::FireOnPress, PictureId::EmptyStar, kStarImages);
    star->setAccessibleName(
        ToQString(i == 0 ? LoadText(StringId::OneStar) : FormatString(StringId::Stars, i + 1)));
  }
  SetStars(0);
}

void CRatingControl::SetStars(int count) {
  for (int i = 0; i < kStars; ++i) {
    Stars[static_cast<std::size_t>(i)]->SetPicture(i < count ? PictureId::FilledStar : PictureId::EmptyStar,
                                                   kStarImages, false);
  }
}

void CRatingControl::Refresh() { SetStars(Owner.GetRating()); }

void CRatingControl::OnCommand(CommandId id) {
  const int star = static_cast<int>(id) - kCommandBeforeFirst;
  Owner.SetRating(star == Owner.GetRating() ? star - 1 : star);
  Owner.Commit();
}

void CRatingControl::paintEvent(QPaintEvent*) {
  CDevicePainter painter(*this);
  painter.Fill(painter.GetArea(), colours::kPhotoBack);
}
