#include "imaging/DcScan.h"

#include <algorithm>
#include <array>

CDcScan::CDcScan(std::span<const Block> unit, std::size_t unitCount, std::size_t interval)
    : Unit(unit), UnitCount(unitCount), Interval(interval > 0 ? interval : unitCount) {}

bool CDcScan::Read(const CEntropyData& data, unsigned shift, std::span<std::int16_t> coefficients,
                   std::span<BlockDetail> details) const {
  return ReadSegments(data, {coefficients, details},
                      [&](CBitReader& bits, const Part& part) { return ReadSegment(bits, shift, part); });
}

bool CDcScan::Refine(const CEntropyData& data, unsigned shift, std::span<std::int16_t> coefficients) const {
  return ReadSegments(data, {coefficients, {}}, [&](CBitReader& bits, const Part& part) {
    for (std::int16_t& coefficient : part.Coefficients) {
      bits.Refill();
      const auto bit = static_cast<int>(bits.GetWindow() >> 63);
      coefficient = static_cast<std::int16_t>(coefficient | bit << shift);
      bits.Drop(1);
    }
    return true;
  });
}

CDcScan::Part CDcScan::GetPart(const Part& all, std::size_t segment) const {
  const std::size_t first = segment * Interval;
  const std::size_t count = std::min(Interval, UnitCount - first);
  const std::size_t details = all.Details.size() / UnitCount;  // of a unit
  return {all.Coefficients.subspan(first * Unit.size(), count * Unit.size()),
          all.Details.subspan(first * details, count * details)};
}

template <typename ReadPart>
bool CDcScan::ReadSegments(const CEntropyData& data, const Part& all, const ReadPart& readPart) const {
  const std::size_t count = (UnitCount + Interval - 1) / Interval;
  if (data.GetSegmentCount() != count) return false;
  for (std::size_t segment = 0; segment < count; ++segment) {
    CBitReader bits = data.GetReader(segment);
    if (!readPart(bits, GetPart(all, segment))) return false;
    const std::size_t position = bits.GetPosition();
    const std::size_t end = data.GetEnd(segment);
    if (position > end) return false;
    // Behind the last segment some cameras write padding.
    if (segment + 1 < count && end - position >= 8) return false;
  }
  return true;
}

bool CDcScan::ReadSegment(CBitReader& segment, unsigned shift, const Part& part) const {
  CBitReader bits = segment;  // a copy can stay in the processor's registers
  std::array<int, 3> predictions{};
  BlockDetail* detail = part.Details.data();
  for (std::size_t at = 0; at < part.Coefficients.size(); at += Unit.size()) {
    for (std::size_t k = 0; k < Unit.size(); ++k) {
      const Block& block = Unit[k];
      int difference = 0;
      unsigned next = 1;
      bits.Refill();
      if (!block.Dc->Read(bits, difference)) return false;
      if (block.HasDetail && !block.Ac->ReadDetail(bits, *detail++, next)) return false;
      if (block.Ac && !block.Ac->PassBlock(bits, next)) return false;
      const int value = predictions[block.Component] += difference;
      const int shifted = value * (1 << shift);
      if (shifted != static_cast<std::int16_t>(shifted)) return false;
      part.Coefficients[at + k] = static_cast<std::int16_t>(shifted);
    }
    if (bits.HasRunOut()) return false;
  }
  segment = bits;
  return true;
}
