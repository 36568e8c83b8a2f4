#include "platform/FileLock.h"

#include <fcntl.h>
#include <sys/file.h>

#include <cerrno>
#include <utility>

#include "platform/Faults.h"

namespace platform {

std::error_code FileLock::TryAcquire(const std::string& path) {
  Release();
  if (const auto error = AskFaultPlan("create", path)) return error;
  Descriptor file;
  if (const auto error = file.Open(path, O_RDWR | O_CREAT | O_NOCTTY, 0600)) return error;
  while (::flock(file.Get(), LOCK_EX | LOCK_NB) != 0) {
    if (errno != EINTR) return LastError();
  }
  File = std::move(file);
  return {};
}

}  // namespace platform
