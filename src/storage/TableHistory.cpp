#include "storage/TableHistory.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace {

/// So many entries are searched for the same value, so that a counter which an import raises for each photo
/// is remembered once.
constexpr std::ptrdiff_t kLookBack = 8;

}  // namespace

void CTableHistory::RememberValue(const CTableRows& rows, std::size_t column, c4_Slot slot) {
  Touched = true;
  const CColumn& values = rows.GetColumn(column);
  if (slot >= OldSlots || values.Type == c4_Type::Bytes) return;
  const auto number = static_cast<std::uint32_t>(column);
  const auto recent = OldValues.end() - std::min(std::ssize(OldValues), kLookBack);
  const auto isSame = [&](const OldValue& old) { return old.Column == number && old.Slot == slot; };
  if (std::any_of(recent, OldValues.end(), isSame)) return;
  OldValue old{number, slot, {}};
  if (values.Type == c4_Type::Integer) {
    old.Value = values.Integers[slot];
  } else {
    old.Value = std::string(values.Texts[slot]);
  }
  OldValues.push_back(std::move(old));
}

void CTableHistory::RememberRow(const CTableRows& rows, c4_Slot slot) {
  Touched = true;
  if (slot >= OldSlots) return;
  // The texts of a removed row are freed, the integers stay where they are.
  for (std::size_t column = 0; column < rows.GetColumnCount(); ++column) {
    if (rows.GetColumn(column).Type == c4_Type::Text) RememberValue(rows, column, slot);
  }
  OldValues.push_back({kRowRemoved, slot, {}});
}

void CTableHistory::RememberAll(CTableRows rows) {
  Touched = true;
  if (BeforeClear) return;
  BeforeClear = std::move(rows);
  OldSlotsBeforeClear = std::exchange(OldSlots, 0);
}

void CTableHistory::Undo(CTableRows& rows) {
  if (BeforeClear) {
    for (const c4_Property& property : rows.GetProperties()) {
      if (!BeforeClear->FindColumn(property)) BeforeClear->AddColumn(property);
    }
    rows = std::move(*BeforeClear);
    OldSlots = OldSlotsBeforeClear;
  }
  rows.DropIndexes();
  for (auto old = OldValues.rbegin(); old != OldValues.rend(); ++old) {
    if (old->Column == kRowRemoved) {
      rows.Restore(old->Slot);
    } else {
      rows.Assign(old->Column, old->Slot, old->Value);
    }
  }
  rows.Truncate(OldSlots);
}
