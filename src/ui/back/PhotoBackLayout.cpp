#include "ui/back/PhotoBackLayout.h"

#include <algorithm>

namespace {

// The area of the fields in the panel.
constexpr int kAreaLeft = 11;
constexpr int kAreaRight = 255;
constexpr int kAreaTop = 11;
constexpr int kAboveFilterBar = 10;
constexpr int kSideMargin = 10;
constexpr int kRowLeft = 2;

constexpr int kOuterMargin = 10;
constexpr int kTightestMargin = -5;  // the row of the stars takes five pixels more than its height
constexpr int kMostExtraLines = 7;
constexpr int kLargestGap = 20;
constexpr int kBelowRating = 5;

constexpr int kSmallRows = std::ranges::count_if(kFieldForms, &FieldForm::IsSmall);
constexpr int kTextRows = static_cast<int>(kFieldCount) - 1 - kSmallRows;  // all but that of the stars
constexpr int kGaps = std::ranges::count_if(kFieldForms, &FieldForm::GapBelow);

constexpr int kButtonRight = 1;  // from the field's right edge; the picture leaves another pixel free
constexpr int kBeforeButton = 2;

/// Shares out lines besides the first of each: the first to the caption, the second to the title.
void GiveLines(int extra, FieldRoom& room) {
  if (extra >= 2) room.TitleLines = 2;
  if (extra >= 1) room.CaptionLines = extra >= 3 ? 3 : 2;
}

int CountLines(StampId fact, const FieldRoom& room) {
  switch (fact) {
    case StampId::Title:
      return room.TitleLines;
    case StampId::Note:
      return room.CaptionLines;
    default:
      return 1;
  }
}

}  // namespace

FieldRoom DivideRoom(int height, const PhotoBackMetrics& metrics) {
  const int row = FieldHeight(1, metrics.ValueLine);
  const int folderRow = FieldHeight(1, metrics.FolderLine);
  FieldRoom room;
  const int left = height - (metrics.RatingRow + kSmallRows * folderRow + kTextRows * row);
  if (left < 2 * kOuterMargin) {
    room.OuterMargin = std::max(left / 2, kTightestMargin);
    room.Missing = std::max(2 * kTightestMargin - left, 0);
    return room;
  }
  GiveLines(std::min((left - 2 * kOuterMargin) / row, kMostExtraLines), room);
  const int extraLines = room.TitleLines - 1 + room.CaptionLines - 1;
  room.GroupGap = std::min((left - 2 * kOuterMargin - extraLines * row) / kGaps, kLargestGap);
  return room;
}

PhotoBackLayout LayOutPhotoBack(QSize panel, int filterBarHeight, const PhotoBackMetrics& metrics) {
  PhotoBackLayout layout;
  layout.Room = DivideRoom(panel.height() - filterBarHeight - kAboveFilterBar - kAreaTop, metrics);
  layout.ContentHeight = panel.height() + layout.Room.Missing;

  const int left = kAreaLeft + kSideMargin + kRowLeft;
  const int width = kAreaRight - kAreaLeft - 2 * kSideMargin;
  int y = kAreaTop + layout.Room.OuterMargin;
  for (std::size_t i = 0; i < kFieldCount; ++i) {
    const FieldForm& form = kFieldForms[i];
    const int lines = CountLines(form.Fact, layout.Room);
    const int height = FieldHeight(lines, form.IsSmall() ? metrics.FolderLine : metrics.ValueLine);
    layout.Fields[i] = QRect(left, y, width, height);
    y += form.Fact == StampId::Rating ? metrics.RatingRow + kBelowRating : height;
    if (form.GapBelow) y += layout.Room.GroupGap;
  }
  return layout;
}

int ScrollToShow(int top, int bottom, int offset, int panelHeight) {
  return std::min(std::max(offset, bottom - panelHeight), top);
}

FieldLayout LayOutField(QSize field, int labelWidth, QSize button) {
  FieldLayout layout;
  int right = field.width();
  if (!button.isEmpty()) {
    layout.Button =
        QRect(QPoint(right - kButtonRight - button.width(), (field.height() - button.height()) / 2), button);
    right = layout.Button.left() - kBeforeButton;
  }
  layout.Value = QRect(labelWidth, 0, std::max(right - labelWidth, 0), field.height());
  return layout;
}
