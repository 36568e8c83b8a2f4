#include "platform/FileLock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <utility>

#include "platform/Faults.h"

namespace platform {
namespace {

constexpr int kSafely = O_NOFOLLOW | O_NONBLOCK | O_NOCTTY;

std::error_code OpenLockFile(const std::string& path, Descriptor& file) {
  std::error_code error = AskFaultPlan("create", path);
  if (!error) error = file.Open(path, O_RDWR | O_CREAT | kSafely, 0644);
  if (error && file.Open(path, O_RDONLY | kSafely)) return error;
  struct stat raw {};
  if (::fstat(file.Get(), &raw) != 0) return LastError();
  return S_ISREG(raw.st_mode) ? std::error_code() : make_error_code(std::errc::not_supported);
}

}  // namespace

std::error_code FileLock::TryAcquire(const std::string& path) {
  Release();
  Descriptor file;
  if (const auto error = OpenLockFile(path, file)) return error;
  while (::flock(file.Get(), LOCK_EX | LOCK_NB) != 0) {
    if (errno != EINTR) return LastError();
  }
  File = std::move(file);
  return {};
}

void FileLock::WriteNote(const std::string& note) const {
  // Written over what stands there, which takes no room on a full disk.
  const ssize_t written = ::pwrite(File.Get(), note.data(), note.size(), 0);
  if (::ftruncate(File.Get(), written < 0 ? 0 : written) != 0) return;
}

std::string FileLock::ReadNote(const std::string& path) {
  Descriptor file;
  std::array<char, 8192> text{};
  std::size_t got = 0;
  if (file.Open(path, O_RDONLY | kSafely) || file.Read(text.data(), text.size(), got)) return {};
  return {text.data(), got};
}

}  // namespace platform
