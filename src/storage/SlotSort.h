#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "storage/Sequence.h"

/// A slot and the part of its sort key that is being looked at.
struct KeyedSlot {
  std::uint64_t Key;
  c4_Slot Slot;
};

/// An integer as a number without sign, in the same order.
constexpr std::uint32_t MakeSortable(std::int32_t value) {
  return static_cast<std::uint32_t>(value) ^ 0x80000000U;
}

/// Sorts by Key; equal ones keep their order. Linear if they are in order already.
void SortKeyedSlots(std::span<KeyedSlot> slots);

/// Below, equal to or above 0.
int CompareByKeys(const c4_Table& table, const std::vector<SortKey>& keys, c4_Slot left, c4_Slot right);

/// The slots of a sequence in the order of the keys, equal ones in the order of the sequence.
std::vector<c4_Slot> SortSlots(const c4_Sequence& sequence, const std::vector<SortKey>& keys);
