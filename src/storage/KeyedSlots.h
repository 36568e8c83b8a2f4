#pragma once

#include <cstdint>
#include <span>

#include "storage/Row.h"

/// A slot and the part of its sort key that is compared now.
struct KeyedSlot {
  std::uint64_t Key;
  c4_Slot Slot;
};

/// An unsigned number in the same order as the integer.
constexpr std::uint32_t MakeSortable(std::int32_t value) {
  return static_cast<std::uint32_t>(value) ^ 0x80000000U;
}

/// Sorts by Key; equal ones keep their order. Linear if they are in order already, and nearly so if not.
void SortKeyedSlots(std::span<KeyedSlot> slots);

/// Calls `action` with each run of two or more slots of one key. The action may change the keys.
template <typename Action>
void ForEachEqualRun(std::span<KeyedSlot> slots, const Action& action) {
  for (std::size_t first = 0; first < slots.size();) {
    const std::uint64_t key = slots[first].Key;
    std::size_t last = first + 1;
    while (last < slots.size() && slots[last].Key == key) ++last;
    if (last - first > 1) action(slots.subspan(first, last - first));
    first = last;
  }
}
