#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "imaging/BitReader.h"
#include "platform/LargeMemory.h"

/// The place of the first marker in `bytes` from `from` on, which is that of its 0xFF, other than the restart
/// markers; the size of `bytes` if there is none.
std::size_t FindMarker(std::span<const std::uint8_t> bytes, std::size_t from);

/// The entropy-coded segments of a scan (ITU-T T.81, B.1.1.5): the data between its header and the next
/// marker, divided by restart markers, copied without stuffed bytes and markers.
class CEntropyData {
 public:
  /// `bytes` begin behind the scan's header and may go on behind the scan. The data end at the first marker
  /// other than the restart marker that is due there, and without `hasRestarts` at any. std::bad_alloc.
  CEntropyData(std::span<const std::uint8_t> bytes, bool hasRestarts);

  std::size_t GetSegmentCount() const { return Starts.size(); }

  CBitReader GetReader(std::size_t segment) const { return {{Memory.get(), Size}, Starts[segment]}; }

  /// Bits from the first segment's start to the end of this one, on the scale of the reader's position.
  std::size_t GetEnd(std::size_t segment) const {
    return (segment + 1 < Starts.size() ? Starts[segment + 1] : Size) * 8;
  }

 private:
  platform::LargeMemory Memory;
  std::size_t Size = 0;
  std::vector<std::size_t> Starts;  // bytes
};
