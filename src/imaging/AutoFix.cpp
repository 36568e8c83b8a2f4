#include "imaging/AutoFix.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <numeric>
#include <system_error>
#include <thread>
#include <vector>

#include "imaging/Image.h"

namespace {

constexpr unsigned kLevels = 256;

/// How many pixels of a picture have each brightness; that of a pixel is the largest of its three colours.
using BrightnessCounts = std::array<std::int64_t, kLevels>;

/// What each brightness becomes, 0 to 255.
using ToneMap = std::array<int, kLevels>;

/// One step of a brightness, as a part of the whole range.
constexpr double kPart = 0.00392156862745098;

constexpr int kLast = 255;
constexpr int kLargestDarkMedian = 127;

/// Whether at least half of a bin was within the budget, which the bin has made negative.
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

/// Walks from an end of the range inwards, `step` 1 or -1, until `budget` pixels have been clipped or a bin
/// has more than `binLimit`.
int FindClippingPoint(const BrightnessCounts& counts, int first, int step, std::int64_t binLimit,
                      std::int64_t budget) {
  for (int i = first; i >= 0 && i <= kLast; i += step) {
    const std::int64_t bin = counts[static_cast<std::size_t>(i)];
    if (bin > binLimit) return i;
    budget -= bin;
    if (budget == 0) return i;
    // In a picture of a few pixels the first bin can exceed the budget.
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

/// The correction for a picture with those counts, at least one pixel in all: dark pictures are lifted by a
/// gamma curve that brings their median to the middle, or near it; then both ends are stretched to black and
/// white, past up to 3% of the pixels at each end, unless a brightness there is frequent.
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

inline unsigned Brightest(const std::uint8_t* pixel) {
  return std::max(std::max(pixel[0], pixel[1]), pixel[2]);
}

inline unsigned Darkest(const std::uint8_t* pixel) {
  return std::min(std::min(pixel[0], pixel[1]), pixel[2]);
}

/// Parts of a bitmap, each worked on by one thread.
std::vector<PixelBuffer> CutIntoBands(const PixelBuffer& pixels) {
  constexpr int kMostBands = 32;
  constexpr int kLeastHeight = 32;
  const int height = pixels.Size.Height;
  const int count = std::clamp(height / kLeastHeight, 1, kMostBands);
  std::vector<PixelBuffer> bands;
  for (int k = 0; k < count; ++k) {
    const int first = static_cast<int>(std::int64_t{height} * k / count);
    const int end = static_cast<int>(std::int64_t{height} * (k + 1) / count);
    bands.push_back(
        {pixels.Row(first), pixels.RowStep, {pixels.Size.Width, end - first}, pixels.BytesPerPixel});
  }
  return bands;
}

/// Calls `work(index)` for each band on all cores. Each thread takes the next band when it is free, so that a
/// slow thread doesn't hold up the others.
template <typename Work>
void ForEachBand(const std::vector<PixelBuffer>& bands, const Work& work) {
  std::atomic<std::size_t> next{0};
  const auto takeBands = [&] {
    for (std::size_t k = next++; k < bands.size(); k = next++) work(k);
  };
  const std::size_t threads = std::min<std::size_t>(bands.size(), std::thread::hardware_concurrency());
  std::vector<std::jthread> helpers;
  try {
    for (std::size_t k = 1; k < threads; ++k) helpers.emplace_back(takeBands);
  } catch (const std::system_error&) {
    // No more threads can be made; those that there are do all bands.
  }
  takeBands();
}

template <int PixelBytes>
BrightnessCounts Count(const std::vector<PixelBuffer>& bands) {
  // Neighbours are often alike, and additions to one counter wait for each other, so there are two sets.
  struct Counts {
    std::uint32_t Even[kLevels];
    std::uint32_t Odd[kLevels];
  };
  std::vector<Counts> counts(bands.size());
  ForEachBand(bands, [&](std::size_t k) {
    Counts own{};
    for (int y = 0; y < bands[k].Size.Height; ++y) {
      const std::uint8_t* pixel = bands[k].Row(y);
      int left = bands[k].Size.Width;
      for (; left > 1; left -= 2, pixel += std::ptrdiff_t{2} * PixelBytes) {
        ++own.Even[Brightest(pixel)];
        ++own.Odd[Brightest(pixel + PixelBytes)];
      }
      if (left > 0) ++own.Even[Brightest(pixel)];
    }
    counts[k] = own;
  });
  BrightnessCounts sum{};
  for (const Counts& part : counts) {
    for (std::size_t i = 0; i < kLevels; ++i) sum[i] += std::int64_t{part.Even[i]} + part.Odd[i];
  }
  return sum;
}

/// What a colour becomes depends on itself and on the brightest and the darkest colour of its pixel. It is
/// computed once for each combination of the three, 2.8 million at most, and looked up for each pixel.
class CColorTable {
 public:
  CColorTable(const ToneMap& map, const BrightnessCounts& counts) {
    std::uint32_t size = kLevels;
    for (unsigned brightest = 0; brightest < kLevels; ++brightest) {
      Spread[brightest] = brightest * (brightest + 1) / 2;
      Start[brightest] = size;
      if (counts[brightest] > 0) size += (brightest + 1) * (brightest + 2) / 2;
    }
    Values = std::make_unique_for_overwrite<std::uint8_t[]>(size);
    for (unsigned brightest = 0; brightest < kLevels; ++brightest) {
      if (counts[brightest] > 0) Fill(brightest, map[brightest]);
    }
  }

  /// Changes a row of pixels.
  template <int PixelBytes>
  void Change(std::uint8_t* pixel, int count) const {
    // In locals, or the compiler would read the pointers anew after each byte that is stored.
    const std::uint32_t* start = Start.data();
    const std::uint32_t* spread = Spread.data();
    const std::uint8_t* values = Values.get();
    for (; count > 0; --count, pixel += PixelBytes) {
      const unsigned brightest = Brightest(pixel);
      const unsigned darkest = Darkest(pixel);
      const std::uint8_t* own = values + (start[brightest] + spread[brightest - darkest] - darkest);
      const std::uint8_t blue = own[pixel[0]];
      const std::uint8_t green = own[pixel[1]];
      const std::uint8_t red = own[pixel[2]];
      pixel[0] = blue;
      pixel[1] = green;
      pixel[2] = red;
    }
  }

 private:
  void Fill(unsigned brightest, int mapped) {
    std::uint8_t* next = &Values[Start[brightest]];
    const double gain = brightest == 0 ? 0.0 : static_cast<double>(mapped) / brightest;
    std::array<double, kLevels> shifted;  // what each colour becomes in a grey pixel
    std::array<double, kLevels> scaled;   // and in a fully saturated one
    for (unsigned color = 0; color <= brightest; ++color) {
      shifted[color] = brightest * gain - (brightest - color);
      scaled[color] = color * gain;
    }
    for (unsigned spread = 0; spread <= brightest; ++spread) {
      const double share = spread * kPart;
      const double rest = 1.0 - share;
      for (unsigned color = brightest - spread; color <= brightest; ++color) {
        const double changed = shifted[color] * rest + scaled[color] * share;
        *next++ = static_cast<std::uint8_t>(static_cast<int>(std::max(changed, 0.0)));
      }
    }
  }

  // The values of a brightest colour begin at Start, and within them those of each difference to the darkest
  // colour at Spread, indexed by the colour less the darkest one. The first kLevels values are unused, so
  // that this subtraction stays inside the array.
  std::array<std::uint32_t, kLevels> Start{};
  std::array<std::uint32_t, kLevels> Spread{};
  std::unique_ptr<std::uint8_t[]> Values;
};

template <int PixelBytes>
void Fix(const PixelBuffer& pixels) {
  const std::vector<PixelBuffer> bands = CutIntoBands(pixels);
  const BrightnessCounts counts = Count<PixelBytes>(bands);
  const CColorTable table(MakeToneMap(counts), counts);
  ForEachBand(bands, [&](std::size_t k) {
    for (int y = 0; y < bands[k].Size.Height; ++y) {
      table.Change<PixelBytes>(bands[k].Row(y), bands[k].Size.Width);
    }
  });
}

}  // namespace

void AutoFix(CImage& image) {
  const PixelBuffer pixels = image.GetPixels();
  if (!pixels.Top || pixels.Size.Width < 1 || pixels.Size.Height < 1) return;
  if (pixels.BytesPerPixel == 3) {
    Fix<3>(pixels);
  } else {
    Fix<4>(pixels);
  }
}
