#pragma once

#include <QPixmap>
#include <QSize>

#include "resources/PictureIds.h"

class QIcon;

/// The size, in pixels of the layout, that a picture is drawn for. Empty for an id without a picture.
QSize GetPictureSize(PictureId id);

/// The picture in its own size, rendered sharp for a screen of that pixel ratio, once for each ratio.
/// Null for an id without a picture. Window thread.
QPixmap GetPicture(PictureId id, double pixelRatio);

/// The program's icon in the sizes that desktops ask for.
QIcon MakeProgramIcon();
