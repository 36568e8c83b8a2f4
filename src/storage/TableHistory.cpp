// The part of c4_Table that remembers what the last commit held, and brings it back.

#include <algorithm>
#include <utility>

#include "storage/Table.h"

namespace {

/// A counter that is raised again and again, as an import does, is remembered once.
constexpr std::ptrdiff_t kLookBack = 8;

}  // namespace

void c4_Table::BeginChanges() {
  Past = History();
  Past.OldSlots = Rows.RowIds.size();
}

void c4_Table::KeepChanges() { BeginChanges(); }

void c4_Table::RememberValue(std::size_t column, c4_Slot slot) {
  Past.Touched = true;
  if (slot >= Past.OldSlots) return;
  const auto number = static_cast<std::uint32_t>(column);
  const auto& old = Past.OldValues;
  const auto recent = old.end() - std::min(std::ssize(old), kLookBack);
  const auto isSame = [&](const OldValue& value) { return value.Column == number && value.Slot == slot; };
  if (std::any_of(recent, old.end(), isSame)) return;
  const CColumn& values = Rows.Columns[column];
  if (values.Type == c4_Type::Integer) Past.OldValues.push_back({number, slot, values.Integers[slot], {}});
  if (values.Type == c4_Type::Text)
    Past.OldValues.push_back({number, slot, 0, std::string(values.Texts[slot])});
}

void c4_Table::RememberRow(c4_Slot slot) {
  Past.Touched = true;
  if (slot >= Past.OldSlots) return;
  for (std::size_t column = 0; column < Rows.Columns.size(); ++column) {
    // The texts of a removed row are freed, the integers stay where they are.
    if (Rows.Columns[column].Type == c4_Type::Text) RememberValue(column, slot);
  }
  Past.OldValues.push_back({kRowRemoved, slot, 0, {}});
}

void c4_Table::PutBack(OldValue& old) {
  if (old.Column == kRowRemoved) {
    if (old.Slot >= Rows.Removed.size() || !Rows.Removed[old.Slot]) return;  // it failed to be removed
    Rows.Removed[old.Slot] = false;
    --Rows.RemovedCount;
    return;
  }
  CColumn& column = Rows.Columns[old.Column];
  if (column.Type == c4_Type::Text) {
    column.Texts.Set(old.Slot, old.Text);
  } else {
    column.Integers[old.Slot] = old.Integer;
  }
}

bool c4_Table::UndoChanges() noexcept {
  if (!Past.Touched) return true;
  const bool complete = Past.Complete;
  try {
    if (Past.BeforeClear) {
      // Columns that were added since stay, with their empty values.
      const std::vector<c4_Property> properties = GetProperties();
      Rows = std::move(*Past.BeforeClear);
      for (std::size_t i = Rows.Columns.size(); i < properties.size(); ++i) AddColumn(Rows, properties[i]);
      Past.OldSlots = Past.OldSlotsBeforeClear;
    }
    for (auto old = Past.OldValues.rbegin(); old != Past.OldValues.rend(); ++old) PutBack(*old);
    const std::size_t size = Past.OldSlots;
    for (std::size_t slot = size; slot < Rows.Removed.size(); ++slot) Rows.RemovedCount -= Rows.Removed[slot];
    Rows.Removed.resize(std::min(Rows.Removed.size(), size));
    Rows.RowIds.resize(size);
    for (CColumn& column : Rows.Columns) {
      if (column.Type == c4_Type::Integer) column.Integers.resize(size);
      if (column.Type == c4_Type::Text) column.Texts.Resize(size);
      column.Index.reset();
    }
    BeginChanges();
    Stored = false;  // its columns may be among what was undone
    Root.Rebuild();
    return complete;
  } catch (...) {
    return false;
  }
}
