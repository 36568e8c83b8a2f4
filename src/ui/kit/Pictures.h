#pragma once

#include <QImage>
#include <QPixmap>
#include <QRect>
#include <QSize>

#include "resources/PictureIds.h"

class QIcon;
class CImage;

/// The size, in pixels of the layout, that a picture is drawn for. Empty for an id without a picture.
QSize GetPictureSize(PictureId id);

/// The picture in its own size, rendered sharp for a screen of that pixel ratio, once for each ratio.
/// Null for an id without a picture. Window thread.
QPixmap GetPicture(PictureId id, double pixelRatio);

/// One image of a picture that holds `count` of them side by side, each of equal width.
QPixmap GetPictureImage(PictureId id, int index, int count, double pixelRatio);

/// A part of a picture, given in the picture's own pixels of the layout, stretched to `size` device pixels:
/// drawn anew in that size, not enlarged. Null for an empty size.
QPixmap GetPicturePart(PictureId id, const QRect& part, QSize size);

/// The program's icon in the sizes that desktops ask for.
QIcon MakeProgramIcon();

enum class Enlarging { Never, Allowed };

/// The picture fitted into a box of layout pixels, with its proportions, as sharp as a screen of that pixel
/// ratio can show it. Null if the image holds no pixels. Any thread.
QImage FitToImage(const CImage& image, QSize box, double pixelRatio, Enlarging enlarging);
