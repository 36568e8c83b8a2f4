#pragma once

#include <QRect>
#include <QSize>
#include <array>

inline constexpr int kFilterRows = 4;

/// Where the filter bar and what is in it stand on their panel, in pixels of the layout from the panel's
/// corner. The bar's colour runs across the whole panel.
struct FilterBarLayout {
  QRect Ground;  // what is coloured
  QRect Bar;
  std::array<QRect, kFilterRows> Labels;
  std::array<QRect, kFilterRows> Controls;
};

int GetFilterBarHeight(int controlHeight);

/// `labelWidth` is the width of the widest label.
FilterBarLayout LayOutFilterBar(QSize panel, int labelWidth, int controlHeight);
