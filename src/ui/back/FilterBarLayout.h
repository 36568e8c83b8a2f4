#pragma once

#include <QRect>
#include <array>

inline constexpr int kFilterRows = 4;

/// Where the rows of the filter bar stand, in pixels of the layout. The bar's window, whose corner these
/// count from, is as wide as the panel, since its colour runs across that; the rows keep to its left.
struct FilterBarLayout {
  std::array<QRect, kFilterRows> Labels;
  std::array<QRect, kFilterRows> Controls;
};

int GetFilterBarHeight(int controlHeight);

/// `labelWidth` is the width of the widest label.
FilterBarLayout LayOutFilterBar(int labelWidth, int controlHeight);
