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

/// Months since January 1900 of a time, in local time.
std::int32_t GetMonthNumber(std::int32_t time);

/// CRC-32 with the polynomial of IEEE 802.3, started at all ones, without the final inversion.
std::uint32_t GetCrc32(std::string_view bytes);

/// The first letter of the text, whatever its case, as a number; 0 for an empty text.
std::int32_t GetInitial(std::string_view text);
