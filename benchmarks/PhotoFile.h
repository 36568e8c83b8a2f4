#pragma once

#include <cstddef>
#include <cstdint>
#include <ctime>
#include <string>
#include <vector>

#include "Picture.h"

/// How a camera would have written a picture.
struct PhotoSettings {
  int Quality = 92;  // of the JPEG encoder, 1 to 100
  bool Progressive = false;
  std::tm Taken{};               // local time, for the tag DateTime; tm_year as ever since 1900
  std::size_t ExifBytes = 2000;  // size of the EXIF segment, 200 to 65000; the rest of it is maker's notes
};

/// Encodes a picture as a camera's JPEG file: 4:2:0, standard tables, an EXIF segment with the date. Raises
/// std::runtime_error if the encoder refuses.
std::vector<std::uint8_t> EncodePhoto(const Picture& picture, const PhotoSettings& settings);

/// Writes a file whole and gives it the time of `settings` as its last write time. Raises
/// std::system_error.
void WritePhoto(const std::string& path, const std::vector<std::uint8_t>& bytes,
                const PhotoSettings& settings);
