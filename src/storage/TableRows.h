#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "storage/Column.h"
#include "storage/Row.h"

/// Reads the blocks of bytes of a table, which aren't held in memory.
class CBytesReader {
 public:
  /// CStorageException if the file can't be read.
  virtual c4_Bytes ReadBytes(const c4_Property& property, std::int64_t rowId) const = 0;

 protected:
  ~CBytesReader() = default;
};

/// The rows of a table in memory: their numbers in the file, and the values of each column. Knows neither the
/// file nor what is derived from it. The slot of a removed row stays empty.
class CTableRows {
 public:
  /// The reader must live as long as this.
  explicit CTableRows(const CBytesReader& reader) : Reader(&reader) {}

  // Columns.

  void AddColumn(const c4_Property& property);
  std::optional<std::size_t> FindColumn(const c4_Property& property) const;
  std::size_t GetColumnCount() const { return Columns.size(); }
  const CColumn& GetColumn(std::size_t column) const { return Columns[column]; }
  std::vector<c4_Property> GetProperties() const;

  // Rows.

  std::size_t GetSlotCount() const { return RowIds.size(); }
  std::size_t GetRowCount() const { return RowIds.size() - RemovedCount; }
  bool IsLive(c4_Slot slot) const {
    return slot < RowIds.size() && (slot >= Removed.size() || !Removed[slot]);
  }
  std::optional<c4_Slot> FindSlot(const RowIdentity& row) const;
  std::int64_t GetRowId(c4_Slot slot) const { return RowIds[slot]; }
  RowIdentity GetIdentity(c4_Slot slot) const { return {slot, RowIds[slot]}; }

  // Values. Comparisons give a number below, equal to or above 0.

  c4_Bytes ReadBytes(std::size_t column, c4_Slot slot) const;
  int CompareRows(std::size_t column, c4_Slot left, c4_Slot right) const;
  int CompareToValue(std::size_t column, c4_Slot slot, const c4_Row::Value& value) const;
  bool Matches(c4_Slot slot, const c4_Row& values) const;

  /// Rows among which are all that match, ascending, if an index knows them and looking at them costs less
  /// than at `rows` rows in order. An index is made where it is worth it.
  std::optional<std::span<const CIntegerIndex::Entry>> FindCandidates(const c4_Row& values,
                                                                      std::size_t rows) const;

  // Changes. The indexes follow.

  /// Adds a row behind the last; `rowId` is above those of all others.
  c4_Slot Append(std::int64_t rowId, const c4_Row& row);
  void Assign(std::size_t column, c4_Slot slot, const c4_Row::Value& value);
  /// The integers of the rows stay where they are, the texts are freed.
  void Remove(const std::vector<c4_Slot>& slots);

  // Undoing.

  /// Brings a removed row back, with empty texts. Does nothing if it isn't removed.
  void Restore(c4_Slot slot);
  /// Drops the rows behind the first `size` slots.
  void Truncate(std::size_t size);
  void DropIndexes();

  // Loading, row by row: its number, then a value for each column that the file has.

  void Reserve(std::size_t size);
  /// False if the number isn't above the last one.
  bool AppendRowId(std::int64_t rowId);
  void AppendValue(std::size_t column, std::int32_t integer) { Columns[column].Integers.push_back(integer); }
  void AppendValue(std::size_t column, std::string_view text) { Columns[column].Texts.Append(text); }
  /// Frees unused memory, and fills the columns that the file lacks.
  void EndLoading();

 private:
  const CColumn* FindColumnToIndex(const c4_Row& values) const;
  void MakeIndex(const CColumn& column) const;

  const CBytesReader* Reader;
  std::vector<std::int64_t> RowIds;  // by slot, ascending
  std::vector<CColumn> Columns;
  std::vector<int> ColumnOfProperty;  // by the property's id; -1 for none
  std::vector<bool> Removed;          // by slot; may be shorter than RowIds
  std::size_t RemovedCount = 0;
};
