#include "imaging/ForgedJpegs.h"

#include <algorithm>
#include <random>
#include <stdexcept>

namespace {

std::size_t FindMarker(std::span<const std::uint8_t> jpeg, std::initializer_list<std::uint8_t> markers,
                       bool last) {
  std::size_t found = jpeg.size();
  for (std::size_t i = 0; i + 1 < jpeg.size(); ++i) {
    if (jpeg[i] != 0xFF || std::find(markers.begin(), markers.end(), jpeg[i + 1]) == markers.end()) continue;
    found = i;
    if (!last) break;
  }
  if (found == jpeg.size()) throw std::runtime_error("no such marker");
  return found;
}

}  // namespace

std::vector<std::uint8_t> ForgeSize(std::vector<std::uint8_t> jpeg, int width, int height) {
  const std::size_t frame = FindMarker(jpeg, {0xC0, 0xC1, 0xC2, 0xC9, 0xCA}, false);
  jpeg[frame + 5] = static_cast<std::uint8_t>(height >> 8);
  jpeg[frame + 6] = static_cast<std::uint8_t>(height);
  jpeg[frame + 7] = static_cast<std::uint8_t>(width >> 8);
  jpeg[frame + 8] = static_cast<std::uint8_t>(width);
  return jpeg;
}

std::vector<std::uint8_t> RepeatLastScan(std::span<const std::uint8_t> jpeg, int times) {
  const std::size_t scan = FindMarker(jpeg, {0xDA}, true);
  const std::size_t end = FindMarker(jpeg, {0xD9}, true);
  std::vector<std::uint8_t> repeated(jpeg.begin(), jpeg.begin() + static_cast<std::ptrdiff_t>(scan));
  const auto lastScan = jpeg.subspan(scan, end - scan);
  for (int k = 0; k < times; ++k) repeated.insert(repeated.end(), lastScan.begin(), lastScan.end());
  repeated.insert(repeated.end(), {0xFF, 0xD9});
  return repeated;
}

std::vector<std::uint8_t> MakeNoisyJpeg(JpegRecipe recipe) {
  recipe.Quality = 90;
  return MakeJpeg(recipe, [random = std::mt19937(3)](int, int) mutable {
    const auto bits = random();
    return std::array<std::uint8_t, 4>{static_cast<std::uint8_t>(bits), static_cast<std::uint8_t>(bits >> 8),
                                       static_cast<std::uint8_t>(bits >> 16), 0};
  });
}
