#include "storage/Table.h"

#include <sqlite3.h>

#include <algorithm>

#include "storage/StorageException.h"
#include "storage/TextOrder.h"

namespace {

/// More rows than this are not reserved on the word of a file; the rest is made as it comes.
constexpr std::int64_t kMaximumReserve = 1 << 20;

template <typename T>
int CompareValues(const T& left, const T& right) {
  if (left < right) return -1;
  return right < left ? 1 : 0;
}

template <typename T>
const T& GetOrDefault(const c4_Row::Value& value) {
  static const T kDefault{};
  const T* held = std::get_if<T>(&value);
  return held != nullptr ? *held : kDefault;
}

bool IsDefault(const c4_Row::Value& value) {
  return GetOrDefault<std::int32_t>(value) == 0 && GetOrDefault<std::string>(value).empty() &&
         GetOrDefault<c4_Bytes>(value).empty();
}

template <typename T>
void Trim(std::vector<T>& values) {
  if (values.capacity() > values.size() + values.size() / 16) values.shrink_to_fit();
}

void Reserve(TableRows& rows, std::int64_t count) {
  const auto size = static_cast<std::size_t>(count);
  rows.RowIds.reserve(size);
  for (CColumn& column : rows.Columns) {
    if (column.Type == c4_Type::Integer) column.Integers.reserve(size);
    if (column.Type == c4_Type::Text) column.Texts.Reserve(size);
  }
}

/// Frees what was reserved in vain, and gives columns that the file lacks their empty values.
void Trim(TableRows& rows) {
  Trim(rows.RowIds);
  for (CColumn& column : rows.Columns) {
    if (column.Type == c4_Type::Integer) column.Integers.resize(rows.RowIds.size());
    if (column.Type == c4_Type::Text) column.Texts.Resize(rows.RowIds.size());
    Trim(column.Integers);
    column.Texts.Trim();
  }
}

}  // namespace

c4_Table::c4_Table(std::string name, CTransaction& transaction)
    : Name(std::move(name)), Transaction(&transaction), File(transaction.GetDatabase(), Name), Root(*this) {}

void c4_Table::AddColumn(TableRows& rows, const c4_Property& property) {
  CColumn& column = rows.Columns.emplace_back(CColumn{property, property.Type(), {}, {}, {}});
  if (column.Type == c4_Type::Integer) column.Integers.resize(rows.RowIds.size());
  if (column.Type == c4_Type::Text) column.Texts.Resize(rows.RowIds.size());
}

void c4_Table::Declare(const std::vector<c4_Property>& properties) {
  TableRows fresh;
  for (const CColumn& column : Rows.Columns) AddColumn(fresh, column.Property);
  for (const c4_Property& property : properties) {
    if (FindColumn(property)) continue;
    for (const CColumn& column : fresh.Columns) {
      if (!TextsAreEqual(column.Property.Name(), property.Name())) continue;
      throw CError("The view \"" + Name + "\" has a property \"" + property.Name() + "\" of another type.");
    }
    AddColumn(fresh, property);
  }
  const bool stored = ReadRows(fresh);
  Adopt(std::move(fresh));
  Stored = stored;
}

bool c4_Table::HasAll(const std::vector<c4_Property>& properties) const {
  return std::all_of(properties.begin(), properties.end(),
                     [this](const c4_Property& property) { return FindColumn(property).has_value(); });
}

void c4_Table::Load() { Declare({}); }

void c4_Table::Adopt(TableRows rows) {
  Rows = std::move(rows);
  MapColumns();
  File.Forget();
  Past = History();
  Past.OldSlots = Rows.RowIds.size();
  Past.Complete = !Transaction->IsOpen();
  Past.Touched = !Past.Complete;
  if (!Rows.RowIds.empty()) HighestRowId = std::max(HighestRowId, Rows.RowIds.back());
  Root.Rebuild();
}

void c4_Table::MapColumns() {
  ColumnOfProperty.clear();
  for (std::size_t i = 0; i < Rows.Columns.size(); ++i) {
    const auto id = static_cast<std::size_t>(Rows.Columns[i].Property.Id);
    if (id >= ColumnOfProperty.size()) ColumnOfProperty.resize(id + 1, -1);
    ColumnOfProperty[id] = static_cast<int>(i);
  }
}

void c4_Table::Close() {
  Transaction = nullptr;
  File.Forget();
  Rows = TableRows();
  Past = History();
  MapColumns();
  Root.Rebuild();
}

void c4_Table::Store() {
  if (Stored) return;
  File.Inspect();
  File.Make(GetProperties());
  Stored = true;
  Past.Touched = true;
}

std::vector<c4_Property> c4_Table::GetProperties() const {
  std::vector<c4_Property> properties;
  for (const CColumn& column : Rows.Columns) properties.push_back(column.Property);
  return properties;
}

/// Fills the columns of `rows`. Whether the file has all of them.
bool c4_Table::ReadRows(TableRows& rows) {
  File.Inspect();
  bool stored = true;
  std::vector<CColumn*> held;
  std::vector<c4_Property> properties;
  for (CColumn& column : rows.Columns) {
    const bool there = File.HasColumn(column.Property.Name());
    stored = stored && there;
    if (!there || column.Type == c4_Type::Bytes) continue;
    held.push_back(&column);
    properties.push_back(column.Property);
  }
  if (!File.Exists()) return stored;
  Reserve(rows, std::clamp(File.GetHighestRowId(), std::int64_t{0}, kMaximumReserve));
  CStatement statement = File.SelectAll(properties);
  while (statement.Step()) {
    const std::int64_t rowId = statement.GetInteger(0);
    if (!rows.RowIds.empty() && rowId <= rows.RowIds.back()) {
      throw CDatabaseError(SQLITE_CORRUPT, "it is damaged (rows are out of order)");
    }
    rows.RowIds.push_back(rowId);
    int position = 1;
    for (CColumn* column : held) {
      if (column->Type == c4_Type::Integer) {
        column->Integers.push_back(statement.GetInteger32(position++));
      } else {
        column->Texts.Append(statement.GetText(position++));
      }
    }
  }
  Trim(rows);
  return stored;
}

std::optional<std::size_t> c4_Table::FindColumn(const c4_Property& property) const {
  const auto id = static_cast<std::size_t>(property.Id);
  if (id >= ColumnOfProperty.size() || ColumnOfProperty[id] < 0) return std::nullopt;
  return static_cast<std::size_t>(ColumnOfProperty[id]);
}

std::optional<c4_Slot> c4_Table::FindSlot(const RowIdentity& row) const {
  c4_Slot slot = row.Slot;
  if (slot >= Rows.RowIds.size() || Rows.RowIds[slot] != row.RowId) {
    const auto found = std::lower_bound(Rows.RowIds.begin(), Rows.RowIds.end(), row.RowId);
    if (found == Rows.RowIds.end() || *found != row.RowId) return std::nullopt;
    slot = static_cast<c4_Slot>(found - Rows.RowIds.begin());
  }
  if (!IsLive(slot)) return std::nullopt;
  return slot;
}

std::int32_t c4_Table::GetInteger(const c4_Property& property, const RowIdentity& row) const {
  const auto column = FindColumn(property);
  const auto slot = FindSlot(row);
  return column && slot ? Rows.Columns[*column].Integers[*slot] : 0;
}

std::string_view c4_Table::GetText(const c4_Property& property, const RowIdentity& row) const {
  const auto column = FindColumn(property);
  const auto slot = FindSlot(row);
  return column && slot ? Rows.Columns[*column].Texts[*slot] : std::string_view();
}

c4_Bytes c4_Table::GetBytes(const c4_Property& property, const RowIdentity& row) const {
  const auto column = FindColumn(property);
  const auto slot = FindSlot(row);
  return column && slot ? ReadBytes(Rows.Columns[*column], *slot) : c4_Bytes();
}

c4_Bytes c4_Table::ReadBytes(const CColumn& column, c4_Slot slot) const {
  try {
    return File.ReadBytes(column.Property, Rows.RowIds[slot]);
  } catch (const CDatabaseError& error) {
    const std::string text = Transaction->GetDatabase().Describe("read", error);
    Transaction->CheckAfterRead();
    throw CStorageException(text);
  }
}

int c4_Table::CompareRows(std::size_t column, c4_Slot left, c4_Slot right) const {
  const CColumn& values = Rows.Columns[column];
  switch (values.Type) {
    case c4_Type::Integer:
      return CompareValues(values.Integers[left], values.Integers[right]);
    case c4_Type::Text:
      return CompareTexts(values.Texts[left], values.Texts[right]);
    case c4_Type::Bytes:
      break;
  }
  return CompareValues(ReadBytes(values, left), ReadBytes(values, right));
}

int c4_Table::CompareToValue(std::size_t column, c4_Slot slot, const c4_Row::Value& value) const {
  const CColumn& values = Rows.Columns[column];
  switch (values.Type) {
    case c4_Type::Integer:
      return CompareValues(values.Integers[slot], GetOrDefault<std::int32_t>(value));
    case c4_Type::Text:
      return CompareTexts(values.Texts[slot], GetOrDefault<std::string>(value));
    case c4_Type::Bytes:
      break;
  }
  return CompareValues(ReadBytes(values, slot), GetOrDefault<c4_Bytes>(value));
}

bool c4_Table::Matches(c4_Slot slot, const c4_Row& values) const {
  for (const auto& [property, value] : values.GetValues()) {
    const auto column = FindColumn(property);
    if (column ? CompareToValue(*column, slot, value) != 0 : !IsDefault(value)) return false;
  }
  return true;
}
