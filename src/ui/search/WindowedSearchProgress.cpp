#include "ui/search/WindowedSearchProgress.h"

#include "imaging/Image.h"
#include "ui/kit/Job.h"
#include "ui/kit/Pictures.h"

namespace {

/// The small picture of a cell, for a screen of that pixel ratio; null if there is none.
QImage DecodeForCell(std::span<const std::uint8_t> thumbnail, double pixelRatio) {
  if (thumbnail.empty()) return {};
  try {
    CJpegImage image;
    image.LoadMemory(thumbnail, 0, 0);
    return FitToImage(image, ProgressCell(false, 0).size(), pixelRatio, Enlarging::Never);
  } catch (...) {
    return {};  // not worth a search, not even when memory is short
  }
}

}  // namespace

CWindowedSearchProgress::CWindowedSearchProgress(bool showSplash, bool showAtStart, QWidget* parent)
    : Window(showSplash, parent) {
  if (showAtStart) Window.ShowCentered();
}

bool CWindowedSearchProgress::SetTotal(int count) {
  Total = count;
  RunOnWindowThread([&] {
    Window.ShowCentered();
    Window.SetTotal(count);
    PixelRatio = Window.devicePixelRatioF();
  });
  return !IsStopped();
}

bool CWindowedSearchProgress::Progress(const PhotoProgress& photo) {
  const bool isLast = photo.Index + 1 == Total;
  if (!Throttle.IsDue(std::chrono::steady_clock::now()) && !isLast) return !IsStopped();
  const QImage picture = photo.ShowThumbnail ? DecodeForCell(photo.Thumbnail, PixelRatio) : QImage();
  RunOnWindowThread([&] {
    Window.ShowCentered();
    Window.SetCurrent(photo.Index, picture);
    PixelRatio = Window.devicePixelRatioF();
  });
  return !IsStopped();
}
