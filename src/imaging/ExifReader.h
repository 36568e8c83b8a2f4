#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

/// Results of the reader. An error of the system while the file is opened comes out as PlatformError with
/// the low 16 bits of its number added.
enum class ExifStatus : std::uint32_t {
  Success = 0,
  Failure = 0x80004005,        // the first directory is out of bounds
  Unexpected = 0x8000FFFF,     // nothing is loaded
  PlatformError = 0x80070000,  // and up
  OutOfMemory = 0x8007000E,
  InvalidArgument = 0x80070057,  // no JPEG, or no EXIF segment in it
  NoMoreItems = 0x80070103,
};

/// An entry of a directory.
struct ExifEntry {
  std::uint16_t Tag = 0;
  std::uint16_t Type = 0;
  std::span<const std::uint8_t> Value{};  // inside the segment that the reader holds
};

/// The entry DateTime of the first directory, by which a photo is dated.
inline constexpr std::uint16_t kDateTimeTag = 0x0132;

/// Finds the EXIF segment of a JPEG and reads the entries of its directories. It trusts nothing in it:
/// whatever the bytes are, each call ends within milliseconds and reads only the segment.
class CExifReader {
 public:
  /// Finds and copies the EXIF segment of a file, which replaces the one held. On any other result than
  /// Success none is held.
  ExifStatus Load(const std::string& path);

  /// The same for a file that has been read already.
  ExifStatus LoadBytes(std::span<const std::uint8_t> file);

  bool IsLoaded() const { return !Segment.empty(); }

  /// Looks up the next entry with `entry.Tag`, or the next of any tag if that is 0, and fills `entry`.
  /// With `restart`, or if there is no position yet, the search begins at the first entry, otherwise
  /// behind the one found last. It walks the chain of the first directory and goes down into the EXIF and
  /// interoperability directories where their entries stand; those two entries are not delivered. It ends
  /// at an entry with tag 0. An entry whose value lies outside the segment counts as absent.
  ExifStatus GetEntry(ExifEntry& entry, bool restart);

  /// The time of a date entry of the form YYYY:MM:DD HH:MM:SS, taken as local time with daylight saving
  /// off: seconds since 1970, or 0 if there is none or it doesn't fit.
  std::int32_t GetDateTime(std::uint16_t tag);

  /// The value of the first entry with that tag in the first directory itself, if it is one short number;
  /// otherwise 0. The search that GetEntry goes on with stays where it is.
  std::uint16_t GetShort(std::uint16_t tag) const;

 private:
  struct Level {
    std::uint32_t Directory = 0;  // offset of its entry count in the segment
    std::uint32_t Index = 0;      // of the current entry
  };

  std::uint16_t Read16(std::uint64_t offset) const;
  std::uint32_t Read32(std::uint64_t offset) const;
  bool IsDirectory(std::uint64_t offset) const;
  std::uint32_t CurrentEntry() const;
  bool DescribeCurrent(ExifEntry& entry) const;

  ExifStatus Start();
  bool MoveOn();
  bool Settle();
  bool FollowLink();
  bool GoDown();
  bool EndWalk();

  std::vector<std::uint8_t> Segment;  // from its two length bytes on
  std::array<Level, 16> Levels{};
  int Depth = -1;  // index of the current level; -1 without a position
  int Steps = 0;   // entries and links met since the walk began
};
