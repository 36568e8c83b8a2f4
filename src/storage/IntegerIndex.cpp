#include "storage/IntegerIndex.h"

#include <algorithm>
#include <limits>

#include "storage/KeyedSlots.h"

CIntegerIndex::CIntegerIndex(std::span<const std::int32_t> values, const std::vector<c4_Slot>& slots) {
  std::vector<KeyedSlot> keyed;
  keyed.reserve(slots.size());
  for (const c4_Slot slot : slots) keyed.push_back({MakeSortable(values[slot]), slot});
  SortKeyedSlots(keyed);
  Entries.reserve(keyed.size());
  for (const KeyedSlot& slot : keyed) Entries.push_back({values[slot.Slot], slot.Slot});
}

std::span<const CIntegerIndex::Entry> CIntegerIndex::Find(std::int32_t value) const {
  const auto first = std::lower_bound(Entries.begin(), Entries.end(), Entry{value, 0});
  // Mostly a few rows, so the end is sought in steps that double.
  std::ptrdiff_t reach = 1;
  const auto left = Entries.end() - first;
  while (reach < left && (first + reach)->Value == value) reach *= 2;
  const Entry last{value, std::numeric_limits<c4_Slot>::max()};
  return {first, std::upper_bound(first, first + std::min(reach, left), last)};
}

void CIntegerIndex::Insert(const Entry& entry) {
  Entries.insert(std::lower_bound(Entries.begin(), Entries.end(), entry), entry);
}

void CIntegerIndex::Erase(const Entry& entry) {
  const auto place = std::lower_bound(Entries.begin(), Entries.end(), entry);
  if (place != Entries.end() && *place == entry) Entries.erase(place);
}
