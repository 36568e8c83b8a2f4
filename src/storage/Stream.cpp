#include "storage/Stream.h"

c4_FileStream::c4_FileStream(const std::string& path, const char* mode)
    : File(std::fopen(path.c_str(), mode)) {}

std::size_t c4_FileStream::Read(void* buffer, std::size_t size) {
  return File ? std::fread(buffer, 1, size, File.get()) : 0;
}

bool c4_FileStream::Write(const void* buffer, std::size_t size) {
  return File && std::fwrite(buffer, 1, size, File.get()) == size;
}

bool c4_FileStream::Flush() { return File && std::fflush(File.get()) == 0 && std::ferror(File.get()) == 0; }
