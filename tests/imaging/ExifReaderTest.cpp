#include <gtest/gtest.h>

#include <algorithm>
#include <ctime>
#include <string_view>
#include <utility>

#include "imaging/ExifReader.h"
#include "support/ScratchFolder.h"

namespace {

constexpr std::uint16_t kDateTime = 306;
constexpr std::uint16_t kExifDirectory = 34665;
constexpr std::uint16_t kInteroperabilityDirectory = 40965;

/// A TIFF block built entry by entry, and the JPEG around it.
class CExifFile {
 public:
  explicit CExifFile(bool bigEndian = false) : BigEndian(bigEndian) {
    const char mark = bigEndian ? 'M' : 'I';
    Block = {static_cast<std::uint8_t>(mark), static_cast<std::uint8_t>(mark)};
    Put(42, 2);
    Put(8, 4);
  }

  /// Offset, as entries and links have it, of what comes next.
  std::uint32_t Here() const { return static_cast<std::uint32_t>(Block.size()); }

  CExifFile& Count(unsigned count) { return Put(count, 2); }
  CExifFile& Entry(unsigned tag, unsigned type, std::uint32_t count, std::uint32_t value) {
    return Put(tag, 2).Put(type, 2).Put(count, 4).Put(value, 4);
  }
  CExifFile& Link(std::uint32_t offset) { return Put(offset, 4); }
  CExifFile& Text(std::string_view text) {
    Block.insert(Block.end(), text.begin(), text.end());
    return *this;
  }

  /// A whole file: `before` stands between the start and the segment.
  std::vector<std::uint8_t> Jpeg(std::vector<std::uint8_t> before = {}) const {
    std::vector<std::uint8_t> file = std::move(before);
    file.insert(file.begin(), {0xFF, 0xD8});
    const std::size_t length = Block.size() + 8;
    file.insert(file.end(),
                {0xFF, 0xE1, static_cast<std::uint8_t>(length >> 8), static_cast<std::uint8_t>(length)});
    file.insert(file.end(), {'E', 'x', 'i', 'f', 0, 0});
    file.insert(file.end(), Block.begin(), Block.end());
    file.insert(file.end(), {0xFF, 0xD9});
    file.resize(file.size() + 32);  // no file is looked at that is very short
    return file;
  }

 private:
  CExifFile& Put(std::uint32_t value, unsigned bytes) {
    for (unsigned k = 0; k < bytes; ++k)
      Block.push_back(static_cast<std::uint8_t>(value >> 8 * (BigEndian ? bytes - 1 - k : k)));
    return *this;
  }

  bool BigEndian;
  std::vector<std::uint8_t> Block;
};

/// Local time with daylight saving off.
std::time_t Local(int year, int month, int day, int hour, int minute, int second) {
  std::tm local{};
  local.tm_year = year - 1900;
  local.tm_mon = month - 1;
  local.tm_mday = day;
  local.tm_hour = hour;
  local.tm_min = minute;
  local.tm_sec = second;
  return std::mktime(&local);
}

CExifFile DateFile(std::string_view text, unsigned count = 20, unsigned type = 2, bool bigEndian = false) {
  CExifFile file(bigEndian);
  file.Count(2).Entry(271, 2, 4, 0x41414141);
  file.Entry(kDateTime, type, count, file.Here() + 12 + 4).Link(0).Text(text).Text({"\0\0\0\0", 4});
  return file;
}

std::int32_t DateOf(const std::vector<std::uint8_t>& jpeg) {
  CExifReader reader;
  reader.LoadBytes(jpeg);
  return reader.GetDateTime(kDateTime);
}

std::vector<unsigned> TagsOf(const CExifFile& file) {
  CExifReader reader;
  EXPECT_EQ(ExifStatus::Success, reader.LoadBytes(file.Jpeg()));
  std::vector<unsigned> tags;
  ExifEntry entry;
  while (reader.GetEntry(entry, tags.empty()) == ExifStatus::Success && tags.size() < 100) {
    tags.push_back(entry.Tag);
    entry.Tag = 0;
  }
  return tags;
}

constexpr std::string_view kSomeDate = "2004:07:15 13:45:59";

}  // namespace

TEST(ExifReaderTest, ReadsTheDateInBothByteOrders) {
  const std::time_t expected = Local(2004, 7, 15, 13, 45, 59);
  ASSERT_GT(expected, 0);
  EXPECT_EQ(expected, DateOf(DateFile(kSomeDate).Jpeg()));
  EXPECT_EQ(expected, DateOf(DateFile(kSomeDate, 20, 2, true).Jpeg()));
}

TEST(ExifReaderTest, ADateOfAnotherFormIsNone) {
  for (const unsigned count : {0U, 4U, 19U, 21U})
    EXPECT_EQ(0, DateOf(DateFile(kSomeDate, count).Jpeg())) << count;
  EXPECT_EQ(0, DateOf(DateFile(kSomeDate, 20, 7).Jpeg()));
  for (const char* text : {"2004-07-15 13:45:59", "2004:07:15T13:45:59", "0000:00:00 00:00:00",
                           "    :  :     :  :  ", "1969:12:01 00:00:00", "2038:02:01 00:00:00",
                           "9999:99:99 99:99:99", "2004:07:15 13.45.59"})
    EXPECT_EQ(0, DateOf(DateFile(text).Jpeg())) << text;
  EXPECT_EQ(Local(2004, 1, 2, 3, 4, 5), DateOf(DateFile("2004: 1: 2  3: 4: 5").Jpeg()));
  EXPECT_EQ(Local(2004, 3, 1, 0, 0, 0), DateOf(DateFile("2004:02:30 00:00:00").Jpeg()));
}

TEST(ExifReaderTest, FindsTheSegmentBehindOthersAndFillBytes) {
  const CExifFile file = DateFile(kSomeDate);
  EXPECT_NE(0, DateOf(file.Jpeg({0xFF, 0xE0, 0, 4, 'J', 'F'})));
  EXPECT_NE(0, DateOf(file.Jpeg({0xFF, 0xE1, 0, 6, 'h', 't', 't', 'p'})));
  // Seven bytes of FF with the segment's own; one more is too much.
  EXPECT_NE(0, DateOf(file.Jpeg(std::vector<std::uint8_t>(6, 0xFF))));
  EXPECT_EQ(0, DateOf(file.Jpeg(std::vector<std::uint8_t>(7, 0xFF))));
  // The search runs on through a scan.
  EXPECT_NE(0, DateOf(file.Jpeg({0xFF, 0xDA, 0, 3, 1, 0x55, 0, 2})));
}

TEST(ExifReaderTest, TellsWhyThereIsNoSegment) {
  const CScratchFolder scratch;
  CExifReader reader;
  ExifEntry entry;
  EXPECT_EQ(ExifStatus::Unexpected, reader.GetEntry(entry, true));
  EXPECT_EQ(0x80070002, static_cast<std::uint32_t>(reader.Load(scratch.File("none.jpg"))));

  const auto file = DateFile(kSomeDate).Jpeg();
  const std::string bytes(file.begin(), file.end());
  EXPECT_EQ(ExifStatus::Success, reader.Load(scratch.Write("whole.jpg", bytes)));
  EXPECT_TRUE(reader.IsLoaded());
  EXPECT_EQ(ExifStatus::InvalidArgument, reader.Load(scratch.Write("other.jpg", 'x' + bytes)));
  EXPECT_FALSE(reader.IsLoaded());
  EXPECT_EQ(0, reader.GetDateTime(kDateTime));

  // The smallest segment there can be, in files of 49 and 50 bytes.
  std::vector<std::uint8_t> small = {0xFF, 0xD8, 0xFF, 0xE1, 0, 17, 'E', 'x', 'i', 'f', 0, 0, 'I', 'I'};
  small.resize(49);
  EXPECT_EQ(ExifStatus::InvalidArgument, reader.LoadBytes(small));
  small.resize(50);
  EXPECT_EQ(ExifStatus::Success, reader.LoadBytes(small));
  EXPECT_EQ(ExifStatus::Failure, reader.GetEntry(entry, true));
  small[5] = 16;
  EXPECT_EQ(ExifStatus::InvalidArgument, reader.LoadBytes(small));
  // As long as all that follows the marker is too long.
  small[5] = 46;
  EXPECT_EQ(ExifStatus::InvalidArgument, reader.LoadBytes(small));
  small[5] = 45;
  EXPECT_EQ(ExifStatus::Success, reader.LoadBytes(small));
}

TEST(ExifReaderTest, WalksIntoPointersAndAlongLinks) {
  CExifFile file;
  file.Count(3).Entry(256, 3, 1, 1);
  const std::uint32_t exif = file.Here() + 2 * 12 + 4;
  const std::uint32_t interoperability = exif + 2 + 2 * 12 + 4;
  const std::uint32_t second = interoperability + 2 + 12 + 4;
  file.Entry(kExifDirectory, 4, 1, exif).Entry(257, 3, 1, 1).Link(second);
  // Its first entry is a pointer again.
  file.Count(2).Entry(kInteroperabilityDirectory, 4, 1, interoperability).Entry(0x9003, 3, 1, 0).Link(0);
  file.Count(1).Entry(1, 2, 4, 0x383952).Link(0);
  file.Count(1).Entry(513, 4, 1, 0).Link(0).Text("tail");
  EXPECT_EQ((std::vector<unsigned>{256, 1, 0x9003, 257, 513}), TagsOf(file));

  CExifReader reader;
  reader.LoadBytes(file.Jpeg());
  ExifEntry entry{.Tag = 0x9003};
  EXPECT_EQ(ExifStatus::Success, reader.GetEntry(entry, true));
  entry.Tag = 256;  // lies before it
  EXPECT_EQ(ExifStatus::NoMoreItems, reader.GetEntry(entry, false));
  entry.Tag = 1;
  EXPECT_EQ(ExifStatus::Success, reader.GetEntry(entry, true));
  EXPECT_EQ("R98", std::string(reinterpret_cast<const char*>(entry.Value.data())));
}

TEST(ExifReaderTest, TheVeryFirstEntryIsTakenAsItIsAndATagOfZeroEndsTheSearch) {
  CExifFile file;
  const std::uint32_t exif = file.Here() + 2 + 3 * 12 + 4;
  file.Count(3).Entry(kExifDirectory, 4, 1, exif).Entry(0, 3, 1, 0).Entry(257, 3, 1, 0).Link(0);
  file.Count(1).Entry(0x9003, 3, 1, 0).Link(0).Text("tail");
  EXPECT_EQ((std::vector<unsigned>{kExifDirectory}), TagsOf(file));
}

TEST(ExifReaderTest, AValueOutsideTheSegmentCountsAsAbsent) {
  CExifFile file;
  file.Count(4).Entry(1000, 2, 5, 0xFFFFFFF8).Entry(1001, 12, 0x20000001, 8).Entry(1002, 2, 5, 0x7FFFFFFF);
  file.Entry(1003, 99, 4, 5).Link(0).Text("tail");
  EXPECT_EQ((std::vector<unsigned>{1003}), TagsOf(file));
}

TEST(ExifReaderTest, DirectoriesOutsideTheSegmentEndTheWalk) {
  for (const std::uint32_t offset : {0xFFFFFFFFU, 0xFFFFFFF8U, 0x80000000U, 5000U}) {
    CExifFile pointer;
    pointer.Count(2).Entry(256, 3, 1, 0).Entry(kExifDirectory, 4, 1, offset).Link(0).Text("tail");
    EXPECT_EQ((std::vector<unsigned>{256}), TagsOf(pointer));
    auto first = pointer.Jpeg();
    for (unsigned k = 0; k < 4; ++k) first[16 + k] = static_cast<std::uint8_t>(offset >> 8 * k);
    CExifReader reader;
    ASSERT_EQ(ExifStatus::Success, reader.LoadBytes(first));
    ExifEntry entry;
    EXPECT_EQ(ExifStatus::Failure, reader.GetEntry(entry, true));
  }
  CExifFile shortPointer;
  shortPointer.Count(3)
      .Entry(256, 3, 1, 0)
      .Entry(kExifDirectory, 3, 1, 8)
      .Entry(257, 3, 1, 0)
      .Link(0)
      .Text("tail");
  EXPECT_EQ((std::vector<unsigned>{256}), TagsOf(shortPointer));
}

TEST(ExifReaderTest, SixteenLevelsAreWalkedAndASeventeenthEndsTheWalk) {
  for (const int levels : {16, 17}) {
    CExifFile file;
    for (int level = 1; level < levels; ++level) {
      const std::uint32_t next = file.Here() + 2 + 2 * 12 + 4;
      file.Count(2).Entry(256, 3, 1, 0).Entry(kExifDirectory, 4, 1, next).Link(0);
    }
    file.Count(1).Entry(kDateTime, 3, 1, 0).Link(0).Text("tail");
    CExifReader reader;
    reader.LoadBytes(file.Jpeg());
    ExifEntry entry{.Tag = kDateTime};
    EXPECT_EQ(levels == 16 ? ExifStatus::Success : ExifStatus::NoMoreItems, reader.GetEntry(entry, true));
  }
}

TEST(ExifReaderTest, CyclesAndStormsOfPointersEnd) {
  CExifFile link;
  link.Count(1).Entry(256, 3, 1, 0).Link(8).Text("tail");
  CExifFile empty;
  empty.Count(0).Link(8).Text("tail");
  CExifFile pointer;
  pointer.Count(2).Entry(256, 3, 1, 0).Entry(kExifDirectory, 4, 1, 8).Link(0).Text("tail");
  // Each of sixteen levels leads to the next 300 times: 300 to the 15th power entries.
  CExifFile storm;
  for (int level = 0; level < 15; ++level) {
    storm.Count(301).Entry(256, 3, 1, 0);
    const std::uint32_t next = storm.Here() + 300 * 12 + 4;
    for (int k = 0; k < 300; ++k) storm.Entry(kExifDirectory, 4, 1, next);
    storm.Link(0);
  }
  storm.Count(1).Entry(256, 3, 1, 0).Link(0).Text("tail");
  for (const CExifFile* file : {&link, &empty, &pointer, &storm}) {
    CExifReader reader;
    ASSERT_EQ(ExifStatus::Success, reader.LoadBytes(file->Jpeg()));
    ExifEntry entry{.Tag = kDateTime};
    EXPECT_EQ(ExifStatus::NoMoreItems, reader.GetEntry(entry, true));
    EXPECT_EQ(0, reader.GetDateTime(kDateTime));
  }
}

TEST(ExifReaderTest, TheSearchForTheSegmentEndsInMegabytesOfScanData) {
  std::vector<std::uint8_t> zeros(std::size_t{64} << 20);
  zeros[0] = 0xFF;
  zeros[1] = 0xD8;
  CExifReader reader;
  EXPECT_EQ(ExifStatus::InvalidArgument, reader.LoadBytes(zeros));
}

TEST(ExifReaderTest, EveryCutAndEveryByteChangedIsSurvived) {
  const auto file = DateFile(kSomeDate).Jpeg();
  for (std::size_t size = 0; size < file.size(); ++size)
    DateOf({file.begin(), file.begin() + static_cast<long>(size)});
  int dates = 0;
  for (std::size_t i = 0; i < file.size(); ++i)
    for (const int value : {0, 1, 0x7F, 0x80, 0xFF}) {
      auto changed = file;
      changed[i] = static_cast<std::uint8_t>(value);
      if (DateOf(changed) != 0) ++dates;
    }
  EXPECT_GT(dates, 0);
}
