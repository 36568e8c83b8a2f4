#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <unordered_map>
#include <vector>

/// Finds photos by their path without regard to case. Paths are only ever added, so what it answers is to be
/// looked at: a photo may have gone, or have another path by now.
class CSpellingIndex {
 public:
  void Add(std::string_view path, std::int32_t assetId);

  /// The photos that had this path, or a spelling of it; some others too.
  std::vector<std::int32_t> Find(std::string_view path) const;

 private:
  std::unordered_multimap<std::size_t, std::int32_t> IdsByHash;
};
