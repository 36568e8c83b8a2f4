#include "imaging/WayUp.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <utility>

#include "imaging/ExifReader.h"

namespace {

// Target pixels that are copied of a row before the next row begins. When rows become columns they come from
// as many rows, of which the processor's cache can hold a part.
constexpr int kPixelsAtOnce = 64;

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
      for (int k = 0; k < count; ++k, source += from.Across, pixel += Bytes) {
        std::memcpy(pixel, source, Bytes);
      }
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
