#include "imaging/PreparedPhoto.h"

#include "imaging/ExifReader.h"
#include "imaging/ImageFile.h"
#include "imaging/PictureMemory.h"

namespace {

std::vector<std::uint8_t> MakeThumbnail(const std::string& path, std::span<const std::uint8_t> bytes) {
  const auto image = LoadImageBytes(path, bytes, kThumbnailBoxWidth, kThumbnailBoxHeight);
  if (!image) return {};
  const auto fitted = image->MakeFitted(kThumbnailBoxWidth, kThumbnailBoxHeight);
  return fitted ? fitted->SaveToMemory(kThumbnailQuality) : std::vector<std::uint8_t>{};
}

}  // namespace

bool IsStoredLying(const std::string& path) {
  try {
    return ReadWayUp(path) != WayUp::AsStored;
  } catch (...) {
    return false;  // there is no picture either
  }
}

PreparedPhoto PreparePhoto(const std::string& path) {
  PreparedPhoto prepared;
  try {
    CPhotoFile file;
    if (file.Read(path)) return prepared;
    CExifReader reader;
    reader.LoadBytes(file.GetBytes());
    prepared.CameraDate = reader.GetDateTime(kDateTimeTag);
    prepared.Thumbnail = MakeThumbnail(path, file.GetBytes());
    prepared.WasRead = true;
  } catch (const CTooLargeException&) {
    prepared.WasRead = true;  // another try would end the same way
  } catch (...) {
    // Most likely out of memory. This photo alone gets no thumbnail.
  }
  return prepared;
}
