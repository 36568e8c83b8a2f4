#include "imaging/EntropyData.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr std::uint8_t kMarkerStart = 0xFF;
constexpr std::uint8_t kFirstRestart = 0xD0;
constexpr std::uint8_t kRestartMask = 7;

bool IsRestart(std::uint8_t code) { return (code & ~kRestartMask) == kFirstRestart; }

/// The place of the next 0xFF from `from` on that has a byte behind it; otherwise the end.
std::size_t FindMarkerStart(std::span<const std::uint8_t> bytes, std::size_t from) {
  if (from >= bytes.size()) return bytes.size();
  const void* found = std::memchr(bytes.data() + from, kMarkerStart, bytes.size() - from);
  if (!found) return bytes.size();
  const auto at = static_cast<std::size_t>(static_cast<const std::uint8_t*>(found) - bytes.data());
  return at + 1 < bytes.size() ? at : bytes.size();
}

}  // namespace

std::size_t FindMarker(std::span<const std::uint8_t> bytes, std::size_t from) {
  std::size_t at = FindMarkerStart(bytes, from);
  while (at < bytes.size() && (bytes[at + 1] == 0 || IsRestart(bytes[at + 1]))) {
    at = FindMarkerStart(bytes, at + 2);
  }
  return at;
}

CEntropyData::CEntropyData(std::span<const std::uint8_t> bytes, bool hasRestarts)
    : Memory(platform::AllocateLargeMemory(bytes.size())), Starts{0} {
  std::size_t from = 0;
  for (;;) {
    const std::size_t at = FindMarkerStart(bytes, from);
    std::copy(bytes.begin() + static_cast<std::ptrdiff_t>(from),
              bytes.begin() + static_cast<std::ptrdiff_t>(at), Memory.get() + Size);
    Size += at - from;
    if (at == bytes.size()) return;
    const std::uint8_t code = bytes[at + 1];
    if (code == 0) {
      Memory[Size++] = kMarkerStart;
    } else if (hasRestarts && code == (kFirstRestart | ((Starts.size() - 1) & kRestartMask))) {
      Starts.push_back(Size);
    } else {
      return;
    }
    from = at + 2;
  }
}
