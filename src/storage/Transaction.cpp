#include "storage/Transaction.h"

#include "storage/StorageException.h"
#include "storage/Table.h"

CTransaction::CTransaction(CDatabase& database)
    : Database(database), DataVersion(database.GetDataVersion()) {}

void CTransaction::Begin() {
  if (Opened) return;
  Database.Execute("BEGIN IMMEDIATE");
  Opened = true;
  if (OutOfStep || Database.GetDataVersion() != DataVersion) LoadTables();
}

void CTransaction::Commit() {
  if (OutOfStep && !Opened) Rollback();
  if (!Opened) return;
  try {
    Database.Execute("COMMIT");
    Opened = false;
  } catch (const CDatabaseError& error) {
    Undo();
    Raise(error);
  }
}

void CTransaction::Rollback() {
  if (!Opened && !OutOfStep) return;
  EndInFile();
  try {
    LoadTables();
  } catch (const CDatabaseError& error) {
    throw CStorageException(Database.Describe("read", error));
  }
}

void CTransaction::CheckAfterRead() {
  if (Opened && !Database.IsInTransaction()) Undo();
}

void CTransaction::Undo() noexcept {
  EndInFile();
  TryLoadTables();
}

void CTransaction::EndInFile() noexcept {
  Opened = false;
  try {
    // After some failures SQLite has rolled back already.
    if (Database.IsInTransaction()) Database.Execute("ROLLBACK");
  } catch (const CDatabaseError&) {
    // The journal stands; the next read plays it back.
  }
}

void CTransaction::LoadTables() {
  OutOfStep = true;
  for (c4_Table* table : Tables) table->Unload();
  for (c4_Table* table : Tables) table->Load();
  DataVersion = Database.GetDataVersion();
  OutOfStep = false;
}

bool CTransaction::TryLoadTables() noexcept {
  try {
    LoadTables();
    return true;
  } catch (...) {
    for (c4_Table* table : Tables) table->Unload();
    return false;
  }
}

void CTransaction::Raise(const CDatabaseError& error) const {
  throw CStorageException(Database.Describe("written", error));
}
