#include "ui/kit/ImageConversion.h"

#include "imaging/Image.h"

QImage FitToImage(const CImage& image, QSize box, double pixelRatio, Enlarging enlarging) {
  if (image.GetCurrentSize() == ImageSize() || box.isEmpty()) return {};
  const double layoutScale = image.FitScale(box.width(), box.height(), enlarging == Enlarging::Allowed);
  const ImageSize size = image.ScaledSize(layoutScale * pixelRatio);
  QImage result(size.Width, size.Height, QImage::Format_RGB32);
  if (result.isNull()) return {};
  image.DrawOver({result.bits(), result.bytesPerLine(), size, 4});
  result.setDevicePixelRatio(pixelRatio);
  return result;
}
