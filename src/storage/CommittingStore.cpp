#include "storage/CommittingStore.h"

#include "base/Exceptions.h"

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
    // The exception that brought us here tells the story; the next use of the storage meets the fault again.
  }
}

void CAutoCommitPause::Commit() {
  Ended = true;
  Store.SetAutoCommit(Former);
  Store.CommitIfAuto();
}
