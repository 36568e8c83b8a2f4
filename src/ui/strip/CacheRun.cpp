#include "ui/strip/CacheRun.h"

#include <algorithm>

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
