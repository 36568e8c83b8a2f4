#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "imaging/PixelBuffer.h"
#include "imaging/WayUp.h"

/// Converts between JPEG files in memory and pixels. Objects and calls share nothing, so threads need no
/// lock. Failures raise exceptions with the texts given here; the library's warnings about flawed data are
/// ignored.
///
/// What a file can cost is limited: 2^30 pixels (2^26 with arithmetic coding), 500 scans, and a number of
/// blocks that one core works through in eight seconds at most, less for a small file. Its memory is for the
/// caller to count.

/// Decodes one picture.
class CJpegDecoder {
 public:
  /// Reads the header; the bytes must outlive the object. CException "Cannot read JPEG header".
  explicit CJpegDecoder(std::span<const std::uint8_t> bytes);
  ~CJpegDecoder();
  CJpegDecoder(const CJpegDecoder&) = delete;
  CJpegDecoder& operator=(const CJpegDecoder&) = delete;

  /// Of the picture as it is stored.
  ImageSize GetSize() const;
  WayUp GetWayUp() const;

  /// Bytes that Decode holds besides the target while it works, except a few rows.
  std::uint64_t GetHeldBytes(int reduction) const;

  /// Decodes at 1/1, 1/2, 1/4 or 1/8 of the size (`reduction` 1, 2, 4, 8) into `target`, which has
  /// exactly that size, upright and its sides rounded up, and 3 bytes a pixel: blue, green, red; grey has
  /// three equal ones. To be called once. What a file that is cut short has no data for is grey. CException
  /// "Cannot read JPEG data from file\n" or "Unsupported number of channels", CTooLargeException.
  ///
  /// At 1/8 most files are decoded without the library, as told at CDcPicture (DcPicture.h).
  ///
  /// A JPEG of four channels with an Adobe marker is CMYK or YCCK, with inverted inks as all such files
  /// have them; without that marker it is CMYK if its channels are named C, M, Y, K. Any other file of
  /// four channels is refused.
  void Decode(int reduction, const PixelBuffer& target);

  /// A side of a picture decoded at that reduction.
  static int ReducedSide(int side, int reduction) { return (side + reduction - 1) / reduction; }

 private:
  class Impl;
  std::unique_ptr<Impl> Inside;
};

/// Encodes pixels as a whole JPEG with chroma halved in both directions. `quality` is 1 to 100. Pixels of
/// 3 bytes become YCbCr with a JFIF header; others are refused, since readers don't agree about alpha in a
/// JPEG. CException "Unsupported bitcount" or "Cannot write JPEG data to file\n".
std::vector<std::uint8_t> EncodeJpeg(const PixelSource& pixels, int quality);
