#include "ui/kit/Toolbar.h"

#include <QMouseEvent>
#include <algorithm>

#include "ui/kit/Colours.h"
#include "ui/kit/DevicePainter.h"
#include "ui/kit/NineParts.h"

namespace {

constexpr int kImages = 2;

}  // namespace

CToolbar::CToolbar(CCommandTarget& target, QWidget* parent) : QWidget(parent), Target(target) {
  setObjectName(QStringLiteral("Toolbar"));
  resize(width(), kToolbarHeight);
}

CPaintedButton& CToolbar::AddButton(int gap, CommandId id, StringId picture) {
  const auto number = picture == StringId{} ? static_cast<int>(id) : static_cast<int>(picture);
  auto& button = Items.emplace_back(Item{std::make_unique<CPaintedButton>(Target, this), gap}).Button;
  button->SetTipSide(TipSide::Below);
  button->Create({}, id, ButtonFlags::TipStays, static_cast<PictureId>(number), kImages);
  button->setVisible(true);
  LayOut();
  return *button;
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

std::vector<ToolbarItem> CToolbar::MeasureItems() const {
  std::vector<ToolbarItem> measured;
  for (const Item& item : Items) {
    ToolbarItem one{item.Gap, item.Button->GetImageSize().width(), {}};
    for (std::size_t i = 0; i < kCaptionFonts.size(); ++i) {
      one.CaptionWidths[i] = MeasureCaption(item.Button->GetText(), kCaptionFonts[i]).width();
    }
    measured.push_back(one);
  }
  return measured;
}

int CToolbar::GetContentWidth() const { return ::GetContentWidth(MeasureItems()); }

void CToolbar::LayOut() {
  const ToolbarPlan plan = ArrangeToolbar(MeasureItems(), width());
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
