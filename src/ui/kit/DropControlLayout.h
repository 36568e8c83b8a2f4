#pragma once

#include <QRect>
#include <QSize>

/// The three pieces that the picture of a drop control is cut into, side by side.
struct DropSkinPieces {
  QRect Left;
  QRect Middle;  // stretched
  QRect Right;
};

/// The pieces of one image of the picture, by its position in the picture.
DropSkinPieces CutDropSkin(int image);

/// Where they are painted, with an image of `pixelRatio` times its own size over a control of `size`. All
/// device pixels.
DropSkinPieces LayOutDropSkin(QSize size, double pixelRatio);

/// Where the control's text stands, in pixels of the layout.
QRect GetDropTextArea(QSize control, bool listOpen);

/// The heights of a row of the list and of the control, for the height of a line of its first font.
int GetDropRowHeight(int lineHeight);
int GetDropControlHeight(int lineHeight);
