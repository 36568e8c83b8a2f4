#pragma once

#include <cstddef>
#include <cstdio>
#include <memory>
#include <string>

/// Bytes in order, written or read by a storage as a whole.
class c4_Stream {
 public:
  virtual ~c4_Stream() = default;
  /// Reads up to `size` bytes; fewer only at the end or on an error.
  virtual std::size_t Read(void* buffer, std::size_t size) = 0;
  /// False if not all bytes were written.
  virtual bool Write(const void* buffer, std::size_t size) = 0;
  /// Ends writing; false if anything didn't reach the disk.
  virtual bool Flush() = 0;
};

/// A stream over a stdio file.
class c4_FileStream : public c4_Stream {
 public:
  /// `mode` is that of fopen: "rb" or "wb". IsOpen() tells whether it went well.
  c4_FileStream(const std::string& path, const char* mode);

  bool IsOpen() const { return File != nullptr; }
  /// Whether reading came to the end, and not to an error.
  bool IsAtEnd() const { return File != nullptr && std::feof(File.get()) != 0; }
  std::size_t Read(void* buffer, std::size_t size) override;
  bool Write(const void* buffer, std::size_t size) override;
  bool Flush() override;

 private:
  struct Closer {
    void operator()(std::FILE* file) const { std::fclose(file); }
  };
  std::unique_ptr<std::FILE, Closer> File;
};
