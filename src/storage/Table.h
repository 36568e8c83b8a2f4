#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "storage/Row.h"
#include "storage/Sequence.h"
#include "storage/TableFile.h"
#include "storage/TableHistory.h"
#include "storage/TableRows.h"
#include "storage/Transaction.h"

/// One stored view: its rows in memory, in step with the file's table and with every sequence derived from
/// it. Reads and changes of rows that aren't there, and of properties that the view doesn't have, give 0 or
/// empty, and do nothing. Writing raises CStorageException after the transaction was undone.
class c4_Table final : public c4_RowSource, public CParticipant, private CBytesReader {
 public:
  c4_Table(std::string name, CTransaction& transaction);
  c4_Table(const c4_Table&) = delete;
  c4_Table& operator=(const c4_Table&) = delete;

  /// Takes in columns that aren't there yet, and reads their values. CError if one is there with another
  /// type, CDatabaseError if the file can't be read; the table is then as it was.
  void Declare(const std::vector<c4_Property>& properties);
  bool HasAll(const std::vector<c4_Property>& properties) const;
  bool IsInFile() const { return File.Exists(); }
  /// Whether the file has all columns; Store, in a transaction, adds what it lacks.
  bool IsStored() const { return Stored; }
  void Store();
  /// Ends all use of the file; the table is empty from now on.
  void Close();

  bool IsOpen() const { return Transaction != nullptr; }
  const CTableRows& GetRows() const { return Rows; }
  CStoredSequence& GetRoot() { return Root; }

  bool HasRow(const RowIdentity& row) const override { return Rows.FindSlot(row).has_value(); }
  std::int32_t GetInteger(const c4_Property& property, const RowIdentity& row) const override;
  std::string_view GetText(const c4_Property& property, const RowIdentity& row) const override;
  c4_Bytes GetBytes(const c4_Property& property, const RowIdentity& row) const override;
  void Set(const c4_Property& property, const RowIdentity& row, const c4_Row::Value& value) override;

  /// The new row; `IsOpen()` must hold.
  RowIdentity Add(const c4_Row& row);
  void Remove(const std::vector<RowIdentity>& rows);
  void AddProperty(const c4_Property& property);

  void KeepChanges() override;
  bool UndoChanges() noexcept override;
  void Load() override { Declare({}); }

 private:
  c4_Bytes ReadBytes(const c4_Property& property, std::int64_t rowId) const override;
  bool ReadRows(CTableRows& rows);
  void Adopt(CTableRows rows);
  void RemoveSlots(const std::vector<c4_Slot>& slots);
  void RemoveAll();

  std::string Name;
  CTransaction* Transaction;  // null once the storage is closed
  mutable CTableFile File;    // reading prepares statements
  bool Stored = false;
  CTableRows Rows;
  CTableHistory History;
  bool CanUndo = true;            // false once the rows were loaded in the middle of a transaction
  std::int64_t HighestRowId = 0;  // of all rows ever seen: no number is used twice in a session
  CStoredSequence Root;
};
