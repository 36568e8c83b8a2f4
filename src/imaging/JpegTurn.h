#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

/// Turning JPEGs clockwise by 90, 180 or 270 degrees without decoding them: the coefficients are moved, not
/// computed anew, so the picture loses nothing however often it is turned.
///
/// A column or row of blocks that the picture fills only partly, and that would end up on the wrong side, is
/// cut away; a picture that has nothing else keeps it where it is. All comments and application data are
/// kept byte for byte in their order, and so is what stands behind the end of the picture; nothing in them
/// is turned. The file stays progressive, arithmetically coded or divided by restart marks if it was.

/// A damaged picture is turned as it shows: what the library makes of it is what the new file holds.

/// A turned JPEG file; none if the bytes give no picture, or hold what can't be made out among their headers,
/// which a new file would lack. CTooLargeException if it costs more than the limits of JpegCodec.h; CError
/// "Angle not supported".
std::optional<std::vector<std::uint8_t>> TurnJpeg(std::span<const std::uint8_t> bytes, int angle);
