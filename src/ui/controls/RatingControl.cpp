#include "ui/controls/RatingControl.h"

#include <QKeyEvent>
#include <algorithm>
#include <cstddef>
#include <utility>

#include "base/Texts.h"
#include "ui/kit/Colours.h"
#include "ui/kit/DevicePainter.h"
#include "ui/kit/KeyFocus.h"
#include "ui/kit/PaintedGroup.h"
#include "ui/kit/QtText.h"
#include "ui/kit/ToolTips.h"

namespace {

constexpr int kStarWidth = 21;
constexpr int kStarImages = 3;
constexpr double kFocusRadius = 4;
constexpr int kCommandBeforeFirst = static_cast<int>(CommandId::RateByStar1) - 1;

class CRatingFace final : public CLeafFace, public QAccessibleValueInterface {
 public:
  explicit CRatingFace(CRatingControl& control) : CLeafFace(&control, QAccessible::Slider) {}

  QString text(QAccessible::Text text) const override {
    const auto tip = [] { return DivideTip(LoadCaptionAndTip(StringId::RatePhoto).Tip); };
    if (text == QAccessible::Description) return tip().Text;
    return text == QAccessible::Accelerator ? tip().Key : CLeafFace::text(text);
  }
  void* interface_cast(QAccessible::InterfaceType type) override {
    if (type == QAccessible::ValueInterface) return static_cast<QAccessibleValueInterface*>(this);
    return CLeafFace::interface_cast(type);
  }
  QVariant currentValue() const override {
    const auto* control = dynamic_cast<const CRatingControl*>(object());
    return control != nullptr ? control->GetShownStars() : 0;
  }
  void setCurrentValue(const QVariant& value) override {
    auto* control = dynamic_cast<CRatingControl*>(object());
    const int rating = std::clamp(value.toInt(), 0, CRatingControl::kStars);
    if (control != nullptr) DoAsClicked(*control, [control, rating] { control->Rate(rating); });
  }
  QVariant minimumValue() const override { return 0; }
  QVariant maximumValue() const override { return CRatingControl::kStars; }
  QVariant minimumStepSize() const override { return 1; }
};

}  // namespace

std::string GetStarsText(int count) {
  return count == 1 ? LoadText(StringId::OneStar) : FormatString(StringId::Stars, count);
}

CRatingControl::CRatingControl(CRatingOwner& owner, QWidget* parent) : QWidget(parent), Owner(owner) {
  setObjectName(QStringLiteral("Rating"));
  setAccessibleName(ToQString(LoadText(StringId::Rating)));
  setFixedSize(kSize);
  setFocusPolicy(Qt::TabFocus);
  CCommandTarget& target = *this;
  for (int i = 0; i < kStars; ++i) {
    auto& star = Stars[static_cast<std::size_t>(i)];
    star = std::make_unique<CPaintedButton>(target, this);
    star->SetTipString(StringId::RatePhoto);
    star->Create({i * kStarWidth, 0}, static_cast<CommandId>(kCommandBeforeFirst + 1 + i),
                 ButtonFlags::FireOnPress, PictureId::EmptyStar, kStarImages);
  }
  SetStars(0);
}

void CRatingControl::SetStars(int count) {
  for (int i = 0; i < kStars; ++i) {
    Stars[static_cast<std::size_t>(i)]->SetPicture(i < count ? PictureId::FilledStar : PictureId::EmptyStar,
                                                   kStarImages, false);
  }
  if (std::exchange(ShownStars, count) == count || !QAccessible::isActive()) return;
  QAccessibleValueChangeEvent event(this, count);
  QAccessible::updateAccessibility(&event);
}

QAccessibleInterface* CRatingControl::MakeFace() { return std::make_unique<CRatingFace>(*this).release(); }

void CRatingControl::Refresh() { SetStars(Owner.GetRating()); }

void CRatingControl::OnCommand(CommandId id) {
  const int star = static_cast<int>(id) - kCommandBeforeFirst;
  Rate(star == Owner.GetRating() ? star - 1 : star);
}

void CRatingControl::Rate(int rating) {
  Owner.SetRating(rating);
  Owner.Commit();
}

void CRatingControl::keyPressEvent(QKeyEvent* event) {
  const bool isLeft = event->key() == Qt::Key_Left;
  const bool isBare = (event->modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier;
  if (!isBare || (!isLeft && event->key() != Qt::Key_Right)) return event->ignore();
  if (OnKeyRating) OnKeyRating();
  const int rating = std::clamp(Owner.GetRating() + (isLeft ? -1 : 1), 0, kStars);
  if (rating != Owner.GetRating()) Rate(rating);
}

void CRatingControl::paintEvent(QPaintEvent*) {
  CDevicePainter painter(*this);
  painter.Fill(painter.GetArea(), colours::kPhotoBack);
  if (ShowsFocus(*this)) DrawFocusFrame(painter, painter.GetArea(), kFocusRadius);
}
