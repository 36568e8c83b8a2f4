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
  int OuterMargin = 10;  // above and below the fields; negative where they take the panel's own margins
  int GroupGap = 0;      // below the title and below the date
  int Missing = 0;       // height that the fields need and don't have
  friend bool operator==(const FieldRoom&, const FieldRoom&) = default;
};
FieldRoom DivideRoom(int height, const PhotoBackMetrics& metrics);

/// A panel that is too low for its content scrolls over it.
struct PhotoBackLayout {
  FieldRoom Room;
  int ContentHeight;                      // of fields and filter bar, the panel's height or more
  std::array<QRect, kFieldCount> Fields;  // as kFieldForms
};
PhotoBackLayout LayOutPhotoBack(QSize panel, int filterBarHeight, const PhotoBackMetrics& metrics);

/// How far to scroll so that the span from `top` to `bottom` of the content shows in a panel of that height
/// that is scrolled by `offset`; the top of a span that is too high.
int ScrollToShow(int top, int bottom, int offset, int panelHeight);

/// The parts of a field, in its own coordinates.
struct FieldLayout {
  QRect Value;   // with room for the frame of the edit box
  QRect Button;  // empty without one
};
FieldLayout LayOutField(QSize field, int labelWidth, QSize button);
