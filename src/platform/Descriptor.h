#pragma once

#include <cstddef>
#include <string>
#include <system_error>

namespace platform {

/// The error of the system call that just failed.
std::error_code LastError();

/// An open file descriptor, closed by its owner. For the code of this folder.
class Descriptor {
 public:
  Descriptor() = default;
  explicit Descriptor(int number) : Number(number) {}
  ~Descriptor();
  Descriptor(Descriptor&& other) noexcept;
  Descriptor& operator=(Descriptor&& other) noexcept;

  /// open(2), closed on exec. Without O_CREAT `mode` means nothing.
  std::error_code Open(const std::string& path, int flags, unsigned mode = 0);

  /// Closes the file; returns the error of a write that the system had delayed.
  std::error_code Close();

  int Get() const { return Number; }
  int Release();

  /// Reads up to `size` bytes; `got` is less only at the end of the file.
  std::error_code Read(void* bytes, std::size_t size, std::size_t& got) const;

 private:
  int Number = -1;
};

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
