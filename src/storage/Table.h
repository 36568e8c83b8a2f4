#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "storage/IntegerIndex.h"
#include "storage/Row.h"
#include "storage/Sequence.h"
#include "storage/TableFile.h"
#include "storage/TextColumn.h"
#include "storage/Transaction.h"

/// Names one row through all changes around it. The slot is where it was seen last; RowId decides.
struct RowIdentity {
  c4_Slot Slot;
  std::int64_t RowId;
};

/// One property's values, by slot. Blocks of bytes are not held.
struct CColumn {
  c4_Property Property;
  c4_Type Type;
  std::vector<std::int32_t> Integers;  // one of the two is in use, as Type says
  CTextColumn Texts;
  std::optional<CIntegerIndex> Index;  // made when a search first asks for it
};

/// The rows of a table as they are held.
struct TableRows {
  std::vector<std::int64_t> RowIds;  // by slot, ascending
  std::vector<CColumn> Columns;
  std::vector<bool> Removed;  // by slot; may be shorter than RowIds
  std::size_t RemovedCount = 0;
};

/// One stored view: its rows in memory, in step with the file's table and with every sequence derived from
/// it. Reads and changes of rows that aren't there, and of properties that the view doesn't have, give 0 or
/// empty, and do nothing. Writing raises CStorageException after the transaction was undone.
class c4_Table : public std::enable_shared_from_this<c4_Table> {
 public:
  c4_Table(std::string name, CTransaction& transaction);
  c4_Table(const c4_Table&) = delete;
  c4_Table& operator=(const c4_Table&) = delete;

  // The storage's side.

  /// Takes in columns that aren't there yet, and reads their values. CError if one is there with another
  /// type, CDatabaseError if the file can't be read; the table is then as it was.
  void Declare(const std::vector<c4_Property>& properties);
  bool HasAll(const std::vector<c4_Property>& properties) const;
  /// Reads everything from the file. CDatabaseError; the rows are then as they were.
  void Load();
  /// Ends all use of the file.
  void Close();
  bool IsInFile() const { return File.Exists(); }
  /// Whether the file has all columns; Store adds what it lacks.
  bool IsStored() const { return Stored; }
  void Store();

  // The transaction's side.

  void BeginChanges();
  void KeepChanges();
  /// Brings back the rows as they were at BeginChanges. False if that can't be done from memory; the rows
  /// are then gone until Load.
  bool UndoChanges() noexcept;

  // What views ask.

  bool IsOpen() const { return Transaction != nullptr; }
  CStoredSequence& GetRoot() { return Root; }
  std::optional<std::size_t> FindColumn(const c4_Property& property) const;
  const CColumn& GetColumn(std::size_t column) const { return Rows.Columns[column]; }
  std::size_t GetSlotCount() const { return Rows.RowIds.size(); }
  bool IsLive(c4_Slot slot) const {
    return slot < Rows.RowIds.size() && (slot >= Rows.Removed.size() || !Rows.Removed[slot]);
  }
  bool HasRemovedRows() const { return Rows.RemovedCount > 0; }
  std::optional<c4_Slot> FindSlot(const RowIdentity& row) const;
  RowIdentity GetIdentity(c4_Slot slot) const { return {slot, Rows.RowIds[slot]}; }

  std::int32_t GetInteger(const c4_Property& property, const RowIdentity& row) const;
  std::string_view GetText(const c4_Property& property, const RowIdentity& row) const;
  c4_Bytes GetBytes(const c4_Property& property, const RowIdentity& row) const;

  /// Below, equal to or above 0.
  int CompareRows(std::size_t column, c4_Slot left, c4_Slot right) const;
  int CompareToValue(std::size_t column, c4_Slot slot, const c4_Row::Value& value) const;
  bool Matches(c4_Slot slot, const c4_Row& values) const;

  /// Rows among which are all that match, ascending, if an index knows them and looking at them costs less
  /// than at `rows` rows in order. An index is made where it is worth it.
  std::optional<std::span<const CIntegerIndex::Entry>> FindCandidates(const c4_Row& values, std::size_t rows);

  // Changes.

  void Set(const c4_Property& property, const RowIdentity& row, const c4_Row::Value& value);
  RowIdentity Add(const c4_Row& row);
  void Remove(const std::vector<RowIdentity>& rows);
  void AddProperty(const c4_Property& property);

 private:
  /// How to undo one step: the value to put back, or that the row was removed.
  struct OldValue {
    std::uint32_t Column;  // kRowRemoved for a removal
    c4_Slot Slot;
    std::int32_t Integer;  // one of the two is in use, as the column's type says
    std::string Text;
  };
  static constexpr std::uint32_t kRowRemoved = 0xffffffff;

  /// What happened since the last commit, as far as it concerns the rows of that time.
  struct History {
    std::size_t OldSlots = 0;  // rows from here on are new
    std::vector<OldValue> OldValues;
    std::optional<TableRows> BeforeClear;  // set when all rows were removed at once
    std::size_t OldSlotsBeforeClear = 0;
    bool Touched = false;
    bool Complete = true;  // false once the rows were loaded in the middle of a transaction
  };

  std::vector<c4_Property> GetProperties() const;
  static void AddColumn(TableRows& rows, const c4_Property& property);
  bool ReadRows(TableRows& rows);
  void Adopt(TableRows rows);
  void MapColumns();
  c4_Bytes ReadBytes(const CColumn& column, c4_Slot slot) const;
  bool Holds(const CColumn& column, c4_Slot slot, const c4_Row::Value& value) const;
  c4_Slot Append(std::int64_t rowId, const c4_Row& row);
  void MarkRemoved(c4_Slot slot);
  void RemoveSlots(const std::vector<c4_Slot>& slots);
  void RemoveAll();
  void RememberValue(std::size_t column, c4_Slot slot);
  void RememberRow(c4_Slot slot);
  void PutBack(OldValue& old);
  CColumn* FindColumnToIndex(const c4_Row& values);
  void MakeIndex(CColumn& column);

  std::string Name;
  CTransaction* Transaction;  // null once the storage is closed
  mutable CTableFile File;    // reading changes no more than what is prepared
  bool Stored = false;
  TableRows Rows;
  std::vector<int> ColumnOfProperty;  // by the property's id; -1 for none
  std::int64_t HighestRowId = 0;      // of all rows ever seen: no number is used twice in a session
  History Past;
  CStoredSequence Root;
};
