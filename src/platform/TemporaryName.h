#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <system_error>

#include "platform/Descriptor.h"

namespace platform {

/// What the random part of a name is made of, and its length.
inline constexpr std::string_view kSuffixLetters = "abcdefghijklmnopqrstuvwxyz234567";
inline constexpr std::size_t kSuffixLength = 10;

/// A new, empty file that is removed again unless it is kept. For the code of this folder.
class TemporaryName {
 public:
  TemporaryName() = default;
  ~TemporaryName();
  TemporaryName(const TemporaryName&) = delete;
  TemporaryName& operator=(const TemporaryName&) = delete;

  /// Makes the file under a name that nothing else has, in `folder` (with or without closing "/"; empty
  /// for the working folder), open for writing. `mode` is cut down by the process's mask. The file is locked
  /// until this object goes, where the disk knows locks.
  std::error_code Create(std::string_view folder, std::string_view prefix, unsigned mode);

  /// The file isn't removed any more: it has got another name, or is the caller's.
  void Keep() { Path.clear(); }

  const std::string& GetPath() const { return Path; }
  Descriptor& GetFile() { return File; }

 private:
  std::error_code Lock(bool& isOurs);

  std::string Path;
  Descriptor File;
  Descriptor Locked;  // the same open file: keeps the lock when File is closed
};

}  // namespace platform
