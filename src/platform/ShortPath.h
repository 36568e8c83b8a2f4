#pragma once

#include <string>

#include "platform/Descriptor.h"

namespace platform {

/// Another path to a file, of few bytes however long its own is: the address of a local socket holds 107.
/// It leads there while this object lives.
class ShortPath {
 public:
  ShortPath() = default;
  explicit ShortPath(const std::string& path);

  /// The path itself if its folder can't be opened.
  const std::string& Get() const { return Path; }

 private:
  Descriptor Folder;
  std::string Path;
};

}  // namespace platform
