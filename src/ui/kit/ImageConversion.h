#pragma once

#include <QImage>
#include <QSize>

class CImage;

enum class Enlarging { Never, Allowed };

/// The picture fitted into a box of layout pixels, with its proportions, as sharp as a screen of that pixel
/// ratio can show it. Null if the image holds no pixels. Any thread.
QImage FitToImage(const CImage& image, QSize box, double pixelRatio, Enlarging enlarging);
