#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "support/TestJpeg.h"

/// JPEGs as no camera writes them.

/// The same file with another size in its frame header.
std::vector<std::uint8_t> ForgeSize(std::vector<std::uint8_t> jpeg, int width, int height);

/// The same file with its last scan `times` times.
std::vector<std::uint8_t> RepeatLastScan(std::span<const std::uint8_t> jpeg, int times);

/// Pixels without any order, so that all coefficients count; the same ones each time.
std::vector<std::uint8_t> MakeNoisyJpeg(JpegRecipe recipe);
