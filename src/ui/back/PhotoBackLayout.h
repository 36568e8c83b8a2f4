#pragma once

#include <QRect>
#include <QSize>
#include <array>

#include "ui/back/FieldForms.h"

/// Where the parts of the photo back stand, in pixels of the layout.

/// Above and below the lines of a field.
inline constexpr int kFieldPadding = 3;

/// The height of a field of so many lines.
constexpr int FieldHeight(int lines, int lineHeight) { return lines * lineHeight + 2 * kFieldPadding; }

struct PhotoBackMetrics {
  int ValueLine;   // height of a line of the values
  int FolderLine;  // height of a line of folder and format
  int RatingRow;   // height of the stars
};

/// How the fields make use of the room that they have.
struct FieldRoom {
  int TitleLines = 1;
  int CaptionLines = 1;
  int OuterMargin = 10;  // above and below the fields; negative where they have too little room
  int GroupGap = 0;      // below the title and below the date
  friend bool operator==(const FieldRoom&, const FieldRoom&) = default;
};
FieldRoom DivideRoom(int height, const PhotoBackMetrics& metrics);

struct PhotoBackLayout {
  FieldRoom Room;
  std::array<QRect, kFieldCount> Fields;  // as kFieldForms
};
PhotoBackLayout LayOutPhotoBack(QSize panel, int filterBarHeight, const PhotoBackMetrics& metrics);

/// The parts of a field, in its own coordinates.
struct FieldLayout {
  QRect Value;   // with room for the frame of the edit box
  QRect Button;  // empty without one
};
FieldLayout LayOutField(QSize field, int labelWidth, QSize button);
