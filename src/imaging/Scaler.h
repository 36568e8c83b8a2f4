#pragma once

#include "imaging/PixelBuffer.h"

/// Stretches the whole of `source` to `size` and puts it into `target` with its top left corner at (x, y).
/// What falls outside the target is left out, and only what falls inside is computed.
///
/// A side that gets smaller is averaged over the exact area that each new pixel covers, parts of pixels
/// included; one that grows is interpolated linearly between pixel centres. The result is within one level
/// of the exact value. Alpha of the source is not looked at; a fourth byte of the target becomes 255.
/// Nothing happens if a side is below 1.
void StretchPixels(const PixelSource& source, const PixelBuffer& target, int x, int y, ImageSize size);
