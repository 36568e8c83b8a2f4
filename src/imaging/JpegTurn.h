#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

/// Turning JPEGs clockwise by 90, 180 or 270 degrees without decoding them: the coefficients are moved, not
/// computed anew, so the picture loses nothing however often it is turned.
///
/// A column or row of blocks that the picture fills only partly, and that would end up on the wrong side, is
/// cut away; a picture that has nothing else keeps it where it is. All comments and application data are
/// kept byte for byte in their order, and so is what stands behind the end of the picture; nothing in them
/// is turned. The file stays progressive, arithmetically coded or divided by restart marks if it was.

/// A turned JPEG file; none if the bytes are no JPEG, cost more than the limits of JpegCodec.h, or hold
/// damaged picture data, part of which a new file would lack. CError "Angle not supported".
std::optional<std::vector<std::uint8_t>> TurnJpeg(std::span<const std::uint8_t> bytes, int angle);

/// Turns from file to file; both may be the same. The destination is replaced in one step, and flushed, or
/// left as it was. False if TurnJpeg gives none. CException "Cannot read src file" or "Cannot open
/// destination file"; CStorageException if the disk is full or fails.
bool TransformJpeg(const std::string& sourcePath, const std::string& destinationPath, int angle);
