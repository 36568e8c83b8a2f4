#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "storage/TableRows.h"

/// The former values of the rows of a table that were changed since the last commit.
class CTableHistory {
 public:
  /// `rows` must be as the last commit holds them.
  explicit CTableHistory(const CTableRows& rows) : OldSlots(rows.GetSlotCount()) {}

  // To be called before the change.

  void RememberValue(const CTableRows& rows, std::size_t column, c4_Slot slot);
  void RememberRow(const CTableRows& rows, c4_Slot slot);
  /// Of all rows at once.
  void RememberAll(CTableRows rows);
  /// A change for which nothing needs to be remembered: a row or a column was added.
  void Touch() { Touched = true; }
  bool IsTouched() const { return Touched; }

  /// Brings back the rows as the last commit held them. Columns that were added since stay, with empty
  /// values.
  void Undo(CTableRows& rows);

 private:
  /// How to undo one step: the value to put back, or that the row was removed.
  struct OldValue {
    std::uint32_t Column;  // kRowRemoved for a removal
    c4_Slot Slot;
    c4_Row::Value Value;
  };
  static constexpr std::uint32_t kRowRemoved = 0xffffffff;

  bool Touched = false;
  std::size_t OldSlots;  // rows from here on are new
  std::vector<OldValue> OldValues;
  std::optional<CTableRows> BeforeClear;  // set when all rows were removed at once
  std::size_t OldSlotsBeforeClear = 0;
};
