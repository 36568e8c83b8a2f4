#include "platform/Uuid.h"

#include <sys/random.h>

namespace platform {

bool GenerateUuid(std::array<std::uint8_t, 16>& bytes) {
  // Up to 256 bytes come whole or not at all.
  if (::getrandom(bytes.data(), bytes.size(), 0) != static_cast<ssize_t>(bytes.size())) {
    bytes = {};
    return false;
  }
  bytes[6] = static_cast<std::uint8_t>((bytes[6] & 0x0F) | 0x40);  // version 4, random
  bytes[8] = static_cast<std::uint8_t>((bytes[8] & 0x3F) | 0x80);  // the variant of RFC 4122
  return true;
}

}  // namespace platform
