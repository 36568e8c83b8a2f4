#include "imaging/DcScan.h"

#include <algorithm>
#include <array>
#include <limits>

CDcScan::CDcScan(std::span<const Block> unit, std::size_t unitCount, std::size_t interval)
    : Unit(unit), UnitCount(unitCount), Interval(interval > 0 ? interval : unitCount) {}

bool CDcScan::Read(const CEntropyData& data, unsigned shift, std::span<std::int16_t> coefficients) const {
  return ReadSegments(data, coefficients, [&](CBitReader& bits, std::span<std::int16_t> part) {
    return ReadSegment(bits, shift, part);
  });
}

bool CDcScan::Refine(const CEntropyData& data, unsigned shift, std::span<std::int16_t> coefficients) const {
  return ReadSegments(data, coefficients, [&](CBitReader& bits, std::span<std::int16_t> part) {
    for (std::int16_t& coefficient : part) {
      bits.Refill();
      const auto bit = static_cast<int>(bits.GetWindow() >> 63);
      coefficient = static_cast<std::int16_t>(coefficient | bit << shift);
      bits.Drop(1);
    }
    return true;
  });
}

template <typename ReadPart>
bool CDcScan::ReadSegments(const CEntropyData& data, std::span<std::int16_t> coefficients,
                           const ReadPart& readPart) const {
  if (data.GetSegmentCount() != (UnitCount + Interval - 1) / Interval) return false;
  const std::size_t blocksPerSegment = Interval * Unit.size();
  for (std::size_t segment = 0; segment < data.GetSegmentCount(); ++segment) {
    const std::size_t first = segment * blocksPerSegment;
    CBitReader bits = data.GetReader(segment);
    const auto count = std::min(blocksPerSegment, coefficients.size() - first);
    if (!readPart(bits, coefficients.subspan(first, count))) return false;
    const std::size_t position = bits.GetPosition();
    const std::size_t end = data.GetEnd(segment);
    if (position > end) return false;
    // Behind the last segment some cameras write padding.
    const bool isLast = segment + 1 == data.GetSegmentCount();
    if (!isLast && end - position >= 8) return false;
  }
  return true;
}

bool CDcScan::ReadSegment(CBitReader& bits, unsigned shift, std::span<std::int16_t> coefficients) const {
  std::array<int, 3> predictions{};
  for (std::size_t at = 0; at < coefficients.size(); at += Unit.size()) {
    for (std::size_t k = 0; k < Unit.size(); ++k) {
      const Block& block = Unit[k];
      int difference = 0;
      bits.Refill();
      if (!block.Dc->Read(bits, difference)) return false;
      if (block.Ac && !block.Ac->PassBlock(bits)) return false;
      const int value = predictions[block.Component] += difference;
      const int shifted = value * (1 << shift);
      if (shifted != static_cast<std::int16_t>(shifted)) return false;
      coefficients[at + k] = static_cast<std::int16_t>(shifted);
    }
    if (bits.HasRunOut()) return false;
  }
  return true;
}
