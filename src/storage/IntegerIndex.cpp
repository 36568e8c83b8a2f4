#include "storage/IntegerIndex.h"

#include <algorithm>
#include <iterator>

#include "storage/KeyedSlots.h"

CIntegerIndex::CIntegerIndex(std::span<const std::int32_t> values, const std::vector<c4_Slot>& slots) {
  std::vector<KeyedSlot> keyed;
  keyed.reserve(slots.size());
  for (const c4_Slot slot : slots) keyed.push_back({MakeSortable(values[slot]), slot});
  SortKeyedSlots(keyed);
  Entries.reserve(keyed.size());
  for (const KeyedSlot& slot : keyed) Entries.push_back({values[slot.Slot], slot.Slot});
}

/// Numbers are given out one after the other, so a row stands near where its value lies between the lowest
/// and the highest: from there the search goes on in steps that double.
CIntegerIndex::Place CIntegerIndex::FindFirst(std::int32_t value) const {
  const auto begin = Entries.begin();
  const std::ptrdiff_t size = std::ssize(Entries);
  if (size == 0 || value <= begin->Value) return begin;
  const std::int64_t lowest = begin->Value;
  const std::int64_t highest = Entries.back().Value;
  if (value > highest) return Entries.end();
  const double share = static_cast<double>(value - lowest) / static_cast<double>(highest - lowest);
  const auto guess = static_cast<std::ptrdiff_t>(share * static_cast<double>(size - 1));
  // Below first no entry is sought, from last on each is.
  std::ptrdiff_t first = guess;
  std::ptrdiff_t last = guess;
  for (std::ptrdiff_t step = 1; first > 0 && (begin + first)->Value >= value; step *= 2) {
    last = first;
    first = std::max(first - step, std::ptrdiff_t{0});
  }
  for (std::ptrdiff_t step = 1; last < size && (begin + last)->Value < value; step *= 2) {
    first = last;
    last = std::min(last + step, size);
  }
  return std::partition_point(begin + first, begin + last,
                              [value](const Entry& entry) { return entry.Value < value; });
}

std::span<const CIntegerIndex::Entry> CIntegerIndex::Find(std::int32_t value) const {
  const auto first = FindFirst(value);
  auto last = first;
  // Mostly a few rows, so the end is sought in steps that double, too.
  for (std::ptrdiff_t step = 1; last != Entries.end() && last->Value == value; step *= 2) {
    last += std::min(step, Entries.end() - last);
  }
  return {first,
          std::partition_point(first, last, [value](const Entry& entry) { return entry.Value == value; })};
}

void CIntegerIndex::Insert(const Entry& entry) {
  Entries.insert(std::lower_bound(Entries.begin(), Entries.end(), entry), entry);
}

void CIntegerIndex::Erase(const Entry& entry) {
  const auto place = std::lower_bound(Entries.begin(), Entries.end(), entry);
  if (place != Entries.end() && *place == entry) Entries.erase(place);
}
