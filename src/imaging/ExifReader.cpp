#include "imaging/ExifReader.h"

#include <algorithm>
#include <charconv>
#include <ctime>
#include <optional>
#include <string_view>

#include "base/Times.h"
#include "platform/Files.h"

namespace {

constexpr std::size_t kMinFileSize = 50;
constexpr std::size_t kMinRemaining = 16;
constexpr int kMaxFillBytes = 7;
constexpr std::uint8_t kApp1 = 0xE1;
constexpr std::string_view kExifMark{"Exif\0\0", 6};

// A real file has the segment among its first few. In entropy-coded data a step of the search is 32 KB on
// average, so only a forged file takes this many.
constexpr int kMaxSegments = 1 << 22;

// Offsets in the segment.
constexpr std::size_t kByteOrder = 8;  // all offsets count from here
constexpr std::size_t kFirstDirectory = 12;

constexpr std::size_t kEntrySize = 12;
constexpr std::uint16_t kExifDirectoryTag = 0x8769;
constexpr std::uint16_t kInteroperabilityDirectoryTag = 0xA005;
constexpr std::uint16_t kTypeAscii = 2;
constexpr std::uint16_t kTypeShort = 3;
constexpr std::uint16_t kTypeLong = 4;

// A segment has room for 5,461 entries, each met once; directories that lead back to each other have no end.
constexpr int kMaxSteps = 1 << 16;

constexpr std::string_view kDateForm = "0000:00:00 00:00:00";
constexpr std::size_t kDateBytes = 20;

std::uint64_t GetTypeWidth(std::uint16_t type) {
  switch (type) {
    case 3:
    case 8:
      return 2;
    case 4:
    case 9:
    case 11:
      return 4;
    case 5:
    case 10:
    case 12:
      return 8;
    default:
      return 1;
  }
}

bool IsPointer(std::uint16_t tag) { return tag == kExifDirectoryTag || tag == kInteroperabilityDirectoryTag; }

std::size_t ReadBigEndian16(std::span<const std::uint8_t> bytes) {
  return static_cast<std::size_t>(bytes[0]) << 8 | bytes[1];
}

/// `segment` begins with its length and holds at least 15 bytes.
bool IsExif(std::span<const std::uint8_t> segment) {
  if (!std::equal(kExifMark.begin(), kExifMark.end(), segment.begin() + 2)) return false;
  const std::uint8_t first = segment[kByteOrder];
  return (first == 'I' || first == 'M') && segment[kByteOrder + 1] == first;
}

/// The EXIF segment from its length on; empty if there is none.
std::span<const std::uint8_t> FindExif(std::span<const std::uint8_t> file) {
  if (file.size() < kMinFileSize || file[0] != 0xFF || file[1] != 0xD8) return {};
  std::size_t position = 2;
  for (int segments = 0; segments < kMaxSegments; ++segments) {
    int fill = 0;
    for (; position < file.size() && file[position] == 0xFF; ++position) {
      if (++fill > kMaxFillBytes) return {};
    }
    if (file.size() - position < kMinRemaining) return {};
    const std::uint8_t marker = file[position++];
    const auto rest = file.subspan(position);
    const std::size_t length = ReadBigEndian16(rest);
    if (marker == kApp1 && length > 16 && length < rest.size() && IsExif(rest)) return rest.first(length);
    if (length >= rest.size()) return {};
    position += length;
  }
  return {};
}

/// The number at the start of a text, behind any blanks; 0 if there is none.
int ReadNumber(std::string_view text) {
  text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
  int number = 0;
  std::from_chars(text.data(), text.data() + text.size(), number);
  return number;
}

std::optional<std::tm> ParseDate(std::string_view text) {
  for (std::size_t i = 0; i < kDateForm.size(); ++i) {
    if (kDateForm[i] != '0' && text[i] != kDateForm[i]) return std::nullopt;
  }
  std::tm local{};
  local.tm_year = ReadNumber(text.substr(0, 4)) - 1900;
  local.tm_mon = ReadNumber(text.substr(5, 2)) - 1;
  local.tm_mday = ReadNumber(text.substr(8, 2));
  local.tm_hour = ReadNumber(text.substr(11, 2));
  local.tm_min = ReadNumber(text.substr(14, 2));
  local.tm_sec = ReadNumber(text.substr(17, 2));
  return local;
}

}  // namespace

ExifStatus CExifReader::Load(const std::string& path) {
  Segment.clear();
  Depth = -1;
  std::vector<std::uint8_t> file;
  if (const std::error_code error = platform::ReadWholeFile(path, file)) {
    const auto number = static_cast<std::uint32_t>(error.value()) & 0xFFFF;
    return static_cast<ExifStatus>(static_cast<std::uint32_t>(ExifStatus::PlatformError) + number);
  }
  return LoadBytes(file);
}

ExifStatus CExifReader::LoadBytes(std::span<const std::uint8_t> file) {
  Segment.clear();
  Depth = -1;
  const auto found = FindExif(file);
  if (found.empty()) return ExifStatus::InvalidArgument;
  try {
    Segment.assign(found.begin(), found.end());
  } catch (const std::bad_alloc&) {
    return ExifStatus::OutOfMemory;
  }
  return ExifStatus::Success;
}

/// 0 outside the segment, which ends whatever is being read; so does Read32.
std::uint16_t CExifReader::Read16(std::uint64_t offset) const {
  if (offset + 2 > Segment.size()) return 0;
  const unsigned first = Segment[offset];
  const unsigned second = Segment[offset + 1];
  const bool bigEndian = Segment[kByteOrder] == 'M';
  return static_cast<std::uint16_t>(bigEndian ? first << 8 | second : second << 8 | first);
}

std::uint32_t CExifReader::Read32(std::uint64_t offset) const {
  if (offset + 4 > Segment.size()) return 0;
  const std::uint32_t first = Read16(offset);
  const std::uint32_t second = Read16(offset + 2);
  const bool bigEndian = Segment[kByteOrder] == 'M';
  return bigEndian ? first << 16 | second : second << 16 | first;
}

bool CExifReader::IsDirectory(std::uint64_t offset) const {
  if (offset + 2 > Segment.size()) return false;
  return offset + Read16(offset) * kEntrySize + 4 < Segment.size();
}

std::uint32_t CExifReader::CurrentEntry() const {
  const Level& level = Levels[static_cast<std::size_t>(Depth)];
  return level.Directory + 2 + level.Index * static_cast<std::uint32_t>(kEntrySize);
}

/// False if the value lies outside the segment.
bool CExifReader::DescribeCurrent(ExifEntry& entry) const {
  const std::uint64_t at = CurrentEntry();
  const std::uint16_t type = Read16(at + 2);
  const std::uint64_t bytes = Read32(at + 4) * GetTypeWidth(type);
  const std::uint64_t value = bytes <= 4 ? at + 8 : std::uint64_t{Read32(at + 8)} + kByteOrder;
  if (value + bytes > Segment.size()) return false;
  entry = {Read16(at), type, std::span(Segment).subspan(value, bytes)};
  return true;
}

/// Ends the walk: there is no position any more.
bool CExifReader::EndWalk() {
  Depth = -1;
  return false;
}

ExifStatus CExifReader::Start() {
  Depth = -1;
  Steps = 0;
  const std::uint64_t first = std::uint64_t{Read32(kFirstDirectory)} + kByteOrder;
  if (!IsDirectory(first)) return ExifStatus::Failure;
  Depth = 0;
  Levels[0] = {static_cast<std::uint32_t>(first), 0};
  // The very first entry is taken as it is, even if it is a pointer.
  const bool empty = Read16(first) == 0;
  return empty && !Settle() ? ExifStatus::NoMoreItems : ExifStatus::Success;
}

bool CExifReader::MoveOn() {
  ++Levels[static_cast<std::size_t>(Depth)].Index;
  return Settle();
}

/// Moves on to the next entry that is delivered, if the position is behind the last entry of a directory or
/// on a pointer.
bool CExifReader::Settle() {
  while (++Steps <= kMaxSteps) {
    const Level& level = Levels[static_cast<std::size_t>(Depth)];
    if (level.Index >= Read16(level.Directory)) {
      if (!FollowLink()) return false;
    } else if (!IsPointer(Read16(CurrentEntry()))) {
      return true;
    } else if (!GoDown()) {
      return EndWalk();
    }
  }
  return EndWalk();
}

/// From the end of a directory to the next of its chain, or else to the entry behind the pointer that led
/// down to it.
bool CExifReader::FollowLink() {
  Level& level = Levels[static_cast<std::size_t>(Depth)];
  const std::uint64_t link =
      Read16(level.Directory + 2 + std::uint64_t{Read16(level.Directory)} * kEntrySize);
  if (link == 0) {
    if (--Depth < 0) return false;
    ++Levels[static_cast<std::size_t>(Depth)].Index;
    return true;
  }
  if (!IsDirectory(link + kByteOrder)) return EndWalk();
  level = {static_cast<std::uint32_t>(link + kByteOrder), 0};
  return true;
}

bool CExifReader::GoDown() {
  const std::uint32_t at = CurrentEntry();
  if (Depth + 1 >= static_cast<int>(Levels.size())) return false;
  if (Read16(at + 2) != kTypeLong || Read32(at + 4) != 1) return false;
  const std::uint64_t directory = std::uint64_t{Read32(at + 8)} + kByteOrder;
  if (!IsDirectory(directory)) return false;
  Levels[static_cast<std::size_t>(++Depth)] = {static_cast<std::uint32_t>(directory), 0};
  return true;
}

ExifStatus CExifReader::GetEntry(ExifEntry& entry, bool restart) {
  if (!IsLoaded()) return ExifStatus::Unexpected;
  const std::uint16_t wanted = entry.Tag;
  if (restart || Depth < 0) {
    if (const ExifStatus status = Start(); status != ExifStatus::Success) return status;
  } else if (!MoveOn()) {
    return ExifStatus::NoMoreItems;
  }
  for (;;) {
    const std::uint16_t tag = Read16(CurrentEntry());
    if (tag == 0) return ExifStatus::NoMoreItems;
    if ((wanted == 0 || tag == wanted) && DescribeCurrent(entry)) return ExifStatus::Success;
    if (!MoveOn()) return ExifStatus::NoMoreItems;
  }
}

std::int32_t CExifReader::GetDateTime(std::uint16_t tag) {
  ExifEntry entry;
  entry.Tag = tag;
  if (GetEntry(entry, true) != ExifStatus::Success) return 0;
  if (entry.Type != kTypeAscii || entry.Value.size() != kDateBytes) return 0;
  const std::string text(entry.Value.begin(), entry.Value.end());
  const std::optional<std::tm> local = ParseDate(text);
  return local ? TimeFromLocal(*local) : 0;
}

std::uint16_t CExifReader::GetShort(std::uint16_t tag) const {
  const std::uint64_t first = std::uint64_t{Read32(kFirstDirectory)} + kByteOrder;
  if (!IsLoaded() || !IsDirectory(first)) return 0;
  const std::uint64_t end = first + 2 + std::uint64_t{Read16(first)} * kEntrySize;
  for (std::uint64_t at = first + 2; at < end; at += kEntrySize) {
    if (Read16(at) != tag) continue;
    return Read16(at + 2) == kTypeShort && Read32(at + 4) == 1 ? Read16(at + 8) : std::uint16_t{0};
  }
  return 0;
}
