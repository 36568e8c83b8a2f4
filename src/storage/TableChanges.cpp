// The part of c4_Table that changes rows, and the indexes that follow.

#include <sqlite3.h>

#include <algorithm>
#include <array>
#include <limits>
#include <utility>

#include "storage/Table.h"

namespace {

/// So few rows are taken out of every sequence one by one; more are swept out of each in one pass.
constexpr std::size_t kFewRows = 8;

/// Tables this small are searched from end to end, and so few candidates row by row.
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

void Assign(CColumn& column, c4_Slot slot, const c4_Row::Value& value) {
  if (const auto* integer = std::get_if<std::int32_t>(&value)) column.Integers[slot] = *integer;
  if (const auto* text = std::get_if<std::string>(&value)) column.Texts.Set(slot, *text);
}

}  // namespace

bool c4_Table::Holds(const CColumn& column, c4_Slot slot, const c4_Row::Value& value) const {
  if (const auto* integer = std::get_if<std::int32_t>(&value)) return column.Integers[slot] == *integer;
  if (const auto* text = std::get_if<std::string>(&value)) return column.Texts[slot] == *text;
  return false;  // not worth reading it
}

void c4_Table::Set(const c4_Property& property, const RowIdentity& row, const c4_Row::Value& value) {
  const auto number = FindColumn(property);
  const auto before = FindSlot(row);
  if (!IsOpen() || !number || !before || Holds(Rows.Columns[*number], *before, value)) return;
  Transaction->Run([&] {
    Store();
    const auto slot = FindSlot(row);
    if (!slot) return;
    CColumn& column = Rows.Columns[*number];
    RememberValue(*number, *slot);
    Root.TakeOut(*slot, number);
    File.Update(property, row.RowId, value);
    if (column.Index) column.Index->Erase({column.Integers[*slot], *slot});
    Assign(column, *slot, value);
    if (column.Index) column.Index->Insert({column.Integers[*slot], *slot});
    Root.PutIn(*slot, number);
  });
}

RowIdentity c4_Table::Add(const c4_Row& row) {
  RowIdentity added{0, 0};
  if (!IsOpen()) return added;
  Transaction->Run([&] {
    Store();
    if (HighestRowId == std::numeric_limits<std::int64_t>::max()) {
      throw CDatabaseError(SQLITE_FULL, "it has no numbers left for rows");
    }
    ++HighestRowId;
    File.Insert(HighestRowId, GetProperties(), row);
    Past.Touched = true;
    const c4_Slot slot = Append(HighestRowId, row);
    Root.PutIn(slot, std::nullopt);
    added = GetIdentity(slot);
  });
  return added;
}

c4_Slot c4_Table::Append(std::int64_t rowId, const c4_Row& row) {
  const auto slot = static_cast<c4_Slot>(Rows.RowIds.size());
  Rows.RowIds.push_back(rowId);
  for (CColumn& column : Rows.Columns) {
    if (column.Type == c4_Type::Integer) column.Integers.push_back(0);
    if (column.Type == c4_Type::Text) column.Texts.Append({});
  }
  for (const auto& [property, value] : row.GetValues()) {
    if (const auto column = FindColumn(property)) Assign(Rows.Columns[*column], slot, value);
  }
  for (CColumn& column : Rows.Columns) {
    if (column.Index) column.Index->Insert({column.Integers[slot], slot});
  }
  return slot;
}

void c4_Table::Remove(const std::vector<RowIdentity>& rows) {
  if (!IsOpen() || rows.empty()) return;
  Transaction->Run([&] {
    std::vector<c4_Slot> slots;
    for (const RowIdentity& row : rows) {
      if (const auto slot = FindSlot(row)) slots.push_back(*slot);
    }
    if (slots.size() == Rows.RowIds.size() - Rows.RemovedCount) {
      if (!slots.empty()) RemoveAll();
    } else {
      RemoveSlots(slots);
    }
  });
}

void c4_Table::RemoveAll() {
  File.DeleteAll();
  TableRows empty;
  for (const CColumn& column : Rows.Columns) AddColumn(empty, column.Property);
  if (!Past.BeforeClear) {
    Past.BeforeClear = std::move(Rows);
    Past.OldSlotsBeforeClear = std::exchange(Past.OldSlots, 0);
  }
  Past.Touched = true;
  Rows = std::move(empty);
  Root.Rebuild();
}

void c4_Table::RemoveSlots(const std::vector<c4_Slot>& slots) {
  if (slots.size() <= kFewRows) {
    for (const c4_Slot slot : slots) {
      RememberRow(slot);
      Root.TakeOut(slot, std::nullopt);  // may read the row's bytes from the file
      File.Delete(Rows.RowIds[slot]);
      for (CColumn& column : Rows.Columns) {
        if (column.Index) column.Index->Erase({column.Integers[slot], slot});
      }
      MarkRemoved(slot);
    }
    return;
  }
  for (const c4_Slot slot : slots) {
    RememberRow(slot);
    File.Delete(Rows.RowIds[slot]);
    MarkRemoved(slot);
  }
  for (CColumn& column : Rows.Columns) {
    if (column.Index) column.Index->EraseIf([this](c4_Slot slot) { return !IsLive(slot); });
  }
  Root.DropRemoved();
}

void c4_Table::MarkRemoved(c4_Slot slot) {
  if (Rows.Removed.size() <= slot) Rows.Removed.resize(Rows.RowIds.size());
  Rows.Removed[slot] = true;
  ++Rows.RemovedCount;
  for (CColumn& column : Rows.Columns) {
    if (column.Type == c4_Type::Text) column.Texts.Set(slot, {});
  }
}

void c4_Table::AddProperty(const c4_Property& property) {
  if (!IsOpen() || FindColumn(property)) return;
  Transaction->Run([&] {
    Declare({property});
    Store();
  });
}

std::optional<std::span<const CIntegerIndex::Entry>> c4_Table::FindCandidates(const c4_Row& values,
                                                                              std::size_t rows) {
  if (Rows.RowIds.size() < kWorthAnIndex) return std::nullopt;
  std::optional<std::span<const CIntegerIndex::Entry>> best;
  const auto ask = [&](const CColumn& column, std::int32_t value) {
    const auto found = column.Index->Find(value);
    if (!best || found.size() < best->size()) best = found;
  };
  const auto askAll = [&] {
    for (const auto& [property, value] : values.GetValues()) {
      const auto column = FindColumn(property);
      const auto* integer = std::get_if<std::int32_t>(&value);
      if (column && integer != nullptr && Rows.Columns[*column].Index) ask(Rows.Columns[*column], *integer);
    }
  };
  askAll();
  CColumn* const column = best && best->size() <= kFewCandidates ? nullptr : FindColumnToIndex(values);
  if (column != nullptr) {
    MakeIndex(*column);
    askAll();
  }
  return best && best->size() * kCandidateCost <= rows ? best : std::nullopt;
}

/// Of the integer columns asked for, the one that tells most rows apart, if any tells enough.
CColumn* c4_Table::FindColumnToIndex(const c4_Row& values) {
  CColumn* best = nullptr;
  std::ptrdiff_t most = kWorthOfValues - 1;
  for (const auto& [property, value] : values.GetValues()) {
    const auto number = FindColumn(property);
    if (!number || Rows.Columns[*number].Type != c4_Type::Integer || Rows.Columns[*number].Index) continue;
    const std::ptrdiff_t count = CountValuesInSample(Rows.Columns[*number].Integers);
    if (count <= most) continue;
    most = count;
    best = &Rows.Columns[*number];
  }
  return best;
}

void c4_Table::MakeIndex(CColumn& column) {
  std::vector<c4_Slot> slots;
  slots.reserve(Rows.RowIds.size() - Rows.RemovedCount);
  for (std::size_t slot = 0; slot < Rows.RowIds.size(); ++slot) {
    if (IsLive(static_cast<c4_Slot>(slot))) slots.push_back(static_cast<c4_Slot>(slot));
  }
  column.Index.emplace(column.Integers, slots);
}
