#include "ui/back/FilterBarLayout.h"

namespace {

constexpr int kBarLeft = 10;
constexpr int kBarRight = 255;
constexpr int kAroundRows = 16;
constexpr int kAboveRows = kAroundRows / 2;
constexpr int kBetweenRows = 1;
constexpr int kLabelOffset = 2;
constexpr int kBetweenLabelAndControl = 10;
constexpr int kBesideControls = 8;

}  // namespace

int GetFilterBarHeight(int controlHeight) { return kAroundRows + kFilterRows * controlHeight; }

FilterBarLayout LayOutFilterBar(int labelWidth, int controlHeight) {
  const int left = kBarLeft + labelWidth + kBetweenLabelAndControl;
  const int width = kBarRight - kBesideControls - left;
  FilterBarLayout layout;
  int top = kAboveRows;
  for (std::size_t i = 0; i < kFilterRows; ++i) {
    layout.Labels[i] = QRect(kBarLeft, top + kLabelOffset, labelWidth, controlHeight - kLabelOffset);
    layout.Controls[i] = QRect(left, top, width, controlHeight);
    top += controlHeight + kBetweenRows;
  }
  return layout;
}
