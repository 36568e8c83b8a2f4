#include "storage/CommittingStore.h"

#include "base/Exceptions.h"

void CCommittingStore::Commit() {
  if (Storage) Storage->Commit();
}

void CCommittingStore::Refresh() {
  if (Storage) Storage->Refresh();
}

void CCommittingStore::Rollback() {
  if (Storage) Storage->Rollback();
}

void CCommittingStore::CommitIfAuto() {
  if (AutoCommit) Commit();
}

CAutoCommitPause::CAutoCommitPause(CCommittingStore& store) : Store(store), Former(store.GetAutoCommit()) {
  Store.SetAutoCommit(false);
}

CAutoCommitPause::~CAutoCommitPause() {
  if (Ended) return;
  Store.SetAutoCommit(Former);
  if (!Former) return;
  try {
    Store.Rollback();
  } catch (const CThrowable&) {
    // The destructor runs because of an exception already; the next use of the storage reports the fault
    // again.
  }
}

void CAutoCommitPause::Commit() {
  Ended = true;
  Store.SetAutoCommit(Former);
  Store.CommitIfAuto();
}
