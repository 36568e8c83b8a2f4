#include "storage/Table.h"

#include <sqlite3.h>

#include <algorithm>
#include <limits>
#include <optional>
#include <utility>

#include "base/Exceptions.h"

namespace {

/// No more rows are reserved at once, since the highest row number may be far above the count of rows.
constexpr std::int64_t kMaximumReserve = 1 << 20;

/// Up to this many rows are taken out of the sequences one by one; more in one pass over each.
constexpr std::size_t kFewRows = 8;

}  // namespace

c4_Table::c4_Table(std::string name, CTransaction& transaction)
    : Name(std::move(name)),
      Transaction(&transaction),
      File(transaction.GetDatabase(), Name),
      Rows(*this),
      History(Rows),
      Root(Rows) {}

void c4_Table::Declare(const std::vector<c4_Property>& properties) {
  CTableRows fresh(*this);
  for (const c4_Property& property : Rows.GetProperties()) fresh.AddColumn(property);
  for (const c4_Property& property : properties) {
    if (fresh.FindColumn(property)) continue;
    for (const c4_Property& present : fresh.GetProperties()) {
      if (!TextsAreEqual(present.Name(), property.Name())) continue;
      throw CError("The view \"" + Name + "\" has a property \"" + property.Name() + "\" of another type.");
    }
    fresh.AddColumn(property);
  }
  const bool stored = ReadRows(fresh);
  Adopt(std::move(fresh));
  Stored = stored;
}

bool c4_Table::HasAll(const std::vector<c4_Property>& properties) const {
  return std::all_of(properties.begin(), properties.end(),
                     [this](const c4_Property& property) { return Rows.FindColumn(property).has_value(); });
}

/// Fills the columns of `rows`. Whether the file has all of them.
bool c4_Table::ReadRows(CTableRows& rows) {
  File.Inspect();
  bool stored = true;
  std::vector<std::size_t> columns;  // that are held in memory
  std::vector<c4_Property> properties;
  for (std::size_t i = 0; i < rows.GetColumnCount(); ++i) {
    const CColumn& column = rows.GetColumn(i);
    const bool there = File.HasColumn(column.Property.Name());
    stored = stored && there;
    if (!there || column.Type == c4_Type::Bytes) continue;
    columns.push_back(i);
    properties.push_back(column.Property);
  }
  if (!File.Exists()) return stored;
  const std::int64_t expected = std::clamp(File.GetHighestRowId(), std::int64_t{0}, kMaximumReserve);
  rows.Reserve(static_cast<std::size_t>(expected));
  CStatement statement = File.SelectAll(properties);
  while (statement.Step()) {
    if (!rows.AppendRowId(statement.GetInteger(0))) {
      throw CDatabaseError(SQLITE_CORRUPT, "it is damaged (rows are out of order)");
    }
    int position = 1;
    for (const std::size_t column : columns) {
      if (rows.GetColumn(column).Type == c4_Type::Integer) {
        rows.AppendValue(column, statement.GetInteger32(position++));
      } else {
        rows.AppendValue(column, statement.GetText(position++));
      }
    }
  }
  rows.EndLoading();
  return stored;
}

void c4_Table::Adopt(CTableRows rows) {
  Rows = std::move(rows);
  File.Forget();
  History = CTableHistory(Rows);
  CanUndo = !Transaction->IsOpen();
  if (!CanUndo) History.Touch();
  if (const std::size_t count = Rows.GetSlotCount(); count > 0) {
    HighestRowId = std::max(HighestRowId, Rows.GetRowId(static_cast<c4_Slot>(count - 1)));
  }
  Root.Rebuild();
}

void c4_Table::Store() {
  if (Stored) return;
  File.Inspect();
  File.Make(Rows.GetProperties());
  Stored = true;
  History.Touch();
}

void c4_Table::Close() {
  Transaction = nullptr;
  File.Forget();
  Rows = CTableRows(*this);
  History = CTableHistory(Rows);
  Root.Rebuild();
}

std::int32_t c4_Table::GetInteger(const c4_Property& property, const RowIdentity& row) const {
  const auto column = Rows.FindColumn(property);
  const auto slot = Rows.FindSlot(row);
  return column && slot ? Rows.GetColumn(*column).Integers[*slot] : 0;
}

std::string_view c4_Table::GetText(const c4_Property& property, const RowIdentity& row) const {
  const auto column = Rows.FindColumn(property);
  const auto slot = Rows.FindSlot(row);
  return column && slot ? Rows.GetColumn(*column).Texts[*slot] : std::string_view();
}

c4_Bytes c4_Table::GetBytes(const c4_Property& property, const RowIdentity& row) const {
  const auto column = Rows.FindColumn(property);
  const auto slot = Rows.FindSlot(row);
  return column && slot ? Rows.ReadBytes(*column, *slot) : c4_Bytes();
}

c4_Bytes c4_Table::ReadBytes(const c4_Property& property, std::int64_t rowId) const {
  try {
    return File.ReadBytes(property, rowId);
  } catch (const CDatabaseError& error) {
    const std::string text = Transaction->GetDatabase().Describe("read", error);
    Transaction->CheckAfterRead();
    throw CStorageException(text);
  }
}

void c4_Table::Set(const c4_Property& property, const RowIdentity& row, const c4_Row::Value& value) {
  const auto column = Rows.FindColumn(property);
  const auto before = Rows.FindSlot(row);
  if (!IsOpen() || !column || !before || Rows.GetColumn(*column).Holds(*before, value)) return;
  Transaction->Run([&] {
    Store();
    const auto slot = Rows.FindSlot(row);
    if (!slot) return;
    History.RememberValue(Rows, *column, *slot);
    Root.TakeOut(*slot, column);
    File.Update(property, row.RowId, value);
    Rows.Assign(*column, *slot, value);
    Root.PutIn(*slot, column);
  });
}

RowIdentity c4_Table::Add(const c4_Row& row) {
  RowIdentity added;
  Transaction->Run([&] {
    Store();
    if (HighestRowId == std::numeric_limits<std::int64_t>::max()) {
      throw CDatabaseError(SQLITE_FULL, "it has no numbers left for rows");
    }
    ++HighestRowId;
    File.Insert(HighestRowId, Rows.GetProperties(), row);
    History.Touch();
    const c4_Slot slot = Rows.Append(HighestRowId, row);
    Root.PutIn(slot, std::nullopt);
    added = Rows.GetIdentity(slot);
  });
  return added;
}

void c4_Table::Remove(const std::vector<RowIdentity>& rows) {
  if (!IsOpen() || rows.empty()) return;
  Transaction->Run([&] {
    std::vector<c4_Slot> slots;
    for (const RowIdentity& row : rows) {
      if (const auto slot = Rows.FindSlot(row)) slots.push_back(*slot);
    }
    if (slots.empty()) return;
    if (slots.size() == Rows.GetRowCount()) {
      RemoveAll();
    } else {
      RemoveSlots(slots);
    }
  });
}

void c4_Table::RemoveAll() {
  File.DeleteAll();
  CTableRows empty(*this);
  for (const c4_Property& property : Rows.GetProperties()) empty.AddColumn(property);
  History.RememberAll(std::exchange(Rows, std::move(empty)));
  Root.Rebuild();
}

void c4_Table::RemoveSlots(const std::vector<c4_Slot>& slots) {
  const bool areFew = slots.size() <= kFewRows;
  for (const c4_Slot slot : slots) {
    History.RememberRow(Rows, slot);
    if (areFew) Root.TakeOut(slot, std::nullopt);  // may read the row's bytes from the file
    File.Delete(Rows.GetRowId(slot));
  }
  Rows.Remove(slots);
  if (!areFew) Root.DropRemoved();
}

void c4_Table::AddProperty(const c4_Property& property) {
  if (!IsOpen() || Rows.FindColumn(property)) return;
  Transaction->Run([&] {
    Declare({property});
    Store();
  });
}

void c4_Table::KeepChanges() {
  History = CTableHistory(Rows);
  CanUndo = true;
}

bool c4_Table::UndoChanges() noexcept {
  if (!History.IsTouched()) return true;
  const bool complete = CanUndo;
  try {
    History.Undo(Rows);
    KeepChanges();
    Stored = false;  // its columns may be among what was undone
    Root.Rebuild();
    return complete;
  } catch (...) {
    return false;
  }
}
