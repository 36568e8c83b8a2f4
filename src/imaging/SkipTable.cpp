#include "imaging/SkipTable.h"

#include <utility>

CSkipTable::CSkipTable(CHuffmanCode code) : Code(std::move(code)), Single(Code.MakeIndex(kIndexBits)) {
  Entries.reserve(Single.size());
  for (unsigned index = 0; index < Single.size(); ++index) {
    Entries.push_back(static_cast<std::uint16_t>(MakeEntry(index)));
  }
}

unsigned CSkipTable::MakeEntry(unsigned index) const {
  constexpr unsigned kMostCoefficients = 63;
  unsigned bits = 0;
  unsigned coefficients = 0;
  while (bits < kIndexBits) {
    const CHuffmanCode::Entry code = Single[index << bits & ((1U << kIndexBits) - 1)];
    if (code.Bits == 0 || bits + code.Bits > kIndexBits) break;
    const Step step = GetStep(code.Symbol);
    if (step.EndsBlock) return (bits + code.Bits) | coefficients * kCoefficient | kEndOfBlock;
    if (bits + code.Bits + step.Bits > kMostEntryBits) break;
    if (coefficients + step.Coefficients > kMostCoefficients) break;
    bits += code.Bits + step.Bits;
    coefficients += step.Coefficients;
  }
  return bits == 0 ? kNone : bits | coefficients * kCoefficient;
}

unsigned CSkipTable::FindFirst(std::uint64_t window) const {
  const CHuffmanCode::Entry code = Code.Find(window);
  if (code.Bits == 0) return kNone;
  const Step step = GetStep(code.Symbol);
  return (code.Bits + step.Bits) | step.Coefficients * kCoefficient | (step.EndsBlock ? kEndOfBlock : 0);
}
