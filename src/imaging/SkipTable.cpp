#include "imaging/SkipTable.h"

#include <utility>

namespace {

constexpr unsigned kMostDcSize = 11;
constexpr unsigned kZeroRun = 0xF0;  // 16 coefficients of zero

/// The entries of a code by the next `indexBits` bits; without bits where the code is longer, or none.
std::vector<CHuffmanCode::Entry> IndexByBits(const CHuffmanCode& code, unsigned indexBits) {
  std::vector<CHuffmanCode::Entry> index;
  index.reserve(std::size_t{1} << indexBits);
  for (const CHuffmanCode::Entry& entry : code.GetEntries()) {
    if (entry.Bits > indexBits) break;
    index.insert(index.end(), std::size_t{1} << (indexBits - entry.Bits), entry);
  }
  index.resize(std::size_t{1} << indexBits);
  return index;
}

unsigned FirstSixteen(std::uint64_t window) { return static_cast<unsigned>(window >> 48); }

/// What a symbol of an AC table means.
struct Step {
  bool EndsBlock = false;
  unsigned Coefficients = 0;  // that it passes
  unsigned Bits = 0;          // of the last coefficient's value, behind the code
};

Step GetStep(unsigned symbol) {
  const unsigned size = symbol & 15;
  if (size == 0 && symbol != kZeroRun) return {true, 0, 0};
  return {false, (symbol >> 4) + 1, size};
}

}  // namespace

CDcTable::CDcTable(CHuffmanCode code) : Code(std::move(code)), Short(IndexByBits(Code, kIndexBits)) {
  for (CHuffmanCode::Entry& entry : Short) {
    if (entry.Symbol > kMostDcSize) entry = {};
  }
}

bool CDcTable::FindLong(std::uint64_t window, CHuffmanCode::Entry& entry) const {
  entry = Code.Find(FirstSixteen(window));
  return entry.Bits != 0 && entry.Symbol <= kMostDcSize;
}

CSkipTable::CSkipTable(CHuffmanCode code) : Code(std::move(code)), Single(IndexByBits(Code, kIndexBits)) {
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

bool CSkipTable::PassSymbol(CBitReader& bits, unsigned& passed) const {
  const CHuffmanCode::Entry code = Code.Find(FirstSixteen(bits.GetWindow()));
  if (code.Bits == 0) return false;
  const Step step = GetStep(code.Symbol);
  bits.Drop(code.Bits + step.Bits);
  passed += step.EndsBlock ? kEndOfBlock : step.Coefficients * kCoefficient;
  return step.EndsBlock || passed <= kBlockFull;
}
