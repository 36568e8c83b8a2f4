// Preloaded into a program, this stands between it and the C library: it counts the calls that change files
// below one folder and lets the n-th of them fail, or kills the program there. It meets the calls of SQLite
// and Qt like those of the program itself.
//
// SWEEP_ROOT   the folder; nothing is counted elsewhere
// SWEEP_AT     the call at which it happens, from 1; 0 to count only
// SWEEP_HOW    kill: right before the call; eio: EIO, and not done; late: EIO, but done; read: EIO for a
//              read; full: ENOSPC for every call that needs room, from that one on
// SWEEP_COUNT  the file that gets the number of calls at the end
// SWEEP_WAIT   if set, counting waits for SweepBegin()

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>

namespace {

std::string_view GetSetting(const char* name) {
  const char* value = std::getenv(name);
  return value != nullptr ? value : "";
}

const std::string_view kRoot = GetSetting("SWEEP_ROOT");
const std::string_view kHow = GetSetting("SWEEP_HOW");
const long kAt = std::atol(GetSetting("SWEEP_AT").data());
std::atomic<bool> counts = GetSetting("SWEEP_WAIT").empty();
std::atomic<long> calls = 0;

enum class Kind { Change, Growth, Read };

bool IsBelowRoot(int folder, const char* path) {
  if (kRoot.empty()) return false;
  if (path[0] == '/') return std::string_view(path).starts_with(kRoot);
  char link[64], target[PATH_MAX];
  std::snprintf(link, sizeof link, folder == AT_FDCWD ? "/proc/self/cwd" : "/proc/self/fd/%d", folder);
  const ssize_t length = ::readlink(link, target, sizeof target);
  return length > 0 && std::string_view(target, static_cast<std::size_t>(length)).starts_with(kRoot);
}

/// The error that this call is to give; 0 for none.
int MeetCall(Kind kind, int folder, const char* path) {
  if (!counts || (kind == Kind::Read) != (kHow == "read") || !IsBelowRoot(folder, path)) return 0;
  const long call = ++calls;
  if (kHow == "full") return kAt != 0 && call >= kAt && kind == Kind::Growth ? ENOSPC : 0;
  if (call != kAt) return 0;
  if (kHow == "kill") ::raise(SIGKILL);
  return EIO;
}
int MeetCall(Kind kind, int descriptor) { return MeetCall(kind, descriptor, ""); }

template <typename Function>
Function* FindNext(const char* name) {
  return reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
}

/// Makes the call, or its error, or both.
template <typename Function, typename... Arguments>
auto Call(int error, const char* name, Arguments... arguments) {
  static Function* const next = FindNext<Function>(name);
  decltype(next(arguments...)) result = -1;
  if (error == 0 || kHow == "late") result = next(arguments...);
  if (error == 0) return result;
  errno = error;
  return static_cast<decltype(result)>(-1);
}

int OpenFile(const char* name, int folder, const char* path, int flags, mode_t mode) {
  const bool writes = (flags & (O_WRONLY | O_RDWR | O_CREAT)) != 0;
  const Kind kind = (flags & O_CREAT) != 0 ? Kind::Growth : writes ? Kind::Change : Kind::Read;
  const int error = MeetCall(kind, folder, path);
  if (error != 0 && kHow == "late") {  // a descriptor that nobody knows would stay open
    errno = error;
    return -1;
  }
  return Call<int(int, const char*, int, mode_t)>(error, name, folder, path, flags, mode);
}

mode_t GetMode(int flags, va_list& list) {
  return (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(list, mode_t) : 0;
}

struct Report {
  ~Report() {
    const std::string_view path = GetSetting("SWEEP_COUNT");
    counts = false;
    if (path.empty()) return;
    if (std::FILE* file = std::fopen(path.data(), "w")) {
      std::fprintf(file, "%ld\n", calls.load());
      std::fclose(file);
    }
  }
} report;

}  // namespace

extern "C" {

void SweepBegin() { counts = true; }

int open(const char* path, int flags, ...) {
  va_list list;
  va_start(list, flags);
  const mode_t mode = GetMode(flags, list);
  va_end(list);
  return OpenFile("openat", AT_FDCWD, path, flags, mode);
}
int openat(int folder, const char* path, int flags, ...) {
  va_list list;
  va_start(list, flags);
  const mode_t mode = GetMode(flags, list);
  va_end(list);
  return OpenFile("openat", folder, path, flags, mode);
}
ssize_t write(int file, const void* bytes, size_t size) {
  return Call<ssize_t(int, const void*, size_t)>(MeetCall(Kind::Growth, file), "write", file, bytes, size);
}
ssize_t pwrite(int file, const void* bytes, size_t size, off_t at) {
  return Call<ssize_t(int, const void*, size_t, off_t)>(MeetCall(Kind::Growth, file), "pwrite", file, bytes,
                                                        size, at);
}
ssize_t read(int file, void* bytes, size_t size) {
  return Call<ssize_t(int, void*, size_t)>(MeetCall(Kind::Read, file), "read", file, bytes, size);
}
ssize_t pread(int file, void* bytes, size_t size, off_t at) {
  return Call<ssize_t(int, void*, size_t, off_t)>(MeetCall(Kind::Read, file), "pread", file, bytes, size, at);
}
int fsync(int file) { return Call<int(int)>(MeetCall(Kind::Change, file), "fsync", file); }
int fdatasync(int file) { return Call<int(int)>(MeetCall(Kind::Change, file), "fdatasync", file); }
int ftruncate(int file, off_t size) {
  return Call<int(int, off_t)>(MeetCall(Kind::Change, file), "ftruncate", file, size);
}
int fchmod(int file, mode_t mode) {
  return Call<int(int, mode_t)>(MeetCall(Kind::Change, file), "fchmod", file, mode);
}
int chmod(const char* path, mode_t mode) {
  return Call<int(const char*, mode_t)>(MeetCall(Kind::Change, AT_FDCWD, path), "chmod", path, mode);
}
int mkdir(const char* path, mode_t mode) {
  return Call<int(const char*, mode_t)>(MeetCall(Kind::Growth, AT_FDCWD, path), "mkdir", path, mode);
}
int unlink(const char* path) {
  return Call<int(const char*)>(MeetCall(Kind::Change, AT_FDCWD, path), "unlink", path);
}
int rename(const char* from, const char* to) {
  return Call<int(const char*, const char*)>(MeetCall(Kind::Change, AT_FDCWD, to), "rename", from, to);
}
int renameat2(int fromFolder, const char* from, int toFolder, const char* to, unsigned flags) {
  return Call<int(int, const char*, int, const char*, unsigned)>(
      MeetCall(Kind::Change, toFolder, to), "renameat2", fromFolder, from, toFolder, to, flags);
}
int link(const char* from, const char* to) {
  return Call<int(const char*, const char*)>(MeetCall(Kind::Change, AT_FDCWD, to), "link", from, to);
}
int linkat(int fromFolder, const char* from, int toFolder, const char* to, int flags) {
  return Call<int(int, const char*, int, const char*, int)>(MeetCall(Kind::Change, toFolder, to), "linkat",
                                                            fromFolder, from, toFolder, to, flags);
}

// Sizes have 64 bits under either name.
int open64(const char*, int, ...) __attribute__((alias("open")));
int openat64(int, const char*, int, ...) __attribute__((alias("openat")));
ssize_t pwrite64(int, const void*, size_t, off64_t) __attribute__((alias("pwrite")));
ssize_t pread64(int, void*, size_t, off64_t) __attribute__((alias("pread")));
int ftruncate64(int, off64_t) __attribute__((alias("ftruncate")));
}
