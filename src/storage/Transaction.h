#pragma once

#include <cstdint>
#include <vector>

#include "storage/Database.h"

/// Holds in memory a part of what the file holds, and changes it in transactions.
class CParticipant {
 public:
  /// What is held now is what the file holds.
  virtual void KeepChanges() = 0;
  /// Brings back what was held at the last KeepChanges. False if that can't be done from memory; what is held
  /// is then undefined until Load.
  virtual bool UndoChanges() noexcept = 0;
  /// Reads everything from the file. CDatabaseError; what is held is then as it was.
  virtual void Load() = 0;

 protected:
  ~CParticipant() = default;
};

/// The one open transaction of a storage. It begins with the first change after a commit and is undone, in
/// the file and in every participant, unless it is committed. The participants undo their part from memory,
/// so they show the last commit even while the disk answers nothing.
class CTransaction {
 public:
  explicit CTransaction(CDatabase& database);
  CTransaction(const CTransaction&) = delete;
  CTransaction& operator=(const CTransaction&) = delete;

  /// The participant must just have been loaded, and live as long as this.
  void Attach(CParticipant& participant);

  CDatabase& GetDatabase() const { return Database; }
  bool IsOpen() const { return Opened; }

  /// Runs a change of the file and its participants inside the transaction. If it fails everything since the
  /// last commit is undone and CStorageException raised. The participants may have been loaded anew when
  /// `change` begins, since another process may have changed the file meanwhile.
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

  /// CStorageException if it doesn't reach the disk. The participants hold what the file holds then: as a
  /// rule the last commit, but all of the changes if only the last flush failed.
  void Commit();
  /// Loads the participants if they may differ from the file after a failure. CStorageException if they
  /// can't be loaded.
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
  void LoadAll();
  void TryLoadAll() noexcept;
  [[noreturn]] void Raise(const CDatabaseError& error) const;

  CDatabase& Database;
  std::vector<CParticipant*> Participants;
  std::int64_t DataVersion;  // of the file when the participants were last in step with it
  bool Opened = false;
  bool OutOfStep = false;  // participants may differ from the file: they are loaded before the next change
};
