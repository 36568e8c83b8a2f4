#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

namespace platform {

struct LargeMemoryRelease {
  void operator()(std::uint8_t* bytes) const;
};

/// A block of bytes for something as large as a photo's bitmap.
using LargeMemory = std::unique_ptr<std::uint8_t[], LargeMemoryRelease>;

/// A block whose bytes aren't set. The system is asked for large pages where they fit: a bitmap of 12
/// megapixels then takes a dozen faults to fill instead of thousands, a fifth of the time that it takes to
/// decode. Raises std::bad_alloc.
LargeMemory AllocateLargeMemory(std::size_t size);

/// Bytes of memory that the machine has.
std::uint64_t GetPhysicalMemory();

}  // namespace platform
