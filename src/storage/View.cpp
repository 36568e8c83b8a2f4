#include "storage/View.h"

#include <algorithm>
#include <limits>
#include <span>

#include "storage/DataThread.h"
#include "storage/Sequence.h"
#include "storage/Table.h"

namespace {

constexpr std::size_t kFewRows = 64;

std::size_t ToPosition(int index) { return static_cast<std::size_t>(index); }

/// The sort keys that `values` has a value for, from the first one on.
struct SearchKey {
  std::size_t Column;
  bool Descending;
  const c4_Row::Value* Value;
};

std::vector<SearchKey> MakeSearchKeys(const c4_Sequence& sequence, const c4_Row& values) {
  std::vector<SearchKey> keys;
  const CTableRows& rows = sequence.GetRows();
  const auto addKey = [&](const c4_Property& property, bool descending, const c4_Row::Value& value) {
    if (const auto column = rows.FindColumn(property)) keys.push_back({*column, descending, &value});
  };
  const std::vector<SortKey>* sortKeys = sequence.GetSortKeys();
  if (sortKeys == nullptr) {
    // A stored view that its owner keeps in order.
    for (const auto& [property, value] : values.GetValues()) addKey(property, false, value);
    return keys;
  }
  for (const SortKey& key : *sortKeys) {
    const c4_Row::Value* value = values.FindValue(key.Property);
    if (value == nullptr) break;
    addKey(key.Property, key.Descending, *value);
  }
  return keys;
}

bool IsBelow(const CTableRows& rows, c4_Slot slot, std::span<const SearchKey> keys) {
  for (const SearchKey& key : keys) {
    const int order = rows.CompareToValue(key.Column, slot, *key.Value);
    if (order != 0) return key.Descending ? order > 0 : order < 0;
  }
  return false;
}

}  // namespace

c4_View::c4_View() = default;

c4_View::c4_View(std::shared_ptr<c4_Table> table) : Table(table), Sequence(table, &table->GetRoot()) {}

c4_View::c4_View(std::shared_ptr<c4_Table> table, std::shared_ptr<c4_Sequence> sequence)
    : Table(std::move(table)), Sequence(std::move(sequence)) {}

int c4_View::GetSize() const {
  AssertDataThread();
  return Sequence ? static_cast<int>(Sequence->GetSize()) : 0;
}

c4_RowRef c4_View::GetAt(int index) const {
  if (index < 0 || index >= GetSize()) return {};
  return {Table, GetIdentity(index)};
}

std::int32_t c4_View::GetIntegerAt(const c4_IntProp& property, int index) const {
  if (index < 0 || index >= GetSize()) return 0;
  return Table->GetInteger(property, GetIdentity(index));
}

std::string_view c4_View::GetTextAt(const c4_StringProp& property, int index) const {
  if (index < 0 || index >= GetSize()) return {};
  return Table->GetText(property, GetIdentity(index));
}

RowIdentity c4_View::GetIdentity(int index) const {
  return Table->GetRows().GetIdentity(Sequence->GetSlotAt(ToPosition(index)));
}

int c4_View::GetIndexOf(const c4_RowRef& row) const {
  AssertDataThread();
  if (!Sequence || row.Source != Table) return -1;
  const auto slot = Table->GetRows().FindSlot(row.Row);
  const auto position = slot ? Sequence->GetPositionOf(*slot) : std::nullopt;
  return position ? static_cast<int>(*position) : -1;
}

c4_RowRef c4_View::Add(const c4_Row& row) {
  AssertDataThread();
  if (!Table || !Table->IsOpen()) return {};
  return {Table, Table->Add(row)};
}

void c4_View::RemoveAt(int index, int count) {
  const int size = GetSize();
  const int first = std::clamp(index, 0, size);
  const std::int64_t end = std::int64_t{index} + std::max(count, 0);
  const int last = static_cast<int>(std::clamp(end, std::int64_t{first}, std::int64_t{size}));
  if (first == last) return;
  std::vector<RowIdentity> rows;
  for (int i = first; i < last; ++i) rows.push_back(GetIdentity(i));
  Table->Remove(rows);
}

void c4_View::SetSize(int size) {
  const int present = GetSize();
  if (!Sequence || size < 0) return;
  RemoveAt(size, present - size);
  for (int i = present; i < size; ++i) Add(c4_Row());
}

void c4_View::AddProperty(const c4_Property& property) {
  AssertDataThread();
  if (Table) Table->AddProperty(property);
}

int c4_View::Find(const c4_Row& values, int start) const {
  const int size = GetSize();
  start = std::max(start, 0);
  if (start >= size) return -1;
  const CTableRows& rows = Table->GetRows();
  if (const auto candidates = rows.FindCandidates(values, ToPosition(size))) {
    std::size_t first = std::numeric_limits<std::size_t>::max();
    for (const auto& [value, slot] : *candidates) {
      if (!rows.Matches(slot, values)) continue;
      const auto position = Sequence->GetPositionOf(slot);
      if (position && *position >= ToPosition(start)) first = std::min(first, *position);
    }
    return first == std::numeric_limits<std::size_t>::max() ? -1 : static_cast<int>(first);
  }
  for (int i = start; i < size; ++i) {
    if (rows.Matches(Sequence->GetSlotAt(ToPosition(i)), values)) return i;
  }
  return -1;
}

int c4_View::Search(const c4_Row& values) const {
  if (GetSize() == 0) return 0;
  const CTableRows& rows = Table->GetRows();
  const std::vector<SearchKey> allKeys = MakeSearchKeys(*Sequence, values);
  std::span<const SearchKey> keys = allKeys;
  auto [first, last] = Sequence->NarrowSearch(values);
  while (first < last) {
    if (keys.size() > 1 && last - first <= kFewRows &&
        rows.CompareRows(keys[0].Column, Sequence->GetSlotAt(first), Sequence->GetSlotAt(last - 1)) == 0) {
      // All rows between are equal in the first key, like the photos of one folder, so it is compared once.
      const c4_Slot slot = Sequence->GetSlotAt(first);
      if (IsBelow(rows, slot, keys.first(1))) return static_cast<int>(last);
      if (rows.CompareToValue(keys[0].Column, slot, *keys[0].Value) != 0) return static_cast<int>(first);
      keys = keys.subspan(1);
    }
    const std::size_t middle = first + (last - first) / 2;
    if (IsBelow(rows, Sequence->GetSlotAt(middle), keys)) {
      first = middle + 1;
    } else {
      last = middle;
    }
  }
  return static_cast<int>(first);
}

c4_View c4_View::Select(const c4_Row& values) const {
  AssertDataThread();
  if (!Sequence) return {};
  return {Table, std::make_shared<CSelection>(Sequence, values)};
}

c4_View c4_View::SortOn(const c4_Properties& properties) const { return SortOnReverse(properties, {}); }

c4_View c4_View::SortOnReverse(const c4_Properties& properties, const c4_Properties& descending) const {
  AssertDataThread();
  if (!Sequence) return {};
  std::vector<SortKey> keys;
  for (const c4_Property& property : properties) {
    const bool reverse = std::find(descending.begin(), descending.end(), property) != descending.end();
    keys.push_back({property, reverse});
  }
  return {Table, std::make_shared<CSorting>(Sequence, std::move(keys))};
}
