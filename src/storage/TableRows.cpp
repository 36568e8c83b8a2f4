#include "storage/TableRows.h"

#include <algorithm>
#include <array>

namespace {

/// Up to this many rows are taken out of an index one by one; more in one pass over it.
constexpr std::size_t kFewRows = 8;

/// Smaller tables are searched without an index. No better index is made if there are no more candidates
/// than this.
constexpr std::size_t kWorthAnIndex = 256;
constexpr std::size_t kFewCandidates = 64;
/// A candidate costs a check and a search for its place; a row in order costs a check alone.
constexpr std::size_t kCandidateCost = 16;

/// A column is worth an index if this many different values stand among 64 of its rows.
constexpr std::size_t kSamples = 64;
constexpr std::ptrdiff_t kWorthOfValues = 16;

std::ptrdiff_t CountValuesInSample(std::span<const std::int32_t> values) {
  std::array<std::int32_t, kSamples> sample{};
  for (std::size_t i = 0; i < kSamples; ++i) sample[i] = values[i * values.size() / kSamples];
  std::sort(sample.begin(), sample.end());
  return std::unique(sample.begin(), sample.end()) - sample.begin();
}

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

}  // namespace

void CTableRows::AddColumn(const c4_Property& property) {
  const std::size_t id = property.GetId();
  if (id >= ColumnOfProperty.size()) ColumnOfProperty.resize(id + 1, -1);
  ColumnOfProperty[id] = static_cast<int>(Columns.size());
  Columns.emplace_back(property, RowIds.size());
}

std::optional<std::size_t> CTableRows::FindColumn(const c4_Property& property) const {
  const std::size_t id = property.GetId();
  if (id >= ColumnOfProperty.size() || ColumnOfProperty[id] < 0) return std::nullopt;
  return static_cast<std::size_t>(ColumnOfProperty[id]);
}

std::vector<c4_Property> CTableRows::GetProperties() const {
  std::vector<c4_Property> properties;
  for (const CColumn& column : Columns) properties.push_back(column.Property);
  return properties;
}

std::optional<c4_Slot> CTableRows::FindSlot(const RowIdentity& row) const {
  c4_Slot slot = row.Slot;
  if (slot >= RowIds.size() || RowIds[slot] != row.RowId) {
    const auto found = std::lower_bound(RowIds.begin(), RowIds.end(), row.RowId);
    if (found == RowIds.end() || *found != row.RowId) return std::nullopt;
    slot = static_cast<c4_Slot>(found - RowIds.begin());
  }
  if (!IsLive(slot)) return std::nullopt;
  return slot;
}

c4_Bytes CTableRows::ReadBytes(std::size_t column, c4_Slot slot) const {
  return Reader->ReadBytes(Columns[column].Property, RowIds[slot]);
}

int CTableRows::CompareRows(std::size_t column, c4_Slot left, c4_Slot right) const {
  const CColumn& values = Columns[column];
  switch (values.Type) {
    case c4_Type::Integer:
      return CompareValues(values.Integers[left], values.Integers[right]);
    case c4_Type::Text:
      return CompareTexts(values.Texts[left], values.Texts[right]);
    case c4_Type::Bytes:
      break;
  }
  return CompareValues(ReadBytes(column, left), ReadBytes(column, right));
}

int CTableRows::CompareToValue(std::size_t column, c4_Slot slot, const c4_Row::Value& value) const {
  const CColumn& values = Columns[column];
  switch (values.Type) {
    case c4_Type::Integer:
      return CompareValues(values.Integers[slot], GetOrDefault<std::int32_t>(value));
    case c4_Type::Text:
      return CompareTexts(values.Texts[slot], GetOrDefault<std::string>(value));
    case c4_Type::Bytes:
      break;
  }
  return CompareValues(ReadBytes(column, slot), GetOrDefault<c4_Bytes>(value));
}

bool CTableRows::Matches(c4_Slot slot, const c4_Row& values) const {
  for (const auto& [property, value] : values.GetValues()) {
    const auto column = FindColumn(property);
    if (column ? CompareToValue(*column, slot, value) != 0 : !IsDefault(value)) return false;
  }
  return true;
}

std::optional<std::span<const CIntegerIndex::Entry>> CTableRows::FindCandidates(const c4_Row& values,
                                                                                std::size_t rows) const {
  if (RowIds.size() < kWorthAnIndex) return std::nullopt;
  std::optional<std::span<const CIntegerIndex::Entry>> best;
  const auto askIndexes = [&] {
    for (const auto& [property, value] : values.GetValues()) {
      const auto column = FindColumn(property);
      const auto* integer = std::get_if<std::int32_t>(&value);
      if (!column || integer == nullptr || !Columns[*column].Index) continue;
      const auto found = Columns[*column].Index->Find(*integer);
      if (!best || found.size() < best->size()) best = found;
    }
  };
  askIndexes();
  const bool isGood = best && best->size() <= kFewCandidates;
  if (const CColumn* const column = isGood ? nullptr : FindColumnToIndex(values)) {
    MakeIndex(*column);
    askIndexes();
  }
  return best && best->size() * kCandidateCost <= rows ? best : std::nullopt;
}

/// Of the integer columns asked for, the one that tells most rows apart, if any tells enough.
const CColumn* CTableRows::FindColumnToIndex(const c4_Row& values) const {
  const CColumn* best = nullptr;
  std::ptrdiff_t most = kWorthOfValues - 1;
  for (const auto& [property, value] : values.GetValues()) {
    const auto number = FindColumn(property);
    if (!number || Columns[*number].Type != c4_Type::Integer || Columns[*number].Index) continue;
    const std::ptrdiff_t count = CountValuesInSample(Columns[*number].Integers);
    if (count <= most) continue;
    most = count;
    best = &Columns[*number];
  }
  return best;
}

void CTableRows::MakeIndex(const CColumn& column) const {
  std::vector<c4_Slot> slots;
  slots.reserve(GetRowCount());
  for (c4_Slot slot = 0; slot < RowIds.size(); ++slot) {
    if (IsLive(slot)) slots.push_back(slot);
  }
  column.Index.emplace(column.Integers, slots);
}

c4_Slot CTableRows::Append(std::int64_t rowId, const c4_Row& row) {
  const auto slot = static_cast<c4_Slot>(RowIds.size());
  RowIds.push_back(rowId);
  for (CColumn& column : Columns) column.Resize(RowIds.size());
  for (const auto& [property, value] : row.GetValues()) {
    if (const auto column = FindColumn(property)) Columns[*column].Assign(slot, value);
  }
  for (CColumn& column : Columns) {
    if (column.Index) column.Index->Insert({column.Integers[slot], slot});
  }
  return slot;
}

void CTableRows::Assign(std::size_t column, c4_Slot slot, const c4_Row::Value& value) {
  CColumn& values = Columns[column];
  if (values.Index) values.Index->Erase({values.Integers[slot], slot});
  values.Assign(slot, value);
  if (values.Index) values.Index->Insert({values.Integers[slot], slot});
}

void CTableRows::Remove(const std::vector<c4_Slot>& slots) {
  Removed.resize(RowIds.size());
  for (const c4_Slot slot : slots) Removed[slot] = true;
  RemovedCount += slots.size();
  for (CColumn& column : Columns) {
    if (column.Type == c4_Type::Text) {
      for (const c4_Slot slot : slots) column.Texts.Set(slot, {});
    }
    if (!column.Index) continue;
    if (slots.size() > kFewRows) {
      column.Index->EraseIf([this](c4_Slot slot) { return !IsLive(slot); });
    } else {
      for (const c4_Slot slot : slots) column.Index->Erase({column.Integers[slot], slot});
    }
  }
}

void CTableRows::Restore(c4_Slot slot) {
  if (IsLive(slot)) return;
  Removed[slot] = false;
  --RemovedCount;
}

void CTableRows::Truncate(std::size_t size) {
  for (std::size_t slot = size; slot < Removed.size(); ++slot) RemovedCount -= Removed[slot];
  Removed.resize(std::min(Removed.size(), size));
  RowIds.resize(size);
  for (CColumn& column : Columns) column.Resize(size);
}

void CTableRows::DropIndexes() {
  for (CColumn& column : Columns) column.Index.reset();
}

void CTableRows::Reserve(std::size_t size) {
  RowIds.reserve(size);
  for (CColumn& column : Columns) column.Reserve(size);
}

bool CTableRows::AppendRowId(std::int64_t rowId) {
  if (!RowIds.empty() && rowId <= RowIds.back()) return false;
  RowIds.push_back(rowId);
  return true;
}

void CTableRows::EndLoading() {
  TrimVector(RowIds);
  for (CColumn& column : Columns) {
    column.Resize(RowIds.size());
    column.Trim();
  }
}
