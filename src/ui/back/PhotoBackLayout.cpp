#include "ui/back/PhotoBackLayout.h"

#include <algorithm>

namespace {

// The area of the fields and of the filter bar in the panel.
constexpr int kAreaLeft = 11;
constexpr int kAreaRight = 255;  // of both
constexpr int kAreaTop = 11;
constexpr int kAboveFilterBar = 10;
constexpr int kFilterBarLeft = 10;
constexpr int kSideMargin = 10;
constexpr int kRowLeft = 2;

constexpr int kOuterMargin = 10;
constexpr int kMostExtraLines = 7;
constexpr int kLargestGap = 20;
constexpr int kBelowRating = 5;

constexpr int kButtonRight = 1;  // from the field's right edge; the picture leaves another pixel free
constexpr int kBeforeButton = 2;

/// The smallest number of lines that `extra` lines more can be given to.
void GiveLines(int extra, FieldRoom& room) {
  if (extra >= 2) room.TitleLines = 2;
  if (extra >= 1) room.CaptionLines = extra >= 3 ? 3 : 2;
}

}  // namespace

FieldRoom DivideRoom(int height, const PhotoBackMetrics& metrics) {
  const int row = FieldHeight(1, metrics.ValueLine);
  const int folderRow = FieldHeight(1, metrics.FolderLine);
  FieldRoom room;
  const int left = height - (metrics.RatingRow + 2 * (folderRow + 3 * row));
  if (left < 2 * kOuterMargin) {
    room.OuterMargin = left / 2;
    return room;
  }
  GiveLines(std::min((left - 2 * kOuterMargin) / row, kMostExtraLines), room);
  const int used =
      metrics.RatingRow + 2 * kOuterMargin + 2 * folderRow + (room.TitleLines + room.CaptionLines + 4) * row;
  room.GroupGap = std::min((height - used) / 2, kLargestGap);
  return room;
}

PhotoBackLayout LayOutPhotoBack(QSize panel, int filterBarHeight, const PhotoBackMetrics& metrics) {
  PhotoBackLayout layout;
  const int barTop = panel.height() - filterBarHeight;
  layout.FilterBar = QRect(kFilterBarLeft, barTop, kAreaRight - kFilterBarLeft, filterBarHeight);

  const int areaHeight = barTop - kAboveFilterBar - kAreaTop;
  layout.Room = DivideRoom(areaHeight, metrics);

  const int left = kAreaLeft + kSideMargin + kRowLeft;
  const int width = kAreaRight - kAreaLeft - 2 * kSideMargin;
  int y = kAreaTop + layout.Room.OuterMargin;
  const auto place = [&](FieldRow row, int lines, int lineHeight) {
    const int height = FieldHeight(lines, lineHeight);
    layout.Fields[static_cast<std::size_t>(row)] = QRect(left, y, width, height);
    y += height;
  };
  place(FieldRow::Rating, 1, metrics.ValueLine);
  y += kBelowRating + metrics.RatingRow - FieldHeight(1, metrics.ValueLine);
  place(FieldRow::Title, layout.Room.TitleLines, metrics.ValueLine);
  y += layout.Room.GroupGap;
  place(FieldRow::Caption, layout.Room.CaptionLines, metrics.ValueLine);
  for (const FieldRow row : {FieldRow::Subjects, FieldRow::Event, FieldRow::Place, FieldRow::Date}) {
    place(row, 1, metrics.ValueLine);
  }
  y += layout.Room.GroupGap;
  place(FieldRow::Folder, 1, metrics.FolderLine);
  place(FieldRow::Format, 1, metrics.FolderLine);
  return layout;
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
