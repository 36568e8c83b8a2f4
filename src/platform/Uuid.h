#pragma once

#include <array>
#include <cstdint>

namespace platform {

/// Sixteen bytes of a new random UUID (version 4), in the order in which they are written as text.
/// False, with all bytes 0, if the system has no randomness to give.
bool GenerateUuid(std::array<std::uint8_t, 16>& bytes);

}  // namespace platform
