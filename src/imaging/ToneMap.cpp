#include "imaging/ToneMap.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace {

constexpr int kLast = 255;
constexpr int kLargestDarkMedian = 127;

/// Whether a bin that overdrew the budget, which is negative now, gave at least half of itself in time.
bool HalfCounts(std::int64_t bin, std::int64_t budget) { return bin + 2 * budget >= 0; }

int FindMedian(const BrightnessCounts& counts, std::int64_t pixels) {
  std::int64_t budget = pixels / 2;
  for (int i = 0; i <= kLast; ++i) {
    const std::int64_t bin = counts[static_cast<std::size_t>(i)];
    budget -= bin;
    if (budget == 0) return i;
    if (budget < 0) return HalfCounts(bin, budget) ? i : std::max(i - 1, 0);
  }
  return kLast;
}

/// Walks from an end of the range inwards, `step` 1 or -1, until `budget` pixels have been given up or a bin
/// has more than `binLimit`.
int FindClippingPoint(const BrightnessCounts& counts, int first, int step, std::int64_t binLimit,
                      std::int64_t budget) {
  for (int i = first; i >= 0 && i <= kLast; i += step) {
    const std::int64_t bin = counts[static_cast<std::size_t>(i)];
    if (bin > binLimit) return i;
    budget -= bin;
    if (budget == 0) return i;
    // In pictures of a few pixels even the first bin can be too much.
    if (budget < 0) return HalfCounts(bin, budget) ? i : std::clamp(i - step, 0, kLast);
  }
  return kLast - first;
}

double ChooseGamma(int median) {
  constexpr double kSoftenedBelow = 0.6;
  const double gamma = median == 0 ? 0.0 : std::log(0.5) / std::log(median / 255.0);
  return gamma < kSoftenedBelow ? gamma * (1.0 / 3.0) + 0.4 : gamma;
}

void Stretch(ToneMap& map, int low, int high) {
  const int black = map[static_cast<std::size_t>(low)];
  const int white = map[static_cast<std::size_t>(high)];
  for (int i = 0; i <= kLast; ++i) {
    int& value = map[static_cast<std::size_t>(i)];
    if (i <= low) {
      value = 0;
    } else if (i >= high) {
      value = kLast;
    } else if (white != black) {
      value = static_cast<int>((value - black) * 255.0 / (white - black));
    }
  }
}

}  // namespace

ToneMap MakeToneMap(const BrightnessCounts& counts) {
  const std::int64_t pixels = std::accumulate(counts.begin(), counts.end(), std::int64_t{0});
  const std::int64_t peak = *std::max_element(counts.begin(), counts.end());
  ToneMap map{};
  std::iota(map.begin(), map.end(), 0);
  const int median = FindMedian(counts, pixels);
  if (median <= kLargestDarkMedian) {
    const double gamma = ChooseGamma(median);
    for (int& value : map) value = static_cast<int>(255.0 * std::pow(value * kPart, gamma));
  }
  const auto binLimit = static_cast<std::int64_t>(0.05 * static_cast<double>(peak));
  const auto budget = static_cast<std::int64_t>(0.03 * static_cast<double>(pixels));
  const int low = FindClippingPoint(counts, 0, 1, binLimit, budget);
  const int high = FindClippingPoint(counts, kLast, -1, binLimit, budget);
  Stretch(map, low, high);
  return map;
}
