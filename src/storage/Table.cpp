#include "storage/Table.h"

#include <sqlite3.h>

#include <algorithm>

#include "storage/StorageException.h"
#include "storage/TextOrder.h"

namespace {

/// More rows than this are not reserved on the word of a file; the rest is made as it comes.
constexpr std::int64_t kMaximumReserve = 1 << 20;

const std::string kEmptyText;

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

}  // namespace

c4_Table::c4_Table(std::string name, CTransaction& transaction)
    : Name(std::move(name)), Transaction(&transaction), File(transaction.GetDatabase(), Name), Root(*this) {}

void c4_Table::Declare(const std::vector<c4_Property>& properties) {
  for (const c4_Property& property : properties) {
    if (FindColumn(property)) continue;
    for (const CColumn& column : Columns) {
      if (!TextsAreEqual(column.Property.Name(), property.Name())) continue;
      throw CError("The view \"" + Name + "\" has a property \"" + property.Name() + "\" of another type.");
    }
    const auto id = static_cast<std::size_t>(property.Id);
    if (id >= ColumnOfProperty.size()) ColumnOfProperty.resize(id + 1, -1);
    ColumnOfProperty[id] = static_cast<int>(Columns.size());
    CColumn& column = Columns.emplace_back(CColumn{property, property.Type(), {}, {}, {}});
    if (column.Type == c4_Type::Integer) column.Integers.resize(RowIds.size());
    if (column.Type == c4_Type::Text) column.Texts.resize(RowIds.size());
    Stored = false;
  }
  File.Forget();
}

bool c4_Table::HasAll(const std::vector<c4_Property>& properties) const {
  return std::all_of(properties.begin(), properties.end(),
                     [this](const c4_Property& property) { return FindColumn(property).has_value(); });
}

void c4_Table::Load() {
  Clear();
  File.Forget();
  File.Inspect();
  Stored = std::all_of(Columns.begin(), Columns.end(),
                       [this](const CColumn& column) { return File.HasColumn(column.Property.Name()); });
  if (File.Exists()) ReadRows();
  Root.Rebuild();
}

void c4_Table::Unload() {
  Clear();
  Stored = false;
  Root.Rebuild();
}

void c4_Table::Close() {
  Transaction = nullptr;
  File.Forget();
  Unload();
}

void c4_Table::Store() {
  if (Stored) return;
  File.Make(GetProperties());
  Stored = true;
}

std::vector<c4_Property> c4_Table::GetProperties() const {
  std::vector<c4_Property> properties;
  for (const CColumn& column : Columns) properties.push_back(column.Property);
  return properties;
}

void c4_Table::ReadRows() {
  std::vector<CColumn*> held;
  std::vector<c4_Property> properties;
  for (CColumn& column : Columns) {
    if (column.Type == c4_Type::Bytes || !File.HasColumn(column.Property.Name())) continue;
    held.push_back(&column);
    properties.push_back(column.Property);
  }
  ReserveRows(static_cast<std::size_t>(std::clamp(File.GetHighestRowId(), std::int64_t{0}, kMaximumReserve)));
  CStatement statement = File.SelectAll(properties);
  const CStatementUse use(statement);
  while (use->Step()) {
    const std::int64_t rowId = use->GetInteger(0);
    if (!RowIds.empty() && rowId <= RowIds.back()) {
      throw CDatabaseError(SQLITE_CORRUPT, "it is damaged (rows are out of order)");
    }
    RowIds.push_back(rowId);
    int position = 1;
    for (CColumn* column : held) {
      if (column->Type == c4_Type::Integer) {
        column->Integers.push_back(use->GetInteger32(position++));
      } else {
        column->Texts.emplace_back(use->GetText(position++));
      }
    }
  }
  if (!RowIds.empty()) HighestRowId = std::max(HighestRowId, RowIds.back());
  TrimRows();
}

void c4_Table::ReserveRows(std::size_t count) {
  RowIds.reserve(count);
  for (CColumn& column : Columns) {
    if (column.Type == c4_Type::Integer) column.Integers.reserve(count);
    if (column.Type == c4_Type::Text) column.Texts.reserve(count);
  }
}

/// Frees what was reserved in vain, and gives columns that the file lacks their empty values.
void c4_Table::TrimRows() {
  Trim(RowIds);
  for (CColumn& column : Columns) {
    if (column.Type == c4_Type::Integer) column.Integers.resize(RowIds.size());
    if (column.Type == c4_Type::Text) column.Texts.resize(RowIds.size());
    Trim(column.Integers);
    Trim(column.Texts);
  }
}

void c4_Table::Clear() {
  RowIds = {};
  Removed = {};
  RemovedCount = 0;
  for (CColumn& column : Columns) {
    column.Integers = {};
    column.Texts = {};
    column.Index.reset();
  }
}

std::optional<std::size_t> c4_Table::FindColumn(const c4_Property& property) const {
  const auto id = static_cast<std::size_t>(property.Id);
  if (id >= ColumnOfProperty.size() || ColumnOfProperty[id] < 0) return std::nullopt;
  return static_cast<std::size_t>(ColumnOfProperty[id]);
}

std::optional<c4_Slot> c4_Table::FindSlot(const RowIdentity& row) const {
  c4_Slot slot = row.Slot;
  if (slot >= RowIds.size() || RowIds[slot] != row.RowId) {
    const auto found = std::lower_bound(RowIds.begin(), RowIds.end(), row.RowId);
    if (found == RowIds.end() || *found != row.RowId) return std::nullopt;
    slot = static_cast<c4_Slot>(found - RowIds.begin());
  }
  if (!IsLive(slot)) return std::nullopt;
  return slot;
}

std::int32_t c4_Table::GetInteger(const c4_Property& property, const RowIdentity& row) const {
  const auto column = FindColumn(property);
  const auto slot = FindSlot(row);
  return column && slot ? Columns[*column].Integers[*slot] : 0;
}

const std::string& c4_Table::GetText(const c4_Property& property, const RowIdentity& row) const {
  const auto column = FindColumn(property);
  const auto slot = FindSlot(row);
  return column && slot ? Columns[*column].Texts[*slot] : kEmptyText;
}

c4_Bytes c4_Table::GetBytes(const c4_Property& property, const RowIdentity& row) const {
  const auto column = FindColumn(property);
  const auto slot = FindSlot(row);
  return column && slot ? ReadBytes(Columns[*column], *slot) : c4_Bytes();
}

c4_Bytes c4_Table::ReadBytes(const CColumn& column, c4_Slot slot) const {
  try {
    return File.ReadBytes(column.Property, RowIds[slot]);
  } catch (const CDatabaseError& error) {
    const std::string text = Transaction->GetDatabase().Describe("read", error);
    Transaction->CheckAfterRead();
    throw CStorageException(text);
  }
}

int c4_Table::CompareRows(std::size_t column, c4_Slot left, c4_Slot right) const {
  const CColumn& values = Columns[column];
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
  const CColumn& values = Columns[column];
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
