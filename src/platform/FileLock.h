#pragma once

#include <string>
#include <system_error>

#include "platform/Descriptor.h"

namespace platform {

/// A lock that one process at a time can hold on a file. The kernel gives it back when the holder ends,
/// however it ends, so a stale one never blocks. The file is made if it is missing, and stays. A file that
/// may be read only, another user's or on a medium that can't be written, does as well. On network disks
/// the lock holds between machines where the disk's server knows such locks.
class FileLock {
 public:
  /// Takes the lock without waiting; std::errc::resource_unavailable_try_again if another holds it, in
  /// this process or elsewhere. A lock held before is given back first. A link is not followed.
  std::error_code TryAcquire(const std::string& path);

  /// Leaves a few words in the file for those who find the lock held. A disk that takes none is no error.
  void WriteNote(const std::string& note) const;

  /// What the holder has left, or an earlier one that was killed; empty if it can't be read.
  static std::string ReadNote(const std::string& path);

  void Release() { File = {}; }
  bool IsHeld() const { return File.Get() >= 0; }

 private:
  Descriptor File;
};

}  // namespace platform
