#include "catalog/SpellingIndex.h"

#include <functional>
#include <string>

#include "platform/Unicode.h"

namespace {

std::size_t HashOf(std::string_view path) { return std::hash<std::string>()(platform::FoldCase(path)); }

}  // namespace

void CSpellingIndex::Add(std::string_view path, std::int32_t assetId) {
  IdsByHash.emplace(HashOf(path), assetId);
}

std::vector<std::int32_t> CSpellingIndex::Find(std::string_view path) const {
  std::vector<std::int32_t> ids;
  const auto [first, last] = IdsByHash.equal_range(HashOf(path));
  for (auto entry = first; entry != last; ++entry) ids.push_back(entry->second);
  return ids;
}
