#include "storage/SlotSort.h"

#include <algorithm>
#include <array>

#include "storage/Table.h"
#include "storage/TextOrder.h"

namespace {

constexpr std::size_t kSmall = 24;   // sorted by insertion
constexpr std::size_t kLarge = 512;  // from here on a counting pass for each byte is the cheapest

/// Texts are compared by chunks of this many bytes; the eighth byte of a key says how many are in use, so
/// that a text which ends stands before one that goes on with NUL.
constexpr std::size_t kChunk = 7;
/// Longer common beginnings than this many chunks are left to a plain sort.
constexpr std::size_t kMaximumDepth = 64;

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

std::uint64_t MakeTextKey(std::string_view text, std::size_t depth) {
  const std::size_t start = std::min(text.size(), depth * kChunk);
  const std::size_t count = std::min(text.size() - start, kChunk);
  std::uint64_t key = 0;
  for (std::size_t i = 0; i < kChunk; ++i) {
    key = (key << 8) | (i < count ? FoldByte(text[start + i]) : 0U);
  }
  return (key << 8) | count;
}

int CompareColumn(const c4_Table& table, const SortKey& key, c4_Slot left, c4_Slot right) {
  const auto column = table.FindColumn(key.Property);
  if (!column) return 0;
  const int order = table.CompareRows(*column, left, right);
  return key.Descending ? -order : order;
}

/// Sorts by one piece of the keys after the other: runs that are equal in one are sorted by the next.
class CSlotSorter {
 public:
  CSlotSorter(const c4_Table& table, const std::vector<SortKey>& keys) : Table(table), Keys(keys) {}

  void Sort(std::span<KeyedSlot> slots) { SortRun(slots, 0, 0); }

 private:
  struct Place {
    std::size_t Key;
    std::size_t Depth;
  };

  void SortRun(std::span<KeyedSlot> run, std::size_t key, std::size_t depth) {
    while (key < Keys.size() && !Table.FindColumn(Keys[key].Property)) ++key;
    if (run.size() < 2 || key == Keys.size()) return;
    const CColumn& column = Table.GetColumn(*Table.FindColumn(Keys[key].Property));
    if (column.Type == c4_Type::Bytes || depth == kMaximumDepth) {
      SortPlainly(run, key);
    } else if (column.Type == c4_Type::Text) {
      SortByText(run, column, {key, depth});
    } else {
      SortByIntegers(run, column, key);
    }
  }

  void SortPlainly(std::span<KeyedSlot> run, std::size_t firstKey) const {
    std::stable_sort(run.begin(), run.end(), [&](const KeyedSlot& left, const KeyedSlot& right) {
      for (std::size_t key = firstKey; key < Keys.size(); ++key) {
        const int order = CompareColumn(Table, Keys[key], left.Slot, right.Slot);
        if (order != 0) return order < 0;
      }
      return false;
    });
  }

  void SortByText(std::span<KeyedSlot> run, const CColumn& column, Place place) {
    const std::uint64_t flip = Keys[place.Key].Descending ? ~std::uint64_t{0} : 0;
    for (KeyedSlot& slot : run) slot.Key = MakeTextKey(column.Texts[slot.Slot], place.Depth) ^ flip;
    SortKeyedSlots(run);
    ForEachEqualRun(run, [&](std::span<KeyedSlot> equal) {
      const bool goesOn = ((equal[0].Key ^ flip) & 0xff) == kChunk;
      SortRun(equal, goesOn ? place.Key : place.Key + 1, goesOn ? place.Depth + 1 : 0);
    });
  }

  /// Two integers that follow each other are one key.
  void SortByIntegers(std::span<KeyedSlot> run, const CColumn& column, std::size_t key) {
    const std::uint32_t flip = Keys[key].Descending ? ~std::uint32_t{0} : 0;
    const CColumn* second = key + 1 < Keys.size() ? FindIntegers(Keys[key + 1].Property) : nullptr;
    for (KeyedSlot& slot : run) slot.Key = MakeSortable(column.Integers[slot.Slot]) ^ flip;
    if (second != nullptr) {
      const std::uint32_t secondFlip = Keys[key + 1].Descending ? ~std::uint32_t{0} : 0;
      for (KeyedSlot& slot : run) {
        slot.Key = (slot.Key << 32) | (MakeSortable(second->Integers[slot.Slot]) ^ secondFlip);
      }
    }
    SortKeyedSlots(run);
    const std::size_t next = second != nullptr ? key + 2 : key + 1;
    if (next == Keys.size()) return;
    ForEachEqualRun(run, [&](std::span<KeyedSlot> equal) { SortRun(equal, next, 0); });
  }

  const CColumn* FindIntegers(c4_Property property) const {
    const auto column = Table.FindColumn(property);
    if (!column || Table.GetColumn(*column).Type != c4_Type::Integer) return nullptr;
    return &Table.GetColumn(*column);
  }

  template <typename Action>
  static void ForEachEqualRun(std::span<KeyedSlot> slots, const Action& action) {
    for (std::size_t first = 0; first < slots.size();) {
      // What is done with a run overwrites its keys.
      const std::uint64_t key = slots[first].Key;
      std::size_t last = first + 1;
      while (last < slots.size() && slots[last].Key == key) ++last;
      if (last - first > 1) action(slots.subspan(first, last - first));
      first = last;
    }
  }

  const c4_Table& Table;
  const std::vector<SortKey>& Keys;
};

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

int CompareByKeys(const c4_Table& table, const std::vector<SortKey>& keys, c4_Slot left, c4_Slot right) {
  for (const SortKey& key : keys) {
    const int order = CompareColumn(table, key, left, right);
    if (order != 0) return order;
  }
  return 0;
}

std::vector<c4_Slot> SortSlots(const c4_Sequence& sequence, const std::vector<SortKey>& keys) {
  std::vector<KeyedSlot> keyed(sequence.GetSize());
  for (std::size_t position = 0; position < keyed.size(); ++position) {
    keyed[position] = {0, sequence.GetSlotAt(position)};
  }
  CSlotSorter(sequence.GetTable(), keys).Sort(keyed);
  std::vector<c4_Slot> slots;
  slots.reserve(keyed.size());
  for (const KeyedSlot& slot : keyed) slots.push_back(slot.Slot);
  return slots;
}
