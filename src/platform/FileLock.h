#pragma once

#include <string>
#include <system_error>

#include "platform/Descriptor.h"

namespace platform {

/// A lock that one process at a time can hold on a file. The kernel gives it back when the holder ends,
/// however it ends, so a stale one never blocks. The file is made if it is missing, and stays.
class FileLock {
 public:
  /// Takes the lock without waiting; std::errc::resource_unavailable_try_again if another holds it, in
  /// this process or elsewhere. A lock held before is given back first.
  std::error_code TryAcquire(const std::string& path);

  void Release() { File = {}; }
  bool IsHeld() const { return File.Get() >= 0; }

 private:
  Descriptor File;
};

}  // namespace platform
