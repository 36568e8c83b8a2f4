#include "storage/KeyedSlots.h"

#include <algorithm>
#include <array>
#include <vector>

namespace {

constexpr std::size_t kSmall = 24;   // sorted by insertion
constexpr std::size_t kLarge = 512;  // from here on a counting pass for each byte is the cheapest

bool KeyIsBelow(const KeyedSlot& left, const KeyedSlot& right) { return left.Key < right.Key; }

void SortByInsertion(std::span<KeyedSlot> slots) {
  for (std::size_t i = 1; i < slots.size(); ++i) {
    const KeyedSlot moving = slots[i];
    std::size_t hole = i;
    for (; hole > 0 && moving.Key < slots[hole - 1].Key; --hole) slots[hole] = slots[hole - 1];
    slots[hole] = moving;
  }
}

/// One stable pass over the byte at `shift`.
void DistributeByByte(std::span<const KeyedSlot> from, std::span<KeyedSlot> to, int shift) {
  std::array<std::size_t, 256> starts{};
  for (const KeyedSlot& slot : from) ++starts[(slot.Key >> shift) & 0xff];
  std::size_t next = 0;
  for (std::size_t& start : starts) {
    const std::size_t count = start;
    start = next;
    next += count;
  }
  for (const KeyedSlot& slot : from) to[starts[(slot.Key >> shift) & 0xff]++] = slot;
}

/// Radix sort from the lowest byte up. Bytes in which all keys agree cost nothing.
void SortByBytes(std::span<KeyedSlot> slots) {
  std::uint64_t differing = 0;
  for (const KeyedSlot& slot : slots) differing |= slot.Key ^ slots[0].Key;
  std::vector<KeyedSlot> buffer(slots.size());
  std::span<KeyedSlot> from = slots;
  std::span<KeyedSlot> to = buffer;
  for (int shift = 0; shift < 64; shift += 8) {
    if (((differing >> shift) & 0xff) == 0) continue;
    DistributeByByte(from, to, shift);
    std::swap(from, to);
  }
  if (from.data() != slots.data()) std::copy(from.begin(), from.end(), slots.begin());
}

}  // namespace

void SortKeyedSlots(std::span<KeyedSlot> slots) {
  if (std::is_sorted(slots.begin(), slots.end(), KeyIsBelow)) return;
  if (slots.size() <= kSmall) {
    SortByInsertion(slots);
  } else if (slots.size() < kLarge) {
    std::stable_sort(slots.begin(), slots.end(), KeyIsBelow);
  } else {
    SortByBytes(slots);
  }
}
