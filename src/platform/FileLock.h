#pragma once

#include <string>
#include <system_error>

namespace platform {

/// A lock that one process at a time can hold on a file. The kernel gives it back when the holder ends,
/// however it ends, so a stale one never blocks. The file is made if it is missing, and stays.
class FileLock {
 public:
  FileLock() = default;
  ~FileLock();
  FileLock(FileLock&& other) noexcept;
  FileLock& operator=(FileLock&& other) noexcept;

  /// Takes the lock without waiting; std::errc::resource_unavailable_try_again if another holds it.
  std::error_code TryAcquire(const std::string& path);

  void Release();
  bool IsHeld() const { return Descriptor >= 0; }

 private:
  int Descriptor = -1;
};

}  // namespace platform
