#include <cstddef>
#include <cstdint>
#include <string_view>

#include "base/Exceptions.h"
#include "storage/StorageDescription.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  try {
    static_cast<void>(ParseViewDescription({reinterpret_cast<const char*>(data), size}));
  } catch (const CError&) {
    // The only failure allowed.
  }
  return 0;
}
