#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "imaging/DcTable.h"
#include "imaging/EntropyData.h"
#include "imaging/SkipTable.h"

/// Reads the DC coefficients of a scan of a JPEG, with all its components in units (MCUs, ITU-T T.81, A.2).
/// Any irregularity ends it: a code that is in no table, segments that are too short or too many, values that
/// no picture has.
class CDcScan {
 public:
  struct Block {
    std::size_t Component = 0;       // 0 to 2
    const CDcTable* Dc = nullptr;    // not needed for a refinement
    const CSkipTable* Ac = nullptr;  // null if the scan has no AC coefficients
    bool HasDetail = false;          // that is wanted; the scan has AC coefficients then
  };

  /// `unit` has the blocks of a unit in their order; the tables outlive the object. `interval` is the number
  /// of units in a segment, 0 if there is but one.
  CDcScan(std::span<const Block> unit, std::size_t unitCount, std::size_t interval);

  /// Reads a first scan into `coefficients`, block after block, each times 2 to the power of `shift`, and
  /// into `details` what is wanted of that. False if it is irregular.
  bool Read(const CEntropyData& data, unsigned shift, std::span<std::int16_t> coefficients,
            std::span<BlockDetail> details) const;

  /// Reads a bit for each coefficient, of the value 2 to the power of `shift` (ITU-T T.81, G.1.2.1).
  bool Refine(const CEntropyData& data, unsigned shift, std::span<std::int16_t> coefficients) const;

  std::size_t GetBlockCount() const { return UnitCount * Unit.size(); }

 private:
  /// The blocks of a segment, or of all.
  struct Part {
    std::span<std::int16_t> Coefficients;
    std::span<BlockDetail> Details;
  };

  template <typename ReadPart>
  bool ReadSegments(const CEntropyData& data, const Part& all, const ReadPart& readPart) const;
  bool ReadSegment(CBitReader& segment, unsigned shift, const Part& part) const;
  Part GetPart(const Part& all, std::size_t segment) const;

  const std::span<const Block> Unit;
  const std::size_t UnitCount;
  const std::size_t Interval;
};
