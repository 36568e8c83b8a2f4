// The EXIF reader: whatever the file, the walk ends, values lie inside the segment, and a date is no
// negative time, and the way up one of eight. Input without the start of a JPEG is taken as a TIFF block, so
// that the fuzzer need not find the wrapping first.

#include <cstdlib>

#include "imaging/ExifReader.h"
#include "imaging/WayUp.h"

namespace {

std::vector<std::uint8_t> Wrap(std::span<const std::uint8_t> block) {
  const std::size_t length = block.size() + 8;
  std::vector<std::uint8_t> file = {0xFF,
                                    0xD8,
                                    0xFF,
                                    0xE1,
                                    static_cast<std::uint8_t>(length >> 8),
                                    static_cast<std::uint8_t>(length),
                                    'E',
                                    'x',
                                    'i',
                                    'f',
                                    0,
                                    0};
  file.insert(file.end(), block.begin(), block.end());
  file.resize(file.size() + 50);
  return file;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::span bytes(data, size);
  const bool isFile = size > 1 && data[0] == 0xFF && data[1] == 0xD8;
  CExifReader reader;
  if (isFile) {
    reader.LoadBytes(bytes);
  } else if (size < 65000) {
    reader.LoadBytes(Wrap(bytes));
  }

  ExifEntry entry;
  unsigned sum = 0;
  for (bool first = true; reader.GetEntry(entry, first) == ExifStatus::Success; first = false) {
    for (const std::uint8_t byte : entry.Value) sum += byte;
    entry.Tag = 0;
  }
  const unsigned wayUp = static_cast<unsigned>(WayUpOfTag(reader.GetShort(kWayUpTag)));
  if (wayUp < 1 || wayUp > 8) std::abort();
  if (reader.GetDateTime(306) < 0 || sum == 0xFFFFFFFF) std::abort();
  return 0;
}
