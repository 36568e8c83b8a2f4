#pragma once

#include <memory>

#include "storage/Storage.h"

/// A store over one storage whose changes are committed one by one as they are made, unless auto commit is
/// off. Base of the catalog and of the thumbnail cache.
class CCommittingStore {
 public:
  bool GetAutoCommit() const { return AutoCommit; }
  void SetAutoCommit(bool on) { AutoCommit = on; }

  /// What has changed is on disk, flushed, when this returns. Raises CStorageException when the disk refuses;
  /// the changes are undone then, but for those that held before the last flush failed. Nothing happens while
  /// the store is closed.
  void Commit();

  /// After a failed commit: sees to it that the store shows what holds. CStorageException if that can't be
  /// read.
  void Refresh();

  /// Undoes everything since the last commit.
  void Rollback();

  /// Ends every operation that changes the store.
  void CommitIfAuto();

 protected:
  CCommittingStore() = default;
  ~CCommittingStore() = default;
  CCommittingStore(const CCommittingStore&) = delete;
  CCommittingStore& operator=(const CCommittingStore&) = delete;

  std::unique_ptr<c4_Storage> Storage;  // null while closed

 private:
  bool AutoCommit = true;
};

/// Makes several changes one: auto commit is off while this object lives. Commit() puts auto commit back to
/// what it was and commits if that was on. Without Commit() the changes are undone, unless an outer pause
/// is on, whose owner then decides. Pauses nest.
class CAutoCommitPause {
 public:
  explicit CAutoCommitPause(CCommittingStore& store);
  ~CAutoCommitPause();
  CAutoCommitPause(const CAutoCommitPause&) = delete;
  CAutoCommitPause& operator=(const CAutoCommitPause&) = delete;

  void Commit();

 private:
  CCommittingStore& Store;
  const bool Former;
  bool Ended = false;
};
