#include "platform/LargeMemory.h"

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <new>

namespace platform {
namespace {

constexpr std::size_t kLargePage = std::size_t{2} << 20;
constexpr std::size_t kWorthLargePages = 2 * kLargePage;

}  // namespace

void LargeMemoryRelease::operator()(std::uint8_t* bytes) const {
  std::free(bytes);  // NOLINT(cppcoreguidelines-owning-memory): this is their owner
}

LargeMemory AllocateLargeMemory(std::size_t size) {
  if (size < kWorthLargePages) {
    LargeMemory bytes(static_cast<std::uint8_t*>(std::malloc(size > 0 ? size : 1)));
    if (!bytes) throw std::bad_alloc();
    return bytes;
  }
  if (size > std::numeric_limits<std::size_t>::max() - kLargePage) throw std::bad_alloc();
  const std::size_t whole = (size + kLargePage - 1) / kLargePage * kLargePage;
  LargeMemory bytes(static_cast<std::uint8_t*>(std::aligned_alloc(kLargePage, whole)));
  if (!bytes) throw std::bad_alloc();
  // A system without large pages gives plain ones.
  static_cast<void>(::madvise(bytes.get(), whole, MADV_HUGEPAGE));
  return bytes;
}

std::uint64_t GetPhysicalMemory() {
  const long pages = ::sysconf(_SC_PHYS_PAGES);
  const long pageSize = ::sysconf(_SC_PAGE_SIZE);
  return static_cast<std::uint64_t>(std::max(pages, 0L)) * static_cast<std::uint64_t>(std::max(pageSize, 0L));
}

}  // namespace platform
