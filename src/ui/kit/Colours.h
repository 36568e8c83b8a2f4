#pragma once

#include <QColor>

/// The colours that windows share. Fixed: the interface looks the same on every desktop.
namespace colours {

inline constexpr QColor kWindow(161, 163, 165);     // behind everything
inline constexpr QColor kCell(186, 188, 190);       // cells of the strip
inline constexpr QColor kPage(221, 223, 225);       // around the large photo
inline constexpr QColor kPhotoBack(238, 240, 241);  // the panel at the right
inline constexpr QColor kInk(49, 53, 67);           // texts and strokes
inline constexpr QColor kOutline(127, 131, 139);    // of plates
inline constexpr QColor kSelection(255, 240, 2);    // frame of what is selected
inline constexpr QColor kTip(255, 255, 204);        // behind tips
inline constexpr QColor kProgress(128, 128, 255);   // filled part of the search's bar
inline constexpr QColor kEmptyCell(240, 240, 240);  // a cell of the progress window without a picture

// Three shades of a plate from top to bottom, at rest and pressed.
inline constexpr QColor kPlate[] = {{252, 252, 253}, {240, 241, 243}, {223, 226, 229}};
inline constexpr QColor kPressedPlate[] = {{185, 188, 192}, {201, 204, 207}, {214, 217, 219}};

}  // namespace colours
