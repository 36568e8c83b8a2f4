#include "imaging/PreparedPhoto.h"

#include "imaging/ExifReader.h"
#include "imaging/ImageFile.h"
#include "imaging/JpegImage.h"
#include "platform/Files.h"

namespace {

constexpr std::uint16_t kDateTimeTag = 0x0132;

std::vector<std::uint8_t> MakeThumbnail(const std::string& path, std::span<const std::uint8_t> bytes) {
  const auto image = LoadImageBytes(path, bytes, kThumbnailBoxWidth, kThumbnailBoxHeight);
  if (!image) return {};
  const auto fitted = image->MakeFitted(kThumbnailBoxWidth, kThumbnailBoxHeight);
  return fitted ? fitted->SaveToMemory(kThumbnailQuality) : std::vector<std::uint8_t>{};
}

}  // namespace

PreparedPhoto PreparePhoto(const std::string& path) {
  PreparedPhoto prepared;
  try {
    std::vector<std::uint8_t> bytes;
    if (platform::ReadWholeFile(path, bytes)) return prepared;
    CExifReader reader;
    reader.LoadBytes(bytes);
    prepared.CameraDate = reader.GetDateTime(kDateTimeTag);
    prepared.Thumbnail = MakeThumbnail(path, bytes);
    prepared.WasRead = true;
  } catch (...) {
    // Out of memory at worst: this photo goes without, the others don't.
  }
  return prepared;
}
