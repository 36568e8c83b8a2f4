#include "ui/controls/Toolbar.h"

#include <QMouseEvent>
#include <algorithm>
#include <limits>
#include <numeric>

#include "ui/kit/Colours.h"
#include "ui/kit/DevicePainter.h"
#include "ui/kit/Pictures.h"
#include "ui/kit/ToolTips.h"

namespace {

constexpr int kRowEdge = 2;       // beside the outer buttons
constexpr int kLeastMargin = 2;   // with the room for its copy, a blank between two captions
constexpr int kLeastGap = 4;      // between groups of buttons
constexpr int kLeastButton = 26;  // an icon of 20 and the ends of its plate

/// What the width of a row allows its buttons.
struct Grant {
  std::size_t Font = 0;  // index of kCaptionFonts
  int Margin = std::numeric_limits<int>::max() / 2;
  int GapCut = 0;  // taken from each gap
  int WidestCaption = std::numeric_limits<int>::max() / 2;
};

ToolbarPlace PlaceButton(const ToolbarItem& item, const Grant& grant) {
  const int caption = std::min(item.CaptionWidths[grant.Font], grant.WidestCaption);
  return {0, std::min(item.PictureWidth, std::max(caption + grant.Margin, kLeastButton)), caption};
}

int GetGap(const ToolbarItem& item, const Grant& grant) {
  return std::max(std::min(item.Gap, kLeastGap), item.Gap - grant.GapCut);
}

int GetWidth(const std::vector<ToolbarItem>& items, const Grant& grant) {
  return std::accumulate(items.begin(), items.end(), 0, [&](int sum, const ToolbarItem& item) {
    return sum + GetGap(item, grant) + PlaceButton(item, grant).Width;
  });
}

/// The largest value from `least` to `most` of one part of the grant with which all fits; `least` if none.
/// The width grows with the value.
int FindLargest(const std::vector<ToolbarItem>& items, Grant grant, int Grant::*part, int least, int most,
                int room) {
  int value = most;
  const auto fits = [&] {
    grant.*part = value;
    return GetWidth(items, grant) <= room;
  };
  while (value > least && !fits()) --value;
  return value;
}

/// The most that fits with letters of that font; with `fits` false the least.
Grant FindGrant(const std::vector<ToolbarItem>& items, std::size_t font, int room, bool& fits) {
  Grant grant;
  grant.Font = font;
  int widestMargin = kLeastMargin;
  int widestGap = 0;
  for (const ToolbarItem& item : items) {
    widestMargin = std::max(widestMargin, item.PictureWidth - item.CaptionWidths[font]);
    widestGap = std::max(widestGap, item.Gap);
  }
  grant.Margin = FindLargest(items, grant, &Grant::Margin, kLeastMargin, widestMargin, room);
  while (grant.GapCut < widestGap && GetWidth(items, grant) > room) ++grant.GapCut;
  fits = GetWidth(items, grant) <= room;
  return grant;
}

Grant FindGrant(const std::vector<ToolbarItem>& items, int room) {
  Grant grant;
  bool fits = false;
  for (std::size_t font = 0; font < kCaptionFonts.size() && !fits; ++font) {
    grant = FindGrant(items, font, room, fits);
  }
  if (fits) return grant;
  int widestCaption = 0;
  for (const ToolbarItem& item : items) {
    widestCaption = std::max(widestCaption, item.CaptionWidths[grant.Font]);
  }
  grant.WidestCaption = FindLargest(items, grant, &Grant::WidestCaption, 0, widestCaption, room);
  return grant;
}

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

int GetContentWidth(const std::vector<ToolbarItem>& items) { return GetWidth(items, Grant{}); }

ToolbarPlan ArrangeToolbar(const std::vector<ToolbarItem>& items, int rowWidth) {
  const Grant grant = FindGrant(items, rowWidth - 2 * kRowEdge);
  ToolbarPlan plan{kCaptionFonts[grant.Font], {}};
  int left = (rowWidth - GetWidth(items, grant)) / 2;
  for (const ToolbarItem& item : items) {
    ToolbarPlace place = PlaceButton(item, grant);
    place.Left = left + GetGap(item, grant);
    left = place.Left + place.Width;
    plan.Places.push_back(place);
  }
  return plan;
}

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
  button.TakeFocusByTab();
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

std::vector<GroupPart> CToolbar::ListParts() const {
  std::vector<GroupPart> parts;
  for (const Item& item : Items) parts.push_back({.Widget = item.Button.get()});
  return parts;
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
