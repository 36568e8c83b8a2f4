#pragma once

#include <string>
#include <vector>

/// What an import is measured against: a plain loop that does nothing but read the JPEG files below a
/// folder and decode each at the smallest of the codec's sizes that covers a thumbnail, with the codec's own
/// settings. Returns the seconds that it took on that many threads, finding the files left out. Raises
/// std::runtime_error if a file won't decode.
double DecodePlainly(const std::string& folder, unsigned threadCount);

/// One such picture: three bytes a pixel, blue, green, red; each row is padded to a multiple of 4 bytes.
struct PlainPicture {
  int Width = 0;
  int Height = 0;
  std::vector<unsigned char> Pixels;
};

/// Decodes one file in the same way. Raises std::runtime_error.
PlainPicture DecodePlainly(const std::string& path);
