// Turning a JPEG by its coefficients, and the file that comes of it.

#include <cstdlib>
#include <optional>

#include "imaging/JpegTurn.h"
#include "imaging/PictureMemory.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const int angle = 90 + 90 * (data[0] % 3);
  std::optional<std::vector<std::uint8_t>> turned;
  try {
    turned = TurnJpeg({data + 1, size - 1}, angle);
  } catch (const CTooLargeException&) {
  }
  if (!turned) return 0;
  // What we write is ours: it must turn as well, and back.
  const auto back = TurnJpeg(*turned, 360 - angle);
  if (!back) std::abort();
  return 0;
}
