#include "imaging/Image.h"

#include <algorithm>
#include <limits>

#include "imaging/JpegImage.h"
#include "imaging/Scaler.h"

namespace {

int CutToInt(double value) {
  constexpr double kLimit = std::numeric_limits<int>::max();
  return static_cast<int>(std::clamp(value, -kLimit, kLimit));
}

}  // namespace

double FitScaleOf(ImageSize size, int boxWidth, int boxHeight, bool allowEnlarging) {
  if (size.Width < 1 || size.Height < 1) return 1.0;
  const double horizontal = static_cast<double>(boxWidth) / size.Width;
  const double vertical = static_cast<double>(boxHeight) / size.Height;
  if (!allowEnlarging && horizontal >= 1.0 && vertical >= 1.0) return 1.0;
  return std::min(horizontal, vertical);
}

ImageSize CImage::ScaledSize(double scale) const {
  const ImageSize size = GetCurrentSize();
  return {CutToInt(std::max(size.Width * scale, 1.0)), CutToInt(std::max(size.Height * scale, 1.0))};
}

ImageSize CImage::Draw(const PixelBuffer& target, int x, int y, double scale) const {
  const ImageSize size = ScaledSize(scale);
  StretchPixels(GetSource(), target, x, y, size);
  return size;
}

void CImage::DrawOver(const PixelBuffer& target) const {
  StretchPixels(GetSource(), target, 0, 0, target.Size);
}

std::unique_ptr<CJpegImage> CImage::MakeFitted(int boxWidth, int boxHeight) const {
  const ImageSize size = GetSource().Size;
  if (std::min({size.Width, size.Height, boxWidth, boxHeight}) < 1) return nullptr;
  const double scale = FitScaleOf(size, boxWidth, boxHeight, false);
  auto fitted = std::make_unique<CJpegImage>(ScaledSize(scale));
  Draw(fitted->GetBuffer(), 0, 0, scale);
  return fitted;
}
