#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "imaging/PixelBuffer.h"

/// How a photo stands. Cameras store the picture as the sensor lies and note beside it how it has to be
/// turned to stand upright. The decoders ask here and hold upright pixels, so nobody else has to know of it;
/// what changes a stored picture without decoding it leaves the note as it is.

/// What makes a stored picture stand upright: the values of the tag Orientation.
enum class WayUp : std::uint16_t {
  AsStored = 1,
  MirrorColumns = 2,
  TurnHalf = 3,
  MirrorRows = 4,
  Transpose = 5,   // rows become columns
  TurnRight = 6,   // a quarter, clockwise
  Transverse = 7,  // rows become columns, both mirrored
  TurnLeft = 8,
};

/// The tag Orientation of EXIF and of TIFF.
inline constexpr std::uint16_t kWayUpTag = 0x0112;

/// Any other value than 1 to 8 counts as AsStored.
WayUp WayUpOfTag(unsigned value);

/// The way up that the EXIF of a JPEG tells; `headers` are its bytes up to its first scan. AsStored without a
/// valid tag of one short number in the first directory.
WayUp ReadWayUp(std::span<const std::uint8_t> headers);

/// The size of a picture once it stands upright, and back: the sides swapped or not.
ImageSize GetUprightSize(ImageSize stored, WayUp wayUp);

/// By how many degrees clockwise the stored picture has to be turned to turn what is seen by `angle`: a
/// picture that is seen mirrored turns the other way.
int GetStoredAngle(int angle, WayUp wayUp);

/// Copies the pixels of a stored picture to where they stand upright. `target` has the upright size and as
/// many bytes a pixel, and shares no memory with `stored`, which must have a readable byte behind its last
/// pixel.
void PutUpright(const PixelSource& stored, WayUp wayUp, const PixelBuffer& target);

/// Puts a picture upright while it is decoded, from its top row on: a band of rows is turned while the
/// processor still has it in its cache, which takes a fraction of the time, and no second bitmap.
class CUprightRows {
 public:
  /// `target` has the upright size and 3 bytes a pixel, and outlives the object.
  CUprightRows(ImageSize stored, WayUp wayUp, const PixelBuffer& target);

  static constexpr int kMostRowsAtOnce = 16;

  /// Where row `y` of the stored picture is to be written: one of the next kMostRowsAtOnce rows.
  std::uint8_t* Row(int y) const;

  /// All rows above `end` have been written; the last call is for the picture's height.
  void Advance(int end);

 private:
  const ImageSize Stored;
  const WayUp Way;
  const PixelBuffer Target;
  std::vector<std::uint8_t> Memory;  // empty if the rows are written to the target itself
  PixelBuffer Band;
  int First = 0;  // the band's top row
};
