#include "support/FaultyVfs.h"

namespace {

CFaultyVfs::Plan currentPlan;
sqlite3_vfs* realVfs = nullptr;
sqlite3_vfs faultyVfs;

/// Stands behind the real file's structure in the same block of memory.
struct FileTail {
  const char* Path;
  const sqlite3_io_methods* Real;
  sqlite3_io_methods Faulty;  // the real ones but for the steps that can fail
};

FileTail& GetTail(sqlite3_file* file) {
  return *reinterpret_cast<FileTail*>(reinterpret_cast<char*>(file) + realVfs->szOsFile);
}

int Ask(const char* step, const char* path) {
  return currentPlan ? currentPlan(step, path != nullptr ? path : "") : SQLITE_OK;
}

int Read(sqlite3_file* file, void* buffer, int size, sqlite3_int64 offset) {
  const int fault = Ask("read", GetTail(file).Path);
  return fault != SQLITE_OK ? fault : GetTail(file).Real->xRead(file, buffer, size, offset);
}

int Write(sqlite3_file* file, const void* buffer, int size, sqlite3_int64 offset) {
  const int fault = Ask("write", GetTail(file).Path);
  if (fault == SQLITE_OK) return GetTail(file).Real->xWrite(file, buffer, size, offset);
  // A disk that fails has often taken a part.
  GetTail(file).Real->xWrite(file, buffer, size / 2, offset);
  return fault;
}

int Truncate(sqlite3_file* file, sqlite3_int64 size) {
  const int fault = Ask("truncate", GetTail(file).Path);
  return fault != SQLITE_OK ? fault : GetTail(file).Real->xTruncate(file, size);
}

int Sync(sqlite3_file* file, int flags) {
  const int fault = Ask("sync", GetTail(file).Path);
  return fault != SQLITE_OK ? fault : GetTail(file).Real->xSync(file, flags);
}

int Open(sqlite3_vfs*, const char* path, sqlite3_file* file, int flags, int* outFlags) {
  file->pMethods = nullptr;
  if (const int fault = Ask("open", path)) return fault;
  const int code = realVfs->xOpen(realVfs, path, file, flags, outFlags);
  if (file->pMethods == nullptr) return code;
  FileTail& tail = GetTail(file);
  tail = {path, file->pMethods, *file->pMethods};
  tail.Faulty.iVersion = 1;  // without shared memory, whose steps are not watched
  tail.Faulty.xRead = Read;
  tail.Faulty.xWrite = Write;
  tail.Faulty.xTruncate = Truncate;
  tail.Faulty.xSync = Sync;
  file->pMethods = &tail.Faulty;
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
  faultyVfs.szOsFile = realVfs->szOsFile + static_cast<int>(sizeof(FileTail));
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
