// The way of a photo into the program: decode for a thumbnail, fit, encode, decode again.

#include <cstdlib>

#include "base/Exceptions.h"
#include "imaging/Image.h"
#include "imaging/PreparedPhoto.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  CJpegImage image;
  try {
    image.LoadMemory({data, size}, kThumbnailBoxWidth, kThumbnailBoxHeight);
  } catch (const CException&) {
    return 0;
  }
  const auto fitted = image.MakeFitted(kThumbnailBoxWidth, kThumbnailBoxHeight);
  if (!fitted) return 0;
  // What we encode is ours: it must decode, at its size.
  CJpegImage again;
  again.LoadMemory(fitted->SaveToMemory(kThumbnailQuality), 0, 0);
  if (again.GetCurrentSize() != fitted->GetCurrentSize()) std::abort();
  return 0;
}
