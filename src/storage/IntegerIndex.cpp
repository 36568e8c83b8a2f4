#include "storage/IntegerIndex.h"

#include <algorithm>

#include "storage/SlotSort.h"

CIntegerIndex::CIntegerIndex(Values values, std::vector<c4_Slot> slots) : Slots(std::move(slots)) {
  std::vector<KeyedSlot> keyed;
  keyed.reserve(Slots.size());
  for (const c4_Slot slot : Slots) keyed.push_back({MakeSortable(values[slot]), slot});
  SortKeyedSlots(keyed);
  for (std::size_t i = 0; i < keyed.size(); ++i) Slots[i] = keyed[i].Slot;
}

std::span<const c4_Slot> CIntegerIndex::Find(Values values, std::int32_t value) const {
  const auto first =
      std::partition_point(Slots.begin(), Slots.end(), [&](c4_Slot slot) { return values[slot] < value; });
  const auto last =
      std::partition_point(first, Slots.end(), [&](c4_Slot slot) { return values[slot] == value; });
  return {first, last};
}

std::vector<c4_Slot>::const_iterator CIntegerIndex::FindPlace(Values values, c4_Slot slot) const {
  const std::int32_t value = values[slot];
  return std::partition_point(Slots.begin(), Slots.end(), [&](c4_Slot other) {
    return values[other] != value ? values[other] < value : other < slot;
  });
}

void CIntegerIndex::Insert(Values values, c4_Slot slot) { Slots.insert(FindPlace(values, slot), slot); }

void CIntegerIndex::Erase(Values values, c4_Slot slot) {
  const auto place = FindPlace(values, slot);
  if (place != Slots.end() && *place == slot) Slots.erase(place);
}
