#pragma once

#include <cstdint>
#include <vector>

#include "storage/Database.h"

class c4_Table;

/// The one open transaction of a storage. It begins with the first change after a commit and is undone, in
/// the file and in every table, unless it is committed. The tables undo their part from memory, so they
/// show the last commit even while the disk answers nothing.
class CTransaction {
 public:
  explicit CTransaction(CDatabase& database);
  CTransaction(const CTransaction&) = delete;
  CTransaction& operator=(const CTransaction&) = delete;

  /// A table that takes part from now on. The caller keeps it alive until DetachAll.
  void Attach(c4_Table& table);
  void DetachAll() { Tables.clear(); }

  CDatabase& GetDatabase() const { return Database; }
  bool IsOpen() const { return Opened; }

  /// Runs a change of the file and the tables inside the transaction. If it fails everything since the last
  /// commit is undone and CStorageException raised. The tables may have been loaded anew when `change`
  /// begins, since another process may have changed the file meanwhile.
  template <typename Change>
  void Run(const Change& change) {
    try {
      Begin();
      change();
    } catch (const CDatabaseError& error) {
      Undo();
      Raise(error);
    } catch (...) {
      Undo();
      throw;
    }
  }

  /// CStorageException if it doesn't reach the disk. The tables hold what the file holds then: as a rule the
  /// last commit, but all of the changes if only the last flush failed.
  void Commit();
  /// Loads the tables if a failure has left it open what the file holds. CStorageException if it still is.
  void Refresh();
  void Rollback();
  /// Undoes the open changes and rewrites the file without its free space. CStorageException.
  void Compact();

  /// To be called when a read failed: SQLite may have given up the transaction on its own.
  void CheckAfterRead();

 private:
  void Begin();
  void Undo() noexcept;
  void EndInFile() noexcept;
  void LoadTables();
  void TryLoadTables() noexcept;
  [[noreturn]] void Raise(const CDatabaseError& error) const;

  CDatabase& Database;
  std::vector<c4_Table*> Tables;
  std::int64_t DataVersion;  // of the file when the tables were last in step with it
  bool Opened = false;
  bool OutOfStep = false;  // the tables may differ from the file: they are loaded before the next change
};
