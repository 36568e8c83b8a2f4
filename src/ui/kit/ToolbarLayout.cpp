#include "ui/kit/ToolbarLayout.h"

#include <algorithm>
#include <limits>
#include <numeric>

namespace {

constexpr int kRowEdge = 2;       // beside the outer buttons
constexpr int kLeastMargin = 2;   // with the room for its copy, a blank between two captions
constexpr int kLeastGap = 4;      // between groups of buttons
constexpr int kLeastButton = 26;  // an icon of 20 and the ends of its plate

/// What a row grants its buttons.
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
