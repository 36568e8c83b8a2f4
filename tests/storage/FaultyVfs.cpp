#include "FaultyVfs.h"

#include <cstring>

namespace {

CFaultyVfs::Plan currentPlan;
sqlite3_vfs* realVfs = nullptr;
sqlite3_vfs faultyVfs;

struct FaultyFile {
  sqlite3_file Base;
  const char* Path;

  // The real file's structure follows in the same block of memory.
  sqlite3_file* GetReal() { return reinterpret_cast<sqlite3_file*>(this + 1); }
};

FaultyFile* Cast(sqlite3_file* file) { return reinterpret_cast<FaultyFile*>(file); }
sqlite3_file* Real(sqlite3_file* file) { return Cast(file)->GetReal(); }

int Ask(const char* step, const char* path) {
  return currentPlan ? currentPlan(step, path != nullptr ? path : "") : SQLITE_OK;
}

int Close(sqlite3_file* file) { return Real(file)->pMethods->xClose(Real(file)); }

int Read(sqlite3_file* file, void* buffer, int size, sqlite3_int64 offset) {
  const int fault = Ask("read", Cast(file)->Path);
  return fault != SQLITE_OK ? fault : Real(file)->pMethods->xRead(Real(file), buffer, size, offset);
}

int Write(sqlite3_file* file, const void* buffer, int size, sqlite3_int64 offset) {
  const int fault = Ask("write", Cast(file)->Path);
  if (fault == SQLITE_OK) return Real(file)->pMethods->xWrite(Real(file), buffer, size, offset);
  // A disk that fails has often taken a part.
  Real(file)->pMethods->xWrite(Real(file), buffer, size / 2, offset);
  return fault;
}

int Truncate(sqlite3_file* file, sqlite3_int64 size) {
  const int fault = Ask("truncate", Cast(file)->Path);
  return fault != SQLITE_OK ? fault : Real(file)->pMethods->xTruncate(Real(file), size);
}

int Sync(sqlite3_file* file, int flags) {
  const int fault = Ask("sync", Cast(file)->Path);
  return fault != SQLITE_OK ? fault : Real(file)->pMethods->xSync(Real(file), flags);
}

int GetSize(sqlite3_file* file, sqlite3_int64* size) {
  return Real(file)->pMethods->xFileSize(Real(file), size);
}
int Lock(sqlite3_file* file, int level) { return Real(file)->pMethods->xLock(Real(file), level); }
int Unlock(sqlite3_file* file, int level) { return Real(file)->pMethods->xUnlock(Real(file), level); }
int CheckLock(sqlite3_file* file, int* result) {
  return Real(file)->pMethods->xCheckReservedLock(Real(file), result);
}
int Control(sqlite3_file* file, int operation, void* argument) {
  return Real(file)->pMethods->xFileControl(Real(file), operation, argument);
}
int GetSectorSize(sqlite3_file* file) { return Real(file)->pMethods->xSectorSize(Real(file)); }
int GetDevice(sqlite3_file* file) { return Real(file)->pMethods->xDeviceCharacteristics(Real(file)); }

// clang-format off
const sqlite3_io_methods kMethods = {1, Close, Read, Write, Truncate, Sync, GetSize, Lock, Unlock, CheckLock,
                                     Control, GetSectorSize, GetDevice, nullptr, nullptr, nullptr, nullptr,
                                     nullptr, nullptr};
// clang-format on

int Open(sqlite3_vfs*, const char* path, sqlite3_file* file, int flags, int* outFlags) {
  file->pMethods = nullptr;
  if (const int fault = Ask("open", path)) return fault;
  Cast(file)->Path = path;
  const int code = realVfs->xOpen(realVfs, path, Real(file), flags, outFlags);
  if (Real(file)->pMethods != nullptr) file->pMethods = &kMethods;
  return code;
}

int Delete(sqlite3_vfs*, const char* path, int syncFolder) {
  if (const int fault = Ask("delete", path)) return fault;
  const int code = realVfs->xDelete(realVfs, path, syncFolder);
  return code != SQLITE_OK ? code : Ask("deleted", path);
}

}  // namespace

CFaultyVfs::CFaultyVfs() {
  realVfs = sqlite3_vfs_find(nullptr);
  faultyVfs = *realVfs;
  faultyVfs.zName = "faulty";
  faultyVfs.szOsFile = static_cast<int>(sizeof(FaultyFile)) + realVfs->szOsFile;
  faultyVfs.xOpen = Open;
  faultyVfs.xDelete = Delete;
  sqlite3_vfs_register(&faultyVfs, 1);
}

CFaultyVfs::~CFaultyVfs() {
  currentPlan = nullptr;
  sqlite3_vfs_unregister(&faultyVfs);
  sqlite3_vfs_register(realVfs, 1);
}

void CFaultyVfs::SetPlan(Plan plan) { currentPlan = std::move(plan); }

int GetFaultOf(const std::string& step, bool full) {
  if (step == "open") return SQLITE_CANTOPEN;
  if (step == "read") return SQLITE_IOERR_READ;
  if (step == "write") return full ? SQLITE_FULL : SQLITE_IOERR_WRITE;
  if (step == "sync") return full ? SQLITE_FULL : SQLITE_IOERR_FSYNC;
  if (step == "truncate") return SQLITE_IOERR_TRUNCATE;
  return step == "delete" ? SQLITE_IOERR_DELETE : SQLITE_IOERR_DIR_FSYNC;
}
