#include "ui/kit/Toolbar.h"

#include <QMouseEvent>
#include <algorithm>

#include "ui/kit/Colours.h"
#include "ui/kit/DevicePainter.h"
#include "ui/kit/NineParts.h"
#include "ui/kit/Pictures.h"
#include "ui/kit/ToolTips.h"

namespace {

constexpr int kImages = 2;

/// Makes the place large enough for a picture and its caption.
void MakeRoom(ToolbarItem& place, PictureId picture) {
  place.PictureWidth = std::max(place.PictureWidth, GetPictureSize(picture).width() / kImages);
  const QString caption = LoadCaptionAndTip(static_cast<StringId>(picture)).Caption;
  for (std::size_t i = 0; i < kCaptionFonts.size(); ++i) {
    place.CaptionWidths[i] =
        std::max(place.CaptionWidths[i], MeasureCaption(caption, kCaptionFonts[i]).width());
  }
}

}  // namespace

CToolbar::CToolbar(CCommandTarget& target, QWidget* parent) : QWidget(parent), Target(target) {
  setObjectName(QStringLiteral("Toolbar"));
  resize(width(), kToolbarHeight);
}

CPaintedButton& CToolbar::AddButton(int gap, CommandId id, StringId picture, PictureId other) {
  const auto first =
      static_cast<PictureId>(picture == StringId{} ? static_cast<int>(id) : static_cast<int>(picture));
  Item& item = Items.emplace_back(Item{std::make_unique<CPaintedButton>(Target, this), {gap, 0, {}}});
  MakeRoom(item.Place, first);
  if (other != PictureId{}) MakeRoom(item.Place, other);
  CPaintedButton& button = *item.Button;
  button.SetTipSide(TipSide::Below);
  button.Create({}, id, ButtonFlags::TipStays, first, kImages);
  button.setVisible(true);
  LayOut();
  return button;
}

CPaintedButton* CToolbar::GetButton(CommandId id) {
  const auto found = std::find_if(Items.begin(), Items.end(),
                                  [&](const Item& item) { return item.Button->GetCommand() == id; });
  return found == Items.end() ? nullptr : found->Button.get();
}

void CToolbar::SetFullScreenLook(bool on) {
  FullScreenLook = on;
  update();
}

std::vector<ToolbarItem> CToolbar::GetPlaces() const {
  std::vector<ToolbarItem> places;
  for (const Item& item : Items) places.push_back(item.Place);
  return places;
}

int CToolbar::GetContentWidth() const { return ::GetContentWidth(GetPlaces()); }

void CToolbar::LayOut() {
  const ToolbarPlan plan = ArrangeToolbar(GetPlaces(), width());
  for (std::size_t i = 0; i < Items.size(); ++i) {
    CPaintedButton& button = *Items[i].Button;
    const ToolbarPlace& place = plan.Places[i];
    const int height = button.GetImageSize().height();
    button.setGeometry(place.Left, (kToolbarHeight - height) / 2, place.Width, height);
    button.SetCaptionForm(plan.CaptionFont, place.CaptionWidth);
  }
}

void CToolbar::resizeEvent(QResizeEvent*) { LayOut(); }

void CToolbar::mouseDoubleClickEvent(QMouseEvent* event) { event->accept(); }

void CToolbar::paintEvent(QPaintEvent*) {
  CDevicePainter painter(*this);
  auto parts = DivideIntoNine(painter.GetArea(), painter.Scaled(kPagePanel.Corner));
  const auto at = [&](NinePart part) -> QRect& { return parts[static_cast<std::size_t>(part)]; };
  if (!FullScreenLook) {
    // The sides go up to the page above.
    for (const auto& [side, top] : {std::pair(NinePart::Left, NinePart::TopLeft),
                                    {NinePart::Middle, NinePart::Top},
                                    {NinePart::Right, NinePart::TopRight}}) {
      at(side).setTop(0);
      at(top) = QRect();
    }
  }
  painter.Fill(at(NinePart::Middle), colours::kPage);
  for (int i = 0; i < 9; ++i) {
    const auto part = static_cast<NinePart>(i);
    if (part != NinePart::Middle) DrawOneOfNine(painter, kPagePanel, part, at(part));
  }
}
