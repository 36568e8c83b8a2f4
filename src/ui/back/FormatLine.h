#pragma once

#include <cstdint>
#include <string>

#include "imaging/PixelBuffer.h"

/// "2560 x 1600 (617 KB)": a photo's size in pixels, 0 by 0 without a picture, and that of its file in bytes.
std::string MakeFormatLine(ImageSize size, std::uint64_t fileSize);

/// The same of the file at `path`, 0 bytes if it isn't there.
std::string ReadFormatLine(ImageSize size, const std::string& path);
