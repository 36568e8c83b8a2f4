#include "ui/strip/StripCache.h"

#include <algorithm>
#include <cstring>

#include "base/Exceptions.h"
#include "ui/kit/DevicePainter.h"

CacheRun::Growth CacheRun::Extend(int count, CacheSide side) {
  if (count <= 0) return {};
  count = std::min(count, GetRoom());
  const int excess = std::max(0, count - (GetRoom() - Before - After));
  if (side == CacheSide::Before) {
    After -= excess;
    Before += count;
    return {count, 0, count};
  }
  const int firstSlot = Before + After - excess;
  Before -= excess;
  After += count;
  return {-excess, firstSlot, count};
}

void CacheRun::MoveBase(int delta) {
  Before += delta;
  After -= delta;
  if (Before < 0 || After < 0) Clear();
}

int CacheRun::FindSlot(int distance) const {
  const int slot = Before + distance;
  return slot >= 0 && slot < Before + After ? slot : -1;
}

int CacheRun::GetMissing(CacheSide side, int delta) const {
  const int half = VisibleCount / 2;
  return side == CacheSide::Before ? std::max(0, half - Before - std::min(delta, 0))
                                   : std::max(0, half + 1 - After + std::max(delta, 0));
}

std::optional<CacheSide> CacheRun::FindIdleSide(int current, int setCount) const {
  const int half = VisibleCount / 2;
  const bool aheadComplete = After + current >= setCount + half;
  const bool behindComplete = current - Before <= -half;
  if (!aheadComplete && After < VisibleCount) return CacheSide::After;
  if (!behindComplete && Before < VisibleCount) return CacheSide::Before;
  if (!aheadComplete && Before + After < GetRoom()) return CacheSide::After;
  return std::nullopt;
}

void CStripCache::SetForm(const StripMetrics& metrics, int visibleCount) {
  const CacheRun run(visibleCount);
  QImage image(metrics.Pitch * run.GetRoom() + metrics.SeparatorWidth, metrics.Height, QImage::Format_RGB32);
  if (image.isNull()) throw CError("Could not create strip cache");
  Cells.SetMetrics(metrics);
  Metrics = metrics;
  Run = run;
  Image = std::move(image);
}

void CStripCache::SetPhotoSet(const CPhotoSet* set) {
  Cells.SetPhotoSet(set);
  Run.Clear();
}

void CStripCache::Clear(int base) {
  Run.Clear();
  SharpCells.clear();
  Base = base;
}

void CStripCache::MoveBase(int delta) {
  Run.MoveBase(delta);
  Base += delta;
}

void CStripCache::Extend(int count, CacheSide side) {
  const CacheRun::Growth growth = Run.Extend(count, side);
  if (growth.Count == 0) return;
  Shift(growth.Shift * Metrics.Pitch);
  CDevicePainter painter(Image, Metrics.PixelRatio);
  try {
    for (int slot = growth.FirstSlot; slot < growth.FirstSlot + growth.Count; ++slot) {
      const int index = Base + slot - Run.GetBefore();
      SharpCells.erase(index);
      Cells.PaintCell(painter, slot * Metrics.Pitch + Metrics.SeparatorWidth, index, GetHotMarkOf(index));
      ++PaintedCells;
    }
  } catch (...) {
    Run.Clear();  // what the slots hold isn't known any more
    throw;
  }
}

/// The left edge of a cell's frame; false if the cell isn't held.
bool CStripCache::FindFrame(int index, int& left) const {
  const int slot = Run.FindSlot(index - Base);
  left = slot * Metrics.Pitch + Metrics.SeparatorWidth;
  return slot >= 0;
}

void CStripCache::RepaintPhoto(int index) {
  int left = 0;
  if (!FindFrame(index, left)) return;
  SharpCells.erase(index);
  CDevicePainter painter(Image, Metrics.PixelRatio);
  Cells.PaintPhoto(painter, left, index);
}

void CStripCache::PaintSharp(int index, const QImage& picture) {
  int left = 0;
  if (!FindFrame(index, left)) return;
  CDevicePainter painter(Image, Metrics.PixelRatio);
  Cells.PaintPicture(painter, left, picture);
  SharpCells.insert(index);
}

std::vector<int> CStripCache::ListSoftCells(int reach) const {
  std::vector<int> cells;
  const auto look = [&](int index) {
    if (Cells.IsPhoto(index) && Run.FindSlot(index - Base) >= 0 && !SharpCells.contains(index)) {
      cells.push_back(index);
    }
  };
  look(Base);
  for (int distance = 1; distance <= reach; ++distance) {
    look(Base + distance);
    look(Base - distance);
  }
  return cells;
}

void CStripCache::RepaintLabel(int index) {
  int left = 0;
  if (!FindFrame(index, left)) return;
  CDevicePainter painter(Image, Metrics.PixelRatio);
  Cells.PaintLabel(painter, left, index);
}

void CStripCache::RepaintMarks(int index) {
  int left = 0;
  if (!FindFrame(index, left)) return;
  CDevicePainter painter(Image, Metrics.PixelRatio);
  Cells.PaintMarks(painter, left, index, GetHotMarkOf(index));
}

bool CStripCache::SetHotMark(int index, int mark) {
  if (index == HotIndex && mark == HotMark) return false;
  const int before = std::exchange(HotIndex, index);
  HotMark = mark;
  RepaintMarks(before);
  RepaintMarks(index);
  return true;
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
