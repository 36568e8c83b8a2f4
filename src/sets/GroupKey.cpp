#include "sets/GroupKey.h"

#include <array>
#include <ctime>
#include <optional>

#include "base/Times.h"
#include "catalog/Properties.h"
#include "platform/Ascii.h"
#include "platform/LocalTime.h"
#include "platform/TextCompare.h"

namespace {

constexpr int kMonthsPerYear = 12;

constexpr std::array<std::uint32_t, 256> MakeCrcTable() {
  constexpr std::uint32_t kReversedPolynomial = 0xedb88320;
  std::array<std::uint32_t, 256> table{};
  for (std::uint32_t i = 0; i < table.size(); ++i) {
    std::uint32_t value = i;
    for (int bit = 0; bit < 8; ++bit) value = (value >> 1) ^ ((value & 1) != 0 ? kReversedPolynomial : 0);
    table[i] = value;
  }
  return table;
}

/// The time at which a month begins; months past December belong to the years after.
std::optional<std::int64_t> GetMonthBegin(int year, int month) {
  std::tm first{};
  first.tm_year = year;
  first.tm_mon = month;
  first.tm_mday = 1;
  return platform::FromLocalTime(first, platform::DaylightSaving::AsInForce);
}

/// CRC-32 with the polynomial of IEEE 802.3, started at all ones, without the final inversion.
std::uint32_t GetCrc32(std::string_view bytes) {
  static constexpr std::array<std::uint32_t, 256> kTable = MakeCrcTable();
  std::uint32_t crc = 0xffffffff;
  for (const char byte : bytes) {
    crc = (crc >> 8) ^ kTable[(crc ^ static_cast<unsigned char>(byte)) & 0xff];
  }
  return crc;
}

/// The first letter of the text, whatever its case, as a number; 0 for an empty text.
std::int32_t GetInitial(std::string_view text) {
  if (text.size() > 1 && text[0] >= 'a' && text[0] <= 'z' && platform::IsAscii(text.substr(1, 1))) {
    return text[0];
  }
  // The bytes of the character, high to low, so that stray bytes have a number too.
  std::uint32_t initial = 0;
  for (const char byte : platform::GetFirstLetter(text)) {
    initial = (initial << 8) | static_cast<unsigned char>(byte);
  }
  return static_cast<std::int32_t>(initial);
}

}  // namespace

std::int32_t CGroupKeyFinder::FindMonth(std::int32_t time) {
  if (time >= MonthBegin && time < MonthEnd) return MonthNumber;
  const std::tm local = LocalTime(time);
  const auto begin = GetMonthBegin(local.tm_year, local.tm_mon);
  const auto end = GetMonthBegin(local.tm_year, local.tm_mon + 1);
  MonthBegin = begin.value_or(0);
  MonthEnd = begin && end ? *end : MonthBegin;
  MonthNumber = local.tm_year * kMonthsPerYear + local.tm_mon;
  return MonthNumber;
}

std::int32_t CGroupKeyFinder::FindFolder(std::string_view folder) {
  if (folder != LastFolder) {
    LastFolder = folder;
    FolderKey = static_cast<std::int32_t>(GetCrc32(folder));
  }
  return FolderKey;
}

std::int32_t CGroupKeyFinder::Find(const CAssetRecord& record) {
  switch (Kind) {
    case SortKind::Month:
      return FindMonth(record.GetCachedDate());
    case SortKind::Folder:
      return FindFolder(props::Location.Get(record.GetRow()));
    case SortKind::Title:
      return GetInitial(props::Filename.Get(record.GetRow()));
    case SortKind::Rating:
      return record.GetCachedRating();
    case SortKind::Roll:
      return record.GetRollID();
    case SortKind::None:
      break;
  }
  return 0;
}
