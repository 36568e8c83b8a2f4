#include "platform/Descriptor.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

namespace platform {

std::error_code LastError() { return {errno, std::generic_category()}; }

Descriptor::~Descriptor() {
  // A caller that needs the result has called Close before.
  static_cast<void>(Close());
}

Descriptor::Descriptor(Descriptor&& other) noexcept : Number(other.Release()) {}

Descriptor& Descriptor::operator=(Descriptor&& other) noexcept {
  if (this != &other) {
    static_cast<void>(Close());
    Number = other.Release();
  }
  return *this;
}

std::error_code Descriptor::Open(const std::string& path, int flags, unsigned mode) {
  static_cast<void>(Close());
  do {
    Number = ::open(path.c_str(), flags | O_CLOEXEC, mode);
  } while (Number < 0 && errno == EINTR);
  return Number < 0 ? LastError() : std::error_code();
}

std::error_code Descriptor::Close() {
  const int number = Release();
  if (number < 0) return {};
  // Linux gives the descriptor back even when the call was interrupted; a second close could hit another's.
  if (::close(number) != 0 && errno != EINTR) return LastError();
  return {};
}

int Descriptor::Release() { return std::exchange(Number, -1); }

std::error_code Descriptor::Read(void* bytes, std::size_t size, std::size_t& got) const {
  got = 0;
  while (got < size) {
    const ssize_t count = ::read(Number, static_cast<char*>(bytes) + got, size - got);
    if (count == 0) break;
    if (count > 0) {
      got += static_cast<std::size_t>(count);
    } else if (errno != EINTR) {
      return LastError();
    }
  }
  return {};
}

ShortPath::ShortPath(const std::string& path) : Path(path) {
  const std::size_t slash = path.rfind('/');
  if (slash == std::string::npos || Folder.Open(path.substr(0, slash + 1), O_PATH | O_DIRECTORY)) return;
  Path = "/proc/self/fd/" + std::to_string(Folder.Get()) + path.substr(slash);
}

}  // namespace platform
