#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "storage/Sequence.h"

/// The slots of a table ordered by the values of one integer column, equal ones by slot: 4 bytes a row.
/// `values` is that column, by slot. A row must be erased before its value changes and put in again after.
class CIntegerIndex {
 public:
  using Values = std::span<const std::int32_t>;

  /// `slots` are ascending.
  CIntegerIndex(Values values, std::vector<c4_Slot> slots);

  std::span<const c4_Slot> Find(Values values, std::int32_t value) const;
  void Insert(Values values, c4_Slot slot);
  void Erase(Values values, c4_Slot slot);

  template <typename IsGone>
  void EraseIf(const IsGone& isGone) {
    std::erase_if(Slots, isGone);
  }

 private:
  std::vector<c4_Slot>::const_iterator FindPlace(Values values, c4_Slot slot) const;

  std::vector<c4_Slot> Slots;
};
