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

FilterBarLayout LayOutFilterBar(QSize panel, int labelWidth, int controlHeight) {
  const int height = GetFilterBarHeight(controlHeight);
  const int top = panel.height() - height;
  FilterBarLayout layout;
  layout.Ground = QRect(0, top, panel.width(), height);
  layout.Bar = QRect(kBarLeft, top, kBarRight - kBarLeft, height);
  const int controls = layout.Bar.left() + labelWidth + kBetweenLabelAndControl;
  const int controlWidth = kBarRight - kBesideControls - controls;
  for (int i = 0; i < kFilterRows; ++i) {
    const int row = top + kAboveRows + i * (controlHeight + kBetweenRows);
    const auto position = static_cast<std::size_t>(i);
    layout.Labels[position] =
        QRect(layout.Bar.left(), row + kLabelOffset, labelWidth, controlHeight - kLabelOffset);
    layout.Controls[position] = QRect(controls, row, controlWidth, controlHeight);
  }
  return layout;
}
