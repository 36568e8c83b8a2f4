#include "storage/Transaction.h"

#include "base/Exceptions.h"

CTransaction::CTransaction(CDatabase& database)
    : Database(database), DataVersion(database.GetFirstDataVersion()) {}

void CTransaction::Attach(CParticipant& participant) {
  Participants.push_back(&participant);
  // Loaded inside the transaction, but before any change of its own.
  participant.KeepChanges();
}

void CTransaction::Begin() {
  if (Opened) return;
  Database.Execute("BEGIN IMMEDIATE");
  Opened = true;
  Database.CheckAgain();
  if (OutOfStep || Database.GetDataVersion() != DataVersion) LoadAll();
  for (CParticipant* participant : Participants) participant->KeepChanges();
}

void CTransaction::Commit() {
  if (!Opened) return;
  try {
    Database.Execute("COMMIT");
  } catch (const CDatabaseError& error) {
    Undo();
    // The failure may have come after the file was changed for good.
    OutOfStep = true;
    TryLoadAll();
    Raise(error);
  }
  Opened = false;
  for (CParticipant* participant : Participants) participant->KeepChanges();
}

void CTransaction::Refresh() {
  if (!OutOfStep) return;
  try {
    LoadAll();
  } catch (const CDatabaseError& error) {
    throw CStorageException(Database.Describe("read", error), error.IsDamage());
  }
}

void CTransaction::Rollback() {
  if (Opened) Undo();
}

void CTransaction::Compact() {
  Rollback();
  OutOfStep = true;
  try {
    Database.Compact();
    LoadAll();
  } catch (const CDatabaseError& error) {
    Raise(error);
  }
}

void CTransaction::CheckAfterRead() {
  if (Opened && !Database.IsInTransaction()) Undo();
}

void CTransaction::Undo() noexcept {
  const bool began = Opened;
  EndInFile();
  if (!began) return;
  for (CParticipant* participant : Participants) {
    if (!participant->UndoChanges()) OutOfStep = true;
  }
  if (OutOfStep) TryLoadAll();
}

void CTransaction::EndInFile() noexcept {
  Opened = false;
  try {
    // After some failures SQLite has rolled back already.
    if (Database.IsInTransaction()) Database.Execute("ROLLBACK");
  } catch (const CDatabaseError&) {
    // The journal is still there; the next reader of the file restores the file from it.
  }
}

void CTransaction::LoadAll() {
  OutOfStep = true;
  Database.CheckAgain();
  // Read first: what another process changes from now on is loaded before the next change.
  const std::int64_t version = Database.GetDataVersion();
  for (CParticipant* participant : Participants) participant->Load();
  DataVersion = version;
  OutOfStep = false;
}

void CTransaction::TryLoadAll() noexcept {
  try {
    LoadAll();
  } catch (...) {
    // They stay as they are; the next change loads them or fails.
  }
}

void CTransaction::Raise(const CDatabaseError& error) const {
  throw CStorageException(Database.Describe("written", error), error.IsDamage());
}
