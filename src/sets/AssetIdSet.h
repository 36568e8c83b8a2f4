#pragma once

#include <cstdint>
#include <unordered_set>
#include <vector>

/// A set of AssetIDs. They are counted up from 1, so it is a bit for each; odd ones are kept apart.
class CAssetIdSet {
 public:
  void Add(std::int32_t assetId) {
    const auto bit = static_cast<std::uint32_t>(assetId);
    if (bit >= kMostBits) {
      Others.insert(assetId);
      return;
    }
    if (bit >= Bits.size()) Bits.resize(bit + bit / 2 + 64);
    Bits[bit] = true;
  }

  bool Contains(std::int32_t assetId) const {
    const auto bit = static_cast<std::uint32_t>(assetId);
    return bit < kMostBits ? bit < Bits.size() && Bits[bit] : Others.contains(assetId);
  }

  void Clear() {
    Bits.clear();
    Others.clear();
  }

 private:
  static constexpr std::uint32_t kMostBits = 1 << 24;

  std::vector<bool> Bits;
  std::unordered_set<std::int32_t> Others;
};
