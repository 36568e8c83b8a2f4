#pragma once

#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "storage/IntegerIndex.h"
#include "storage/Row.h"
#include "storage/Sequence.h"
#include "storage/TableFile.h"
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
  std::vector<std::string> Texts;
  std::optional<CIntegerIndex> Index;  // made when a search first asks for it
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

  /// Adds columns that aren't there yet, in memory; CError if one is there with another type. Load reads
  /// their values and Store adds them to the file.
  void Declare(const std::vector<c4_Property>& properties);
  bool HasAll(const std::vector<c4_Property>& properties) const;
  bool IsInFile() const { return File.Exists(); }
  bool IsStored() const { return Stored; }
  /// CDatabaseError; the table is then to be unloaded.
  void Load();
  void Unload();
  /// Ends all use of the file.
  void Close();
  /// Makes the table and its columns in the file, where it lacks them.
  void Store();

  // What views ask.

  bool IsOpen() const { return Transaction != nullptr; }
  CStoredSequence& GetRoot() { return Root; }
  std::optional<std::size_t> FindColumn(const c4_Property& property) const;
  const CColumn& GetColumn(std::size_t column) const { return Columns[column]; }
  std::size_t GetSlotCount() const { return RowIds.size(); }
  bool IsLive(c4_Slot slot) const {
    return slot < RowIds.size() && (Removed.empty() || slot >= Removed.size() || !Removed[slot]);
  }
  std::optional<c4_Slot> FindSlot(const RowIdentity& row) const;
  RowIdentity GetIdentity(c4_Slot slot) const { return {slot, RowIds[slot]}; }

  std::int32_t GetInteger(const c4_Property& property, const RowIdentity& row) const;
  const std::string& GetText(const c4_Property& property, const RowIdentity& row) const;
  c4_Bytes GetBytes(const c4_Property& property, const RowIdentity& row) const;

  /// Below, equal to or above 0.
  int CompareRows(std::size_t column, c4_Slot left, c4_Slot right) const;
  int CompareToValue(std::size_t column, c4_Slot slot, const c4_Row::Value& value) const;
  bool Matches(c4_Slot slot, const c4_Row& values) const;

  /// Rows among which are all that match, ascending, if an index knows; made where it is worth it.
  std::optional<std::span<const c4_Slot>> FindCandidates(const c4_Row& values);

  // Changes.

  void Set(const c4_Property& property, const RowIdentity& row, const c4_Row::Value& value);
  RowIdentity Add(const c4_Row& row);
  void Remove(const std::vector<RowIdentity>& rows);
  void AddProperty(const c4_Property& property);

 private:
  std::vector<c4_Property> GetProperties() const;
  void ReadRows();
  void ReserveRows(std::size_t count);
  void TrimRows();
  c4_Bytes ReadBytes(const CColumn& column, c4_Slot slot) const;
  bool Holds(const CColumn& column, c4_Slot slot, const c4_Row::Value& value) const;
  void Assign(CColumn& column, c4_Slot slot, const c4_Row::Value& value);
  c4_Slot Append(std::int64_t rowId, const c4_Row& row);
  void MarkRemoved(c4_Slot slot);
  void RemoveSlots(const std::vector<c4_Slot>& slots);
  void Clear();
  CColumn* FindColumnToIndex(const c4_Row& values);
  void MakeIndex(CColumn& column);

  std::string Name;
  CTransaction* Transaction;  // null once the storage is closed
  mutable CTableFile File;    // reading changes no more than what is prepared
  bool Stored = false;        // the file has all columns
  std::vector<CColumn> Columns;
  std::vector<int> ColumnOfProperty;  // by the property's id; -1 for none
  std::vector<std::int64_t> RowIds;   // by slot, ascending
  std::vector<bool> Removed;          // by slot; may be shorter than RowIds
  std::size_t RemovedCount = 0;
  std::int64_t HighestRowId = 0;  // of all rows ever seen: no number is used twice in a session
  CStoredSequence Root;
};
