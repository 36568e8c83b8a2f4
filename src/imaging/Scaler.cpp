#include "imaging/Scaler.h"

#include <algorithm>
#include <array>
#include <vector>

namespace {

// Samples are cut to whole numbers.
constexpr float kRounding = 0.5F;

// The most source pixels that a target pixel covers in one direction in a reduction to half the side or more.
constexpr int kFewTaps = 3;

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
      if (target <= source) {
        AddAverage(source, target, position);
      } else {
        AddBlend(source, target, position);
      }
    }
  }

  /// Gives every position the same number of taps, with weights of 0 where it needs fewer, within source
  /// positions `begin` to `end`. False, with nothing changed, if that can't be.
  bool MakeUniform(int count, int begin, int end) {
    const auto hasMore = [count](const Taps& taps) { return taps.Count > count; };
    if (end - begin < count || std::ranges::any_of(Positions, hasMore)) return false;
    std::vector<float> uniform(Positions.size() * static_cast<std::size_t>(count));
    std::size_t at = 0;
    for (Taps& taps : Positions) {
      const int first = std::min(taps.First, end - count);
      std::copy_n(GetWeights(taps), taps.Count, uniform.data() + at + (taps.First - first));
      taps = {first, count, at};
      at += static_cast<std::size_t>(count);
    }
    Weights = std::move(uniform);
    return true;
  }

  const std::vector<Taps>& GetPositions() const { return Positions; }
  const float* GetWeights(const Taps& taps) const { return Weights.data() + taps.Weights; }

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
    const double unit = 1.0 / source;
    for (std::uint64_t j = first; j <= last; ++j) {
      const std::uint64_t covered = std::min(end, (j + 1) * t) - std::max(begin, j * t);
      Weights.push_back(static_cast<float>(static_cast<double>(covered) * unit));
    }
  }

  // Centres of target pixels lie at (p + 1/2) * source / target, those of source pixels at j + 1/2.
  void AddBlend(int source, int target, int position) {
    const std::int64_t unit = 2 * std::int64_t{target};
    const std::int64_t centre = (2 * std::int64_t{position} + 1) * source - target;
    const std::int64_t first = std::max<std::int64_t>(centre, 0) / unit;
    const bool hasTwo = centre > 0 && first + 1 < source;
    const double second = hasTwo ? static_cast<double>(centre % unit) / static_cast<double>(unit) : 0.0;
    Positions.push_back({static_cast<int>(first), hasTwo ? 2 : 1, Weights.size()});
    Weights.push_back(static_cast<float>(1.0 - second));
    if (hasTwo) Weights.push_back(static_cast<float>(second));
  }

  std::vector<Taps> Positions;
  std::vector<float> Weights;
};

// Samples are taken in runs of this many: at -O2 the compiler makes vectors only of a loop with a known
// count whose results can't overlap what it reads.
constexpr std::size_t kRun = 16;

/// A few source rows and what each counts, for the rows of a mild reduction.
struct WeightedRows {
  const std::uint8_t* First = nullptr;
  const std::uint8_t* Second = nullptr;
  const std::uint8_t* Third = nullptr;
  float FirstWeight = 0;
  float SecondWeight = 0;
  float ThirdWeight = 0;
};

/// Sample `i` of the weighted sum of the first `Count` rows.
template <int Count>
inline float MixSample(const WeightedRows& rows, std::size_t i) {
  float sum = rows.FirstWeight * rows.First[i];
  if constexpr (Count > 1) sum += rows.SecondWeight * rows.Second[i];
  if constexpr (Count > 2) sum += rows.ThirdWeight * rows.Third[i];
  return sum;
}

template <int Count>
void MixFewRows(const WeightedRows& rows, float* mixed, std::size_t samples) {
  std::size_t i = 0;
  for (; i + kRun <= samples; i += kRun) {
    std::array<float, kRun> run;
    for (std::size_t k = 0; k < kRun; ++k) run[k] = MixSample<Count>(rows, i + k);
    std::copy(run.begin(), run.end(), mixed + i);
  }
  for (; i < samples; ++i) mixed[i] = MixSample<Count>(rows, i);
}

/// Adds a weighted source row to sums.
void AddRow(const std::uint8_t* row, float weight, float* sums, std::size_t samples) {
  std::size_t i = 0;
  for (; i + kRun <= samples; i += kRun) {
    std::array<float, kRun> run;
    for (std::size_t k = 0; k < kRun; ++k) run[k] = sums[i + k] + weight * row[i + k];
    std::copy(run.begin(), run.end(), sums + i);
  }
  for (; i < samples; ++i) sums[i] += weight * row[i];
}

/// Mixes the rows of a source into one row of floating-point samples.
class CRowMixer {
 public:
  CRowMixer(const PixelSource& source, int firstColumn, int columns)
      : Source(source),
        Offset(static_cast<std::size_t>(firstColumn) * static_cast<std::size_t>(source.BytesPerPixel)),
        Mixed(static_cast<std::size_t>(columns) * static_cast<std::size_t>(source.BytesPerPixel)) {}

  const float* Mix(const Taps& taps, const float* weights) {
    if (taps.Count > kFewTaps) {
      MixManyRows(taps, weights);
      return Mixed.data();
    }
    const auto row = [&](int k) { return Row(taps.First + std::min(k, taps.Count - 1)); };
    const auto weight = [&](int k) { return k < taps.Count ? weights[k] : 0.0F; };
    const WeightedRows rows{row(0), row(1), row(2), weight(0), weight(1), weight(2)};
    switch (taps.Count) {
      case 1:
        MixFewRows<1>(rows, Mixed.data(), Mixed.size());
        break;
      case 2:
        MixFewRows<2>(rows, Mixed.data(), Mixed.size());
        break;
      default:
        MixFewRows<3>(rows, Mixed.data(), Mixed.size());
        break;
    }
    return Mixed.data();
  }

 private:
  const std::uint8_t* Row(int y) const { return Source.Row(y) + Offset; }

  void MixManyRows(const Taps& taps, const float* weights) {
    std::ranges::fill(Mixed, 0.0F);
    for (int k = 0; k < taps.Count; ++k) AddRow(Row(taps.First + k), weights[k], Mixed.data(), Mixed.size());
  }

  const PixelSource& Source;
  const std::size_t Offset;  // bytes from a row's start to the first column needed
  std::vector<float> Mixed;
};

/// Makes one target row of a mixed row, whose first pixel is source column `firstColumn`. With a `Count`
/// other than 0 all columns have that many taps: a loop whose end can be foreseen takes two thirds of the
/// time.
template <int SourceBytes, int TargetBytes, int Count>
void MixColumns(const float* mixed, int firstColumn, const CAxis& columns, std::uint8_t* target) {
  for (const Taps& taps : columns.GetPositions()) {
    const float* pixel = mixed + std::ptrdiff_t{taps.First - firstColumn} * SourceBytes;
    const float* weight = columns.GetWeights(taps);
    float blue = kRounding;
    float green = kRounding;
    float red = kRounding;
    for (int k = 0; k < (Count ? Count : taps.Count); ++k, pixel += SourceBytes) {
      blue += weight[k] * pixel[0];
      green += weight[k] * pixel[1];
      red += weight[k] * pixel[2];
    }
    target[0] = static_cast<std::uint8_t>(blue);
    target[1] = static_cast<std::uint8_t>(green);
    target[2] = static_cast<std::uint8_t>(red);
    if constexpr (TargetBytes == 4) target[3] = 255;
    target += TargetBytes;
  }
}

using ColumnMixer = void (*)(const float*, int, const CAxis&, std::uint8_t*);

template <int Count>
ColumnMixer ChooseColumnMixer(int sourceBytes, int targetBytes) {
  if (sourceBytes == 3) return targetBytes == 3 ? MixColumns<3, 3, Count> : MixColumns<3, 4, Count>;
  return targetBytes == 3 ? MixColumns<4, 3, Count> : MixColumns<4, 4, Count>;
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

  CAxis columns(source.Size.Width, size.Width, left, right);
  const CAxis rows(source.Size.Height, size.Height, top, bottom);
  const Taps& last = columns.GetPositions().back();
  const int firstColumn = columns.GetPositions().front().First;
  const int endColumn = last.First + last.Count;
  CRowMixer mixer(source, firstColumn, endColumn - firstColumn);
  const bool uniform = columns.MakeUniform(kFewTaps, firstColumn, endColumn);
  const ColumnMixer mixColumns = uniform
                                     ? ChooseColumnMixer<kFewTaps>(source.BytesPerPixel, target.BytesPerPixel)
                                     : ChooseColumnMixer<0>(source.BytesPerPixel, target.BytesPerPixel);
  int targetRow = y + top;
  for (const Taps& taps : rows.GetPositions()) {
    const float* mixed = mixer.Mix(taps, rows.GetWeights(taps));
    std::uint8_t* row = target.Row(targetRow++) + std::ptrdiff_t{x + left} * target.BytesPerPixel;
    mixColumns(mixed, firstColumn, columns, row);
  }
}
