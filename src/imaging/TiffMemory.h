#pragma once

#include <tiffio.h>

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

/// TIFFs as the library wants files; for code inside the imaging folder. Nothing of it is shown
/// or kept by the library beyond the handle, so threads need no lock.

struct TiffCloser {
  void operator()(TIFF* tiff) const { TIFFClose(tiff); }
};
using TiffHandle = std::unique_ptr<TIFF, TiffCloser>;

/// A TIFF to read. Must outlive its handle, and the bytes must outlive both.
struct TiffInput {
  std::span<const std::uint8_t> Bytes;
  std::uint64_t Position = 0;
};

/// A TIFF of which only parts are read, from its file. Must outlive its handle.
struct TiffFile {
  std::string Path;
  std::uint64_t Position = 0;
};

/// A TIFF being written. Must outlive its handle.
struct TiffOutput {
  std::vector<std::uint8_t> Bytes;
  std::uint64_t Position = 0;
};

/// Null if the bytes are no TIFF.
TiffHandle OpenTiff(TiffInput& input);

TiffHandle OpenTiff(TiffFile& file);

TiffHandle CreateTiff(TiffOutput& output);
