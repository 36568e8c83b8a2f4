#include "imaging/WayUp.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <utility>

#include "imaging/ExifReader.h"

namespace {

// Target pixels that are copied of a row before the next row begins. When rows become columns they come from
// as many rows, of which the processor's cache can hold a part.
constexpr int kPixelsAtOnce = 128;

bool SwapsSides(WayUp wayUp) { return wayUp >= WayUp::Transpose; }

bool MirrorsColumns(WayUp wayUp) {
  return wayUp == WayUp::MirrorColumns || wayUp == WayUp::TurnHalf || wayUp == WayUp::Transverse ||
         wayUp == WayUp::TurnLeft;
}

bool MirrorsRows(WayUp wayUp) {
  return wayUp == WayUp::TurnHalf || wayUp == WayUp::MirrorRows || wayUp == WayUp::TurnRight ||
         wayUp == WayUp::Transverse;
}

/// Where the pixels of the upright picture lie in the stored one.
struct UprightPixels {
  const std::uint8_t* First = nullptr;  // the upper left one
  std::ptrdiff_t Across = 0;            // bytes to the next one to the right
  std::ptrdiff_t Down = 0;              // bytes to the next one below
};

UprightPixels FindPixels(const PixelSource& stored, WayUp wayUp) {
  UprightPixels pixels{stored.Top, stored.BytesPerPixel, stored.RowStep};
  if (MirrorsColumns(wayUp)) {
    pixels.First += (stored.Size.Width - 1) * pixels.Across;
    pixels.Across = -pixels.Across;
  }
  if (MirrorsRows(wayUp)) {
    pixels.First += (stored.Size.Height - 1) * pixels.Down;
    pixels.Down = -pixels.Down;
  }
  if (SwapsSides(wayUp)) std::swap(pixels.Across, pixels.Down);
  return pixels;
}

template <std::size_t Bytes>
void CopyPixels(const UprightPixels& from, const PixelBuffer& target) {
  for (int left = 0; left < target.Size.Width; left += kPixelsAtOnce) {
    const int count = std::min(kPixelsAtOnce, target.Size.Width - left);
    for (int y = 0; y < target.Size.Height; ++y) {
      const std::uint8_t* source = from.First + left * from.Across + y * from.Down;
      std::uint8_t* pixel = target.Row(y) + left * static_cast<std::ptrdiff_t>(Bytes);
      // Four bytes move faster than three; the fourth one is overwritten by the next pixel.
      constexpr std::size_t kFaster = 4;
      for (int k = 1; k < count; ++k, source += from.Across, pixel += Bytes) {
        std::memcpy(pixel, source, kFaster);
      }
      std::memcpy(pixel, source, Bytes);
    }
  }
}

}  // namespace

WayUp WayUpOfTag(unsigned value) {
  const auto last = static_cast<unsigned>(WayUp::TurnLeft);
  return value >= 1 && value <= last ? static_cast<WayUp>(value) : WayUp::AsStored;
}

WayUp ReadWayUp(std::span<const std::uint8_t> headers) {
  CExifReader reader;
  reader.LoadBytes(headers);
  return WayUpOfTag(reader.GetShort(kWayUpTag));
}

ImageSize GetUprightSize(ImageSize stored, WayUp wayUp) {
  return SwapsSides(wayUp) ? ImageSize{stored.Height, stored.Width} : stored;
}

int GetStoredAngle(int angle, WayUp wayUp) {
  constexpr int kWholeTurn = 360;
  const bool isSeenMirrored = (MirrorsColumns(wayUp) != MirrorsRows(wayUp)) != SwapsSides(wayUp);
  return isSeenMirrored ? kWholeTurn - angle : angle;
}

void PutUpright(const PixelSource& stored, WayUp wayUp, const PixelBuffer& target) {
  const UprightPixels pixels = FindPixels(stored, wayUp);
  if (stored.BytesPerPixel == 3) {
    CopyPixels<3>(pixels, target);
  } else {
    CopyPixels<4>(pixels, target);
  }
}

CUprightRows::CUprightRows(ImageSize stored, WayUp wayUp, const PixelBuffer& target)
    : Stored(stored), Way(wayUp), Target(target) {
  if (wayUp == WayUp::AsStored) return;
  // Rows that lie a multiple of a large power of two apart would push each other out of the cache.
  constexpr std::size_t kCacheLine = 64;
  const std::size_t lines = (static_cast<std::size_t>(stored.Width) * 3 + kCacheLine) / kCacheLine;
  const std::size_t rowBytes = (lines | 1) * kCacheLine;
  const int rows = std::min(kPixelsAtOnce + kMostRowsAtOnce, stored.Height);
  Memory.resize(rowBytes * static_cast<std::size_t>(rows));
  Band = {Memory.data(), static_cast<std::ptrdiff_t>(rowBytes), {stored.Width, 0}, 3};
}

std::uint8_t* CUprightRows::Row(int y) const { return Memory.empty() ? Target.Row(y) : Band.Row(y - First); }

void CUprightRows::Advance(int end) {
  Band.Size.Height = end - First;
  if (Memory.empty() || (Band.Size.Height < kPixelsAtOnce && end < Stored.Height)) return;
  PixelBuffer part = Target;
  part.Size = GetUprightSize(Band.Size, Way);
  const int before = MirrorsRows(Way) ? Stored.Height - end : First;
  part.Top += before * (SwapsSides(Way) ? std::ptrdiff_t{Target.BytesPerPixel} : Target.RowStep);
  PutUpright(Band, Way, part);
  First = end;
}
