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
  /// the changes are then undone, unless only the last flush failed. Nothing happens while
  /// the store is closed.
  void Commit();

  /// To be called after a failed commit: loads what the file holds, if that could not be read at once.
  /// CStorageException if it still can't be read.
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

/// Combines several changes into one commit: auto commit is off while this object lives. Commit() restores
/// auto commit and commits if it was on. Without Commit() the changes are undone, unless there is an outer
/// pause, which then decides. Pauses nest.
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
