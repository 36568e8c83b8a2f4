#pragma once

#include <cstdint>

#include "catalog/AssetRecord.h"
#include "sets/PhotoFilter.h"

/// Passes the photos of a range of rolls, both ends included; -1 leaves an end open.
class CRollFilter : public CPhotoFilter {
 public:
  CRollFilter(std::int32_t first, std::int32_t last) : First(first), Last(last) {}
  bool Matches(const CAssetRecord& record) const override {
    const std::int32_t roll = record.GetRollID();
    return (First == -1 || roll >= First) && (Last == -1 || roll <= Last);
  }

 private:
  const std::int32_t First, Last;
};
