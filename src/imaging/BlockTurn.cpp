#include "imaging/BlockTurn.h"

#include <algorithm>
#include <cstddef>

namespace {

template <bool Negates>
JCOEF Sign(JCOEF value) {
  return static_cast<JCOEF>(Negates ? -value : value);
}

constexpr std::ptrdiff_t kSide = DCTSIZE;

/// `Step` is the way between two coefficients in the source that are neighbours in the target's row.
template <std::ptrdiff_t Step, bool NegatesEven, bool NegatesOdd>
void TurnRow(const JCOEF* source, JCOEF* target) {
  for (std::ptrdiff_t x = 0; x < kSide; x += 2) {
    target[x] = Sign<NegatesEven>(source[x * Step]);
    target[x + 1] = Sign<NegatesOdd>(source[(x + 1) * Step]);
  }
}

/// Mirroring a block negates the coefficients of every second column or row, those of odd functions.
template <bool Transposes, bool MirrorsColumns, bool MirrorsRows>
void TurnBlock(const JCOEF* source, JCOEF* target) {
  constexpr std::ptrdiff_t kStep = Transposes ? kSide : 1;
  constexpr std::ptrdiff_t kRowStep = Transposes ? 1 : kSide;
  for (std::ptrdiff_t y = 0; y < kSide; y += 2) {
    TurnRow<kStep, false, MirrorsColumns>(source + y * kRowStep, target + y * kSide);
    TurnRow<kStep, MirrorsRows, MirrorsColumns != MirrorsRows>(source + (y + 1) * kRowStep,
                                                               target + (y + 1) * kSide);
  }
}

using BlockTurn = void (*)(const JCOEF* source, JCOEF* target);

template <bool Transposes>
BlockTurn ChooseMirrored(const QuarterTurn& turn) {
  if (turn.MirrorsColumns)
    return turn.MirrorsRows ? TurnBlock<Transposes, true, true> : TurnBlock<Transposes, true, false>;
  return turn.MirrorsRows ? TurnBlock<Transposes, false, true> : TurnBlock<Transposes, false, false>;
}

BlockTurn ChooseBlockTurn(const QuarterTurn& turn) {
  return turn.Transposes ? ChooseMirrored<true>(turn) : ChooseMirrored<false>(turn);
}

JBLOCKARRAY GetRows(const CoefficientPlane& plane, JDIMENSION first, JDIMENSION count, bool toWrite) {
  return plane.Owner->mem->access_virt_barray(plane.Owner, plane.Blocks, first, count,
                                              toWrite ? TRUE : FALSE);
}

}  // namespace

void TurnPlane(const CoefficientPlane& source, const TurnedPlane& target, const QuarterTurn& turn) {
  const BlockTurn turnBlock = ChooseBlockTurn(turn);
  const auto column = [&](JDIMENSION x) { return turn.MirrorsColumns ? target.Width - 1 - x : x; };
  const auto row = [&](JDIMENSION y) { return turn.MirrorsRows ? target.Height - 1 - y : y; };
  // Whole units, since the library will read the rows behind the last one as well.
  const JDIMENSION band = kTurnedRowsAtOnce / target.RowUnit * target.RowUnit;
  for (JDIMENSION top = 0; top < target.Height; top += band) {
    const JDIMENSION count = std::min(band, target.Height - top);
    const JBLOCKARRAY rows = GetRows(target, top, RoundUp(count, target.RowUnit), true);
    if (turn.Transposes) {
      // A column of the band is a run of neighbours in a row of the source.
      for (JDIMENSION x = 0; x < target.Width; ++x) {
        const JBLOCKROW from = GetRows(source, column(x), 1, false)[0];
        for (JDIMENSION y = 0; y < count; ++y) turnBlock(from[row(top + y)], rows[y][x]);
      }
    } else {
      for (JDIMENSION y = 0; y < count; ++y) {
        const JBLOCKROW from = GetRows(source, row(top + y), 1, false)[0];
        for (JDIMENSION x = 0; x < target.Width; ++x) turnBlock(from[column(x)], rows[y][x]);
      }
    }
  }
}
