#include "imaging/AutoFix.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <system_error>
#include <thread>
#include <vector>

#include "imaging/Image.h"
#include "imaging/ToneMap.h"

namespace {

constexpr unsigned kLevels = 256;

inline unsigned Brightest(const std::uint8_t* pixel) {
  return std::max(std::max(pixel[0], pixel[1]), pixel[2]);
}

inline unsigned Darkest(const std::uint8_t* pixel) {
  return std::min(std::min(pixel[0], pixel[1]), pixel[2]);
}

/// Some rows of a bitmap, worked on by one thread.
struct Band {
  std::uint8_t* Bits = nullptr;
  std::ptrdiff_t RowStep = 0;
  int Width = 0;
  int Height = 0;

  std::uint8_t* Row(int y) const { return Bits + y * RowStep; }
};

std::vector<Band> CutIntoBands(const BitmapPixels& pixels) {
  constexpr int kMostBands = 32;
  constexpr int kLeastHeight = 32;
  const std::ptrdiff_t rowStep =
      std::ptrdiff_t{pixels.Width} * (3 + pixels.ExtraBytesPerPixel) + pixels.RowPadding;
  const int count = std::clamp(pixels.Height / kLeastHeight, 1, kMostBands);
  std::vector<Band> bands;
  for (int k = 0; k < count; ++k) {
    const int first = static_cast<int>(std::int64_t{pixels.Height} * k / count);
    const int end = static_cast<int>(std::int64_t{pixels.Height} * (k + 1) / count);
    bands.push_back({pixels.Bits + first * rowStep, rowStep, pixels.Width, end - first});
  }
  return bands;
}

/// Calls `work(index)` for each band on all cores. A thread takes a band when it has time for one, so that on
/// a busy machine none waits for another's share.
template <typename Work>
void ForEachBand(const std::vector<Band>& bands, const Work& work) {
  std::atomic<std::size_t> next{0};
  const auto takeBands = [&] {
    for (std::size_t k = next++; k < bands.size(); k = next++) work(k);
  };
  const std::size_t threads = std::min<std::size_t>(bands.size(), std::thread::hardware_concurrency());
  std::vector<std::jthread> helpers;
  try {
    for (std::size_t k = 1; k < threads; ++k) helpers.emplace_back(takeBands);
  } catch (const std::system_error&) {
    // There are no more threads to be had; those that there are do it all.
  }
  takeBands();
}

template <int PixelBytes>
BrightnessCounts Count(const std::vector<Band>& bands) {
  // Neighbours are often alike, and additions to one place wait for each other.
  struct Counts {
    std::uint32_t Even[kLevels];
    std::uint32_t Odd[kLevels];
  };
  std::vector<Counts> counts(bands.size());
  ForEachBand(bands, [&](std::size_t k) {
    Counts own{};
    for (int y = 0; y < bands[k].Height; ++y) {
      const std::uint8_t* pixel = bands[k].Row(y);
      int left = bands[k].Width;
      for (; left > 1; left -= 2, pixel += std::ptrdiff_t{2} * PixelBytes) {
        ++own.Even[Brightest(pixel)];
        ++own.Odd[Brightest(pixel + PixelBytes)];
      }
      if (left > 0) ++own.Even[Brightest(pixel)];
    }
    counts[k] = own;
  });
  BrightnessCounts sum{};
  for (const Counts& part : counts)
    for (std::size_t i = 0; i < kLevels; ++i) sum[i] += std::int64_t{part.Even[i]} + part.Odd[i];
  return sum;
}

/// What a colour becomes depends on itself and on the brightest and the darkest colour of its pixel, so it is
/// worked out once for each three of them that can occur, 2.8 million at most, and looked up for each pixel.
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
    for (unsigned brightest = 0; brightest < kLevels; ++brightest)
      if (counts[brightest] > 0) Fill(brightest, map[brightest]);
  }

  /// Changes a row of pixels.
  template <int PixelBytes>
  void Change(std::uint8_t* pixel, int count) const {
    // A byte that is stored might be a part of this object for all the compiler knows.
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
    std::array<double, kLevels> shifted;  // what each colour becomes beside its equals,
    std::array<double, kLevels> scaled;   // and beside black
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

  // For each brightest colour the values begin at Start, and within them at Spread for each distance down to
  // the darkest one, whose value is the first. Room before them all lets each be found by the colour itself.
  std::array<std::uint32_t, kLevels> Start{};
  std::array<std::uint32_t, kLevels> Spread{};
  std::unique_ptr<std::uint8_t[]> Values;
};

template <int PixelBytes>
void Fix(const BitmapPixels& pixels) {
  const std::vector<Band> bands = CutIntoBands(pixels);
  const BrightnessCounts counts = Count<PixelBytes>(bands);
  const CColorTable table(MakeToneMap(counts), counts);
  ForEachBand(bands, [&](std::size_t k) {
    for (int y = 0; y < bands[k].Height; ++y) table.Change<PixelBytes>(bands[k].Row(y), bands[k].Width);
  });
}

}  // namespace

void AutoFix(CImage& image) {
  const BitmapPixels pixels = image.GetPixels();
  if (!pixels.Bits || pixels.Width < 1 || pixels.Height < 1) return;
  if (pixels.ExtraBytesPerPixel == 0)
    Fix<3>(pixels);
  else
    Fix<4>(pixels);
}
