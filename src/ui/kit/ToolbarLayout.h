#pragma once

#include <array>
#include <cstddef>
#include <vector>

#include "ui/kit/FontTable.h"

/// How a row of buttons makes do with the width it has. Captions stand under their buttons, so each button
/// is as wide as its caption and a margin. Where that is too much the row gives up, in this order: what the
/// pictures have beyond a least margin, the gaps between groups, the size of the letters, and only then the
/// ends of the longest captions. All widths are pixels of the layout.

inline constexpr int kToolbarHeight = 55;

/// The letters of the captions, from the usual ones down.
inline constexpr std::array kCaptionFonts = {FontId::Note, FontId::Band, FontId::Small};

struct ToolbarItem {
  int Gap = 0;           // in front of the button
  int PictureWidth = 0;  // of the widest image that it shows
  std::array<int, kCaptionFonts.size()> CaptionWidths{};
};

struct ToolbarPlace {
  int Left = 0;
  int Width = 0;
  int CaptionWidth = 0;  // what the caption may take
};

struct ToolbarPlan {
  FontId CaptionFont = kCaptionFonts.front();
  std::vector<ToolbarPlace> Places;  // one for each item
};

/// The width of all buttons and gaps as they are drawn.
int GetContentWidth(const std::vector<ToolbarItem>& items);

/// The buttons as a group in the middle of a row of that width.
ToolbarPlan ArrangeToolbar(const std::vector<ToolbarItem>& items, int rowWidth);
