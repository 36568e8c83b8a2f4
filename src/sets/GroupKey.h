#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "catalog/AssetRecord.h"
#include "catalog/PhotoFacts.h"

/// Photos with equal keys are one group. Only equality of keys means anything. The finder remembers the last
/// month and folder, which neighbours of a sorted set share.
class CGroupKeyFinder {
 public:
  explicit CGroupKeyFinder(SortKind kind) : Kind(kind) {}

  std::int32_t Find(const CAssetRecord& record);

 private:
  std::int32_t FindMonth(std::int32_t time);
  std::int32_t FindFolder(std::string_view folder);

  const SortKind Kind;
  // Times from MonthBegin to before MonthEnd lie in the month of that number.
  std::int64_t MonthBegin = 0;
  std::int64_t MonthEnd = 0;
  std::int32_t MonthNumber = 0;
  std::string LastFolder;
  std::int32_t FolderKey = static_cast<std::int32_t>(0xffffffff);  // of the empty text
};
