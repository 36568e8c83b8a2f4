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
/// is turned. The file stays progressive, arithmetically coded or divided by restart marks if it was. Of a
/// damaged picture the new file holds what the library decodes.
///
/// None if the bytes give no picture, or have unknown bytes among their headers, which the new file would
/// lose. CTooLargeException if it costs more than the limits of JpegCodec.h; CError
/// "Angle not supported".
std::optional<std::vector<std::uint8_t>> TurnJpeg(std::span<const std::uint8_t> bytes, int angle);
