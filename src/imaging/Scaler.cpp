#include "imaging/Scaler.h"

#include <algorithm>
#include <vector>

namespace {

// Weights of one target pixel add up to exactly this, so that a flat area keeps its value.
constexpr unsigned kWeightBits = 15;
constexpr std::uint64_t kWeightSum = std::uint64_t{1} << kWeightBits;

// Between the passes a sample has 8 bits behind the point.
constexpr unsigned kFractionBits = 8;

/// Which source pixels make up a target pixel, in one direction.
struct Taps {
  int First = 0;            // source position
  int Count = 0;            // source pixels from there on
  std::size_t Weights = 0;  // where their weights begin
};

/// The taps of a run of target positions, in one direction.
class CAxis {
 public:
  /// Of `target` positions that `source` pixels are stretched to, those from `from` up to `to`.
  CAxis(int source, int target, int from, int to) {
    Positions.reserve(static_cast<std::size_t>(to - from));
    for (int position = from; position < to; ++position) {
      if (target <= source)
        AddAverage(source, target, position);
      else
        AddBlend(source, target, position);
    }
  }

  const std::vector<Taps>& GetPositions() const { return Positions; }
  const std::uint16_t* GetWeights(const Taps& taps) const { return Weights.data() + taps.Weights; }

 private:
  // In units of 1 / target of a source pixel, position p covers [p * source, (p + 1) * source) and source
  // pixel j covers [j * target, (j + 1) * target): all borders are whole numbers.
  void AddAverage(int source, int target, int position) {
    const auto s = static_cast<std::uint64_t>(source);
    const auto t = static_cast<std::uint64_t>(target);
    const std::uint64_t begin = static_cast<std::uint64_t>(position) * s;
    const std::uint64_t end = begin + s;
    const std::uint64_t first = begin / t;
    const std::uint64_t last = (end - 1) / t;
    Positions.push_back({static_cast<int>(first), static_cast<int>(last - first + 1), Weights.size()});
    std::uint64_t given = 0;  // weight given out so far: rounding errors don't add up
    for (std::uint64_t j = first; j <= last; ++j) {
      const std::uint64_t covered = std::min(end, (j + 1) * t) - begin;
      const std::uint64_t upTo = (covered * kWeightSum + s / 2) / s;
      Weights.push_back(static_cast<std::uint16_t>(upTo - given));
      given = upTo;
    }
  }

  // Centres of target pixels lie at (p + 1/2) * source / target, those of source pixels at j + 1/2.
  void AddBlend(int source, int target, int position) {
    const std::int64_t unit = 2 * std::int64_t{target};
    const std::int64_t centre = (2 * std::int64_t{position} + 1) * source - target;
    const std::int64_t first = std::max<std::int64_t>(centre, 0) / unit;
    const auto sum = static_cast<std::int64_t>(kWeightSum);
    std::int64_t second = centre < 0 ? 0 : (centre % unit * sum + target) / unit;
    if (first + 1 >= source) second = 0;
    Positions.push_back({static_cast<int>(first), second == 0 ? 1 : 2, Weights.size()});
    Weights.push_back(static_cast<std::uint16_t>(sum - second));
    if (second != 0) Weights.push_back(static_cast<std::uint16_t>(second));
  }

  std::vector<Taps> Positions;
  std::vector<std::uint16_t> Weights;
};

// Samples are taken in runs of this many, a count known to the compiler, so that it makes vectors of them.
constexpr std::size_t kRun = 16;

inline std::uint16_t ToFraction(std::uint32_t sum) {
  constexpr unsigned kShift = kWeightBits - kFractionBits;
  return static_cast<std::uint16_t>((sum + (1U << (kShift - 1))) >> kShift);
}

/// One row that is the weighted sum of `Count` source rows, for the few rows of a mild reduction.
template <int Count>
void MixFewRows(const std::uint8_t* const* rows, const std::uint16_t* weights, std::uint16_t* mixed,
                std::size_t samples) {
  const auto mix = [&](std::size_t i) {
    std::uint32_t sum = 0;
    for (int k = 0; k < Count; ++k) sum += std::uint32_t{weights[k]} * rows[k][i];
    mixed[i] = ToFraction(sum);
  };
  std::size_t i = 0;
  for (; i + kRun <= samples; i += kRun)
    for (std::size_t lane = 0; lane < kRun; ++lane) mix(i + lane);
  for (; i < samples; ++i) mix(i);
}

/// Mixes the rows of a source into one row of finer samples.
class CRowMixer {
 public:
  CRowMixer(const PixelSource& source, int firstColumn, int columns)
      : Source(source),
        Offset(static_cast<std::size_t>(firstColumn) * static_cast<std::size_t>(source.BytesPerPixel)),
        Mixed(static_cast<std::size_t>(columns) * static_cast<std::size_t>(source.BytesPerPixel)) {}

  const std::uint16_t* Mix(const Taps& taps, const std::uint16_t* weights) {
    if (taps.Count > kFewRows) {
      MixManyRows(taps, weights);
      return Mixed.data();
    }
    const std::uint8_t* rows[kFewRows] = {};
    for (int k = 0; k < taps.Count; ++k) rows[k] = Row(taps.First + k);
    switch (taps.Count) {
      case 1:
        MixFewRows<1>(rows, weights, Mixed.data(), Mixed.size());
        break;
      case 2:
        MixFewRows<2>(rows, weights, Mixed.data(), Mixed.size());
        break;
      default:
        MixFewRows<3>(rows, weights, Mixed.data(), Mixed.size());
        break;
    }
    return Mixed.data();
  }

 private:
  static constexpr int kFewRows = 3;  // all that a reduction to no less than half can meet

  const std::uint8_t* Row(int y) const { return Source.Row(y) + Offset; }

  void MixManyRows(const Taps& taps, const std::uint16_t* weights) {
    Sums.assign(Mixed.size(), 0);
    for (int k = 0; k < taps.Count; ++k) {
      const std::uint8_t* row = Row(taps.First + k);
      const std::uint32_t weight = weights[k];
      std::size_t i = 0;
      for (; i + kRun <= Sums.size(); i += kRun)
        for (std::size_t lane = 0; lane < kRun; ++lane) Sums[i + lane] += weight * row[i + lane];
      for (; i < Sums.size(); ++i) Sums[i] += weight * row[i];
    }
    std::transform(Sums.begin(), Sums.end(), Mixed.begin(), ToFraction);
  }

  const PixelSource& Source;
  const std::size_t Offset;  // bytes from a row's start to the first column needed
  std::vector<std::uint16_t> Mixed;
  std::vector<std::uint32_t> Sums;
};

/// Makes one target row of a mixed row, whose first pixel is source column `firstColumn`.
template <int SourceBytes, int TargetBytes>
void MixColumns(const std::uint16_t* mixed, int firstColumn, const CAxis& columns, std::uint8_t* target) {
  constexpr unsigned kShift = kWeightBits + kFractionBits;
  for (const Taps& taps : columns.GetPositions()) {
    const std::uint16_t* pixel = mixed + std::ptrdiff_t{taps.First - firstColumn} * SourceBytes;
    const std::uint16_t* weight = columns.GetWeights(taps);
    std::uint32_t blue = 1U << (kShift - 1);
    std::uint32_t green = blue;
    std::uint32_t red = blue;
    for (int k = 0; k < taps.Count; ++k, pixel += SourceBytes) {
      blue += std::uint32_t{weight[k]} * pixel[0];
      green += std::uint32_t{weight[k]} * pixel[1];
      red += std::uint32_t{weight[k]} * pixel[2];
    }
    target[0] = static_cast<std::uint8_t>(blue >> kShift);
    target[1] = static_cast<std::uint8_t>(green >> kShift);
    target[2] = static_cast<std::uint8_t>(red >> kShift);
    if constexpr (TargetBytes == 4) target[3] = 255;
    target += TargetBytes;
  }
}

using ColumnMixer = void (*)(const std::uint16_t*, int, const CAxis&, std::uint8_t*);

ColumnMixer ChooseColumnMixer(int sourceBytes, int targetBytes) {
  if (sourceBytes == 3) return targetBytes == 3 ? MixColumns<3, 3> : MixColumns<3, 4>;
  return targetBytes == 3 ? MixColumns<4, 3> : MixColumns<4, 4>;
}

}  // namespace

void StretchPixels(const PixelSource& source, const PixelBuffer& target, int x, int y, ImageSize size) {
  if (std::min({source.Size.Width, source.Size.Height, size.Width, size.Height}) < 1) return;
  // In 64 bits: a corner may lie as far outside as an int goes.
  const auto clip = [](int corner, int side, int limit, int& from, int& to) {
    from = static_cast<int>(std::clamp<std::int64_t>(-std::int64_t{corner}, 0, side));
    to = static_cast<int>(std::clamp<std::int64_t>(std::int64_t{limit} - corner, from, side));
    return from < to;
  };
  int left = 0, right = 0, top = 0, bottom = 0;
  if (!clip(x, size.Width, target.Size.Width, left, right)) return;
  if (!clip(y, size.Height, target.Size.Height, top, bottom)) return;

  const CAxis columns(source.Size.Width, size.Width, left, right);
  const CAxis rows(source.Size.Height, size.Height, top, bottom);
  const Taps& last = columns.GetPositions().back();
  const int firstColumn = columns.GetPositions().front().First;
  CRowMixer mixer(source, firstColumn, last.First + last.Count - firstColumn);
  const ColumnMixer mixColumns = ChooseColumnMixer(source.BytesPerPixel, target.BytesPerPixel);
  int targetRow = y + top;
  for (const Taps& taps : rows.GetPositions()) {
    const std::uint16_t* mixed = mixer.Mix(taps, rows.GetWeights(taps));
    std::uint8_t* row = target.Row(targetRow++) + std::ptrdiff_t{x + left} * target.BytesPerPixel;
    mixColumns(mixed, firstColumn, columns, row);
  }
}
