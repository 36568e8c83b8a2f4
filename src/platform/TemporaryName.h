#pragma once

#include <string>
#include <string_view>
#include <system_error>

#include "platform/Descriptor.h"

namespace platform {

/// A new, empty file that is removed again unless it is kept. For the code of this folder.
class TemporaryName {
 public:
  TemporaryName() = default;
  ~TemporaryName();
  TemporaryName(const TemporaryName&) = delete;
  TemporaryName& operator=(const TemporaryName&) = delete;

  /// Makes the file under a name that nothing else has, in `folder` (with or without closing "/"; empty
  /// for the working folder), open for writing. `mode` is cut down by the process's mask.
  std::error_code Create(std::string_view folder, std::string_view prefix, unsigned mode);

  /// The file isn't removed any more: it has got another name, or is the caller's.
  void Keep() { Path.clear(); }

  const std::string& GetPath() const { return Path; }
  Descriptor& GetFile() { return File; }

 private:
  std::string Path;
  Descriptor File;
};

}  // namespace platform
