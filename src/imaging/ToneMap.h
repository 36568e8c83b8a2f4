#pragma once

#include <array>
#include <cstdint>

/// How many pixels of a picture have each brightness; that of a pixel is the largest of its three colours.
using BrightnessCounts = std::array<std::int64_t, 256>;

/// What each brightness becomes, 0 to 255.
using ToneMap = std::array<int, 256>;

/// One step of a brightness, as a part of the whole range.
inline constexpr double kPart = 0.00392156862745098;

/// The correction for a picture with those counts, at least one pixel in all: dark pictures are lifted by a
/// gamma curve that brings their median to the middle, or near it; then both ends are stretched to black and
/// white, past up to 3% of the pixels at each end that stand out nowhere.
ToneMap MakeToneMap(const BrightnessCounts& counts);
