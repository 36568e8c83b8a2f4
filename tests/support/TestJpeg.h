#pragma once

#include <jpeglib.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

/// A JPEG of one colour as any camera might write it, with an EXIF DateTime if `dateTime` isn't empty
/// ("YYYY:MM:DD HH:MM:SS").
inline std::string MakeJpeg(unsigned width, unsigned height, unsigned red, unsigned green, unsigned blue,
                            const std::string& dateTime = {}) {
  jpeg_compress_struct jpeg{};
  jpeg_error_mgr errors{};
  jpeg.err = jpeg_std_error(&errors);
  jpeg_create_compress(&jpeg);
  unsigned char* bytes = nullptr;
  unsigned long size = 0;
  jpeg_mem_dest(&jpeg, &bytes, &size);
  jpeg.image_width = width;
  jpeg.image_height = height;
  jpeg.input_components = 3;
  jpeg.in_color_space = JCS_RGB;
  jpeg_set_defaults(&jpeg);
  jpeg_set_quality(&jpeg, 90, TRUE);
  jpeg_start_compress(&jpeg, TRUE);
  if (!dateTime.empty()) {
    std::string exif("Exif\0\0II*\0\x08\0\0\0", 14);
    exif += std::string("\x01\0\x32\x01\x02\0\x14\0\0\0\x1a\0\0\0\0\0\0\0", 18);
    exif += dateTime + '\0';
    jpeg_write_marker(&jpeg, JPEG_APP0 + 1, reinterpret_cast<const JOCTET*>(exif.data()),
                      static_cast<unsigned>(exif.size()));
  }
  std::vector<JSAMPLE> row;
  for (unsigned x = 0; x < width; ++x) {
    for (const unsigned value : {red, green, blue}) row.push_back(static_cast<JSAMPLE>(value));
  }
  while (jpeg.next_scanline < height) {
    JSAMPROW rows = row.data();
    jpeg_write_scanlines(&jpeg, &rows, 1);
  }
  jpeg_finish_compress(&jpeg);
  std::string result(reinterpret_cast<const char*>(bytes), size);
  jpeg_destroy_compress(&jpeg);
  std::free(bytes);
  return result;
}
