#include "ui/strip/StripCache.h"

#include <cstring>

#include "base/Exceptions.h"
#include "ui/kit/DevicePainter.h"

void CStripCache::SetForm(const StripMetrics& metrics, int visibleCount) {
  const CacheRun run(visibleCount);
  QImage image(metrics.Pitch * run.GetRoom() + metrics.SeparatorWidth, metrics.Height, QImage::Format_RGB32);
  if (image.isNull()) throw CError("Could not create strip cache");
  Metrics = metrics;
  Run = run;
  Image = std::move(image);
}

void CStripCache::Extend(int count, CacheSide side, const PaintCell& paint) {
  const CacheRun::Growth growth = Run.Extend(count, side);
  if (growth.Count == 0) return;
  Shift(growth.Shift * Metrics.Pitch);
  CDevicePainter painter(Image, Metrics.PixelRatio);
  try {
    for (int slot = growth.FirstSlot; slot < growth.FirstSlot + growth.Count; ++slot) {
      paint(painter, slot * Metrics.Pitch, slot - Run.GetBefore());
      ++PaintedCells;
    }
  } catch (...) {
    Run.Clear();  // what the slots hold isn't known any more
    throw;
  }
}

void CStripCache::Repaint(int distance, const PaintPart& paint) {
  const int slot = Run.FindSlot(distance);
  if (slot < 0) return;
  CDevicePainter painter(Image, Metrics.PixelRatio);
  paint(painter, slot * Metrics.Pitch + Metrics.SeparatorWidth);
}

QRect CStripCache::GetHeldArea() const {
  const int cells = Run.GetBefore() + Run.GetAfter();
  if (cells <= 0) return {};
  return {0, 0, cells * Metrics.Pitch + Metrics.SeparatorWidth, Metrics.Height};
}

void CStripCache::Shift(int columns) {
  const int way = columns < 0 ? -columns : columns;
  if (way == 0 || way >= Image.width()) return;
  constexpr std::size_t kPixel = 4;
  const std::size_t skipped = static_cast<std::size_t>(way) * kPixel;
  const std::size_t moved = static_cast<std::size_t>(Image.width() - way) * kPixel;
  for (int y = 0; y < Image.height(); ++y) {
    uchar* const row = Image.scanLine(y);
    std::memmove(columns > 0 ? row + skipped : row, columns > 0 ? row : row + skipped, moved);
  }
}
