#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "storage/Sequence.h"

/// The slots of a table ordered by the values of one integer column, equal ones by slot: 8 bytes a row. The
/// values stand beside the slots, so that a search doesn't run through the table's memory.
class CIntegerIndex {
 public:
  struct Entry {
    std::int32_t Value;
    c4_Slot Slot;
    friend bool operator==(const Entry&, const Entry&) = default;
    friend bool operator<(const Entry& left, const Entry& right) {
      return left.Value != right.Value ? left.Value < right.Value : left.Slot < right.Slot;
    }
  };

  CIntegerIndex(std::span<const std::int32_t> values, const std::vector<c4_Slot>& slots);

  /// The entries of a value, ascending by slot.
  std::span<const Entry> Find(std::int32_t value) const;
  void Insert(const Entry& entry);
  void Erase(const Entry& entry);

  template <typename IsGone>
  void EraseIf(const IsGone& isGone) {
    std::erase_if(Entries, [&](const Entry& entry) { return isGone(entry.Slot); });
  }

 private:
  using Place = std::vector<Entry>::const_iterator;
  Place FindFirst(std::int32_t value) const;

  std::vector<Entry> Entries;
};
