#include <gtest/gtest.h>

#include <ctime>

#include "imaging/ExifReader.h"
#include "imaging/WayUp.h"
namespace {

constexpr unsigned kExif = 34665;  // the tags of the two pointers
constexpr unsigned kInteroperability = 40965;
constexpr const char* kSomeDate = "2004:07:15 13:45:59";

using Bytes = std::vector<std::uint8_t>;
using Tags = std::vector<unsigned>;

/// A TIFF block built entry by entry, and the JPEG around it.
class CExifFile {
 public:
  explicit CExifFile(bool bigEndian = false) : BigEndian(bigEndian) {
    for (int k = 0; k < 2; ++k) Put(bigEndian ? 'M' : 'I', 1);
    Put(42, 2).Put(8, 4);
  }

  /// Offset, as entries and links have it, of what comes next.
  std::uint32_t Here() const { return static_cast<std::uint32_t>(Block.size()); }

  CExifFile& Count(unsigned count) { return Put(count, 2); }
  CExifFile& Entry(unsigned tag, unsigned type, std::uint32_t count, std::uint32_t value) {
    return Put(tag, 2).Put(type, 2).Put(count, 4).Put(value, 4);
  }

  /// The link to the next directory, and some bytes behind it, so that the directory ends before the segment.
  CExifFile& Link(std::uint32_t offset, const std::string& behind = {}) {
    Put(offset, 4);
    for (const char c : behind) Put(static_cast<std::uint8_t>(c), 1);
    return *this;
  }

  /// A whole file: `before` stands between the start and the segment.
  Bytes Jpeg(const Bytes& before = {}) const {
    Bytes file = {0xFF, 0xD8};
    file.insert(file.end(), before.begin(), before.end());
    const auto length = static_cast<unsigned>(Block.size() + 8);
    for (const unsigned byte : {0xFFU, 0xE1U, length >> 8, length % 256, 69U, 120U, 105U, 102U, 0U, 0U}) {
      file.push_back(static_cast<std::uint8_t>(byte));
    }
    file.insert(file.end(), Block.begin(), Block.end());
    file.resize(file.size() + 34);  // very short files are refused
    return file;
  }

 private:
  CExifFile& Put(std::uint32_t value, unsigned bytes) {
    for (unsigned k = 0; k < bytes; ++k) {
      Block.push_back(static_cast<std::uint8_t>(value >> 8 * (BigEndian ? bytes - 1 - k : k)));
    }
    return *this;
  }

  bool BigEndian;
  Bytes Block;
};

CExifFile DateFile(const std::string& text, unsigned count = 20, unsigned type = 2, bool bigEndian = false) {
  CExifFile file(bigEndian);
  file.Count(2).Entry(271, 2, 4, 0x41414141);
  file.Entry(kDateTimeTag, type, count, file.Here() + 12 + 4).Link(0, text + "____");
  return file;
}

std::int32_t DateOf(const Bytes& jpeg) {
  CExifReader reader;
  reader.LoadBytes(jpeg);
  return reader.GetDateTime(kDateTimeTag);
}

std::int64_t Local(const char* text) {
  std::tm local{};
  EXPECT_NE(::strptime(text, "%Y:%m:%d %H:%M:%S", &local), nullptr);
  local.tm_isdst = 0;
  return std::mktime(&local);
}

/// The tags that a walk delivers.
Tags TagsOf(const CExifFile& file) {
  CExifReader reader;
  reader.LoadBytes(file.Jpeg());
  Tags tags;
  for (ExifEntry entry; reader.GetEntry(entry, tags.empty()) == ExifStatus::Success; entry.Tag = 0) {
    tags.push_back(entry.Tag);
  }
  return tags;
}

}  // namespace

TEST(ExifReaderTest, ReadsDatesOfTheOneFormInBothByteOrders) {
  for (const bool bigEndian : {false, true}) {
    EXPECT_EQ(DateOf(DateFile(kSomeDate, 20, 2, bigEndian).Jpeg()), Local(kSomeDate));
  }
  EXPECT_EQ(DateOf(DateFile("2004: 1: 2  3: 4: 5").Jpeg()), Local("2004:01:02 03:04:05"));
  EXPECT_EQ(DateOf(DateFile("2004:02:30 00:00:00").Jpeg()), Local("2004:03:01 00:00:00"));
  for (const unsigned count : {4U, 19U, 21U}) {
    EXPECT_EQ(DateOf(DateFile(kSomeDate, count).Jpeg()), 0) << count;
  }
  EXPECT_EQ(DateOf(DateFile(kSomeDate, 20, 7).Jpeg()), 0);
  for (const char* text :
       {"2004-07:15 13:45:59", "2004:07-15 13:45:59", "2004:07:15T13:45:59", "2004:07:15 13.45:59",
        "2004:07:15 13:45.59", "0000:00:00 00:00:00", "1969:12:01 00:00:00", "2038:02:01 00:00:00"}) {
    EXPECT_EQ(DateOf(DateFile(text).Jpeg()), 0) << text;
  }
}

TEST(ExifReaderTest, FindsTheSegmentBehindOthersAndFillBytes) {
  const CExifFile file = DateFile(kSomeDate);
  EXPECT_NE(DateOf(file.Jpeg({0xFF, 0xE0, 0, 4, 'J', 'F'})), 0);
  EXPECT_NE(DateOf(file.Jpeg({0xFF, 0xE1, 0, 6, 'h', 't', 't', 'p'})), 0);
  EXPECT_NE(DateOf(file.Jpeg(Bytes(6, 0xFF))), 0) << "seven with the segment's own";
  EXPECT_EQ(DateOf(file.Jpeg(Bytes(7, 0xFF))), 0);
  EXPECT_NE(DateOf(file.Jpeg({0xFF, 0xDA, 0, 3, 1, 0x55, 0, 2})), 0) << "the search runs on through a scan";

  // The smallest segment, in files of 49 and 50 bytes.
  CExifReader reader;
  ExifEntry entry;
  Bytes small = {0xFF, 0xD8, 0xFF, 0xE1, 0, 17, 'E', 'x', 'i', 'f', 0, 0, 'I', 'I'};
  small.resize(49);
  EXPECT_EQ(reader.LoadBytes(small), ExifStatus::InvalidArgument);
  small.resize(50);
  EXPECT_EQ(reader.LoadBytes(small), ExifStatus::Success);
  EXPECT_EQ(reader.GetEntry(entry, true), ExifStatus::Failure);
  for (const int length : {16, 46}) {  // too short; as long as all that follows the marker
    small[5] = static_cast<std::uint8_t>(length);
    EXPECT_EQ(reader.LoadBytes(small), ExifStatus::InvalidArgument) << length;
  }
  EXPECT_EQ(reader.GetEntry(entry, true), ExifStatus::Unexpected) << "the earlier segment is gone";
  small[5] = 45;
  EXPECT_EQ(reader.LoadBytes(small), ExifStatus::Success);
  Bytes zeros(std::size_t{64} << 20);
  zeros[0] = 0xFF;
  zeros[1] = 0xD8;
  EXPECT_EQ(reader.LoadBytes(zeros), ExifStatus::InvalidArgument) << "the search ends";

  EXPECT_EQ(static_cast<std::uint32_t>(reader.Load("/none.jpg")), 0x80070002);
}

TEST(ExifReaderTest, WalksIntoPointersAndAlongLinks) {
  CExifFile file;
  file.Count(3).Entry(256, 3, 1, 1);
  const std::uint32_t exif = file.Here() + 2 * 12 + 4;
  const std::uint32_t interoperability = exif + 2 + 2 * 12 + 4;
  const std::uint32_t second = interoperability + 2 + 12 + 4;
  file.Entry(kExif, 4, 1, exif).Entry(257, 3, 1, 1).Link(second);
  // Its first entry is a pointer again.
  file.Count(2).Entry(kInteroperability, 4, 1, interoperability).Entry(0x9003, 3, 1, 0).Link(0);
  file.Count(1).Entry(1, 2, 4, 0x383952).Link(0);
  file.Count(1).Entry(513, 4, 1, 0).Link(0, "tail");
  EXPECT_EQ(TagsOf(file), (Tags{256, 1, 0x9003, 257, 513}));

  // The very first entry is taken as it is, and a tag of zero ends the search.
  CExifFile odd;
  odd.Count(3).Entry(kExif, 4, 1, 50).Entry(0, 3, 1, 0).Entry(257, 3, 1, 0).Link(0);
  odd.Count(1).Entry(0x9003, 3, 1, 0).Link(0, "tail");
  EXPECT_EQ(TagsOf(odd), Tags{kExif});
}

TEST(ExifReaderTest, ValuesAndDirectoriesOutsideTheSegmentAreAbsent) {
  CExifFile values;
  values.Count(4).Entry(1000, 2, 5, 0xFFFFFFF8).Entry(1001, 12, 0x20000001, 8).Entry(1002, 2, 5, 0x7FFFFFFF);
  values.Entry(1003, 99, 4, 5).Link(0, "tail");
  EXPECT_EQ(TagsOf(values), Tags{1003});
  for (const auto& [type, offset] :
       {std::pair(4U, 0xFFFFFFFFU), {4U, 0xFFFFFFF8U}, {4U, 0x80000000U}, {4U, 5000U}, {3U, 8U}}) {
    CExifFile pointer;
    pointer.Count(3).Entry(256, 3, 1, 0).Entry(kExif, type, 1, offset).Entry(257, 3, 1, 0).Link(0, "tail");
    EXPECT_EQ(TagsOf(pointer), Tags{256});
  }
}

TEST(ExifReaderTest, DepthCyclesAndStormsOfPointersAreLimited) {
  const auto find = [](const CExifFile& file) {
    CExifReader reader;
    reader.LoadBytes(file.Jpeg());
    ExifEntry entry{.Tag = kDateTimeTag};
    return reader.GetEntry(entry, true);
  };
  for (const int levels : {16, 17}) {
    CExifFile file;
    for (int level = 1; level < levels; ++level) {
      file.Count(2).Entry(256, 3, 1, 0).Entry(kExif, 4, 1, file.Here() + 16).Link(0);
    }
    file.Count(1).Entry(kDateTimeTag, 3, 1, 0).Link(0, "tail");
    EXPECT_EQ(find(file), levels == 16 ? ExifStatus::Success : ExifStatus::NoMoreItems);
  }
  CExifFile link, empty, pointer;
  link.Count(1).Entry(256, 3, 1, 0).Link(8, "tail");
  empty.Count(0).Link(8, "tail");
  pointer.Count(2).Entry(256, 3, 1, 0).Entry(kExif, 4, 1, 8).Link(0, "tail");
  // Each of sixteen levels leads to the next 300 times: 300 to the 15th power entries.
  CExifFile storm;
  for (int level = 0; level < 15; ++level) {
    storm.Count(301).Entry(256, 3, 1, 0);
    const std::uint32_t next = storm.Here() + 300 * 12 + 4;
    for (int k = 0; k < 300; ++k) storm.Entry(kExif, 4, 1, next);
    storm.Link(0);
  }
  storm.Count(1).Entry(256, 3, 1, 0).Link(0, "tail");
  for (const CExifFile* file : {&link, &empty, &pointer, &storm}) {
    EXPECT_EQ(find(*file), ExifStatus::NoMoreItems);
  }
}

TEST(ExifReaderTest, TheWayUpIsOneShortNumberOfTheFirstDirectory) {
  const auto read = [](unsigned tag, unsigned type, unsigned count, unsigned value, bool bigEndian = false) {
    return ReadWayUp(CExifFile(bigEndian).Count(1).Entry(tag, type, count, value).Link(0, "....").Jpeg());
  };
  EXPECT_EQ(read(0x0112, 3, 1, 6), WayUp::TurnRight);
  // A number of two bytes comes first in its field in either byte order.
  EXPECT_EQ(read(0x0112, 3, 1, 8U << 16, true), WayUp::TurnLeft);
  const unsigned others[][4] = {{0x0112, 3, 1, 0}, {0x0112, 3, 1, 9},          {0x0112, 3, 2, 6},
                                {0x0112, 4, 1, 6}, {0x0112, 3, 0xFFFFFFFF, 6}, {0x0113, 3, 1, 6}};
  for (const auto& [tag, type, count, value] : others) {
    EXPECT_EQ(read(tag, type, count, value), WayUp::AsStored) << &tag - others[0];
  }
  CExifFile endless, elsewhere;
  // In the directory of the small picture inside the file, and in that of the camera.
  elsewhere.Count(1).Entry(kExif, 4, 1, 26).Link(26).Count(1).Entry(0x0112, 3, 1, 6).Link(0, "....");
  endless.Count(5000).Entry(0x0112, 3, 1, 6);
  for (const CExifFile* file : {&endless, &elsewhere}) EXPECT_EQ(ReadWayUp(file->Jpeg()), WayUp::AsStored);
}
