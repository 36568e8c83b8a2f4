#include "imaging/ImageFile.h"

#include "base/Paths.h"
#include "imaging/PictureMemory.h"
#include "imaging/TiffImage.h"
#include "platform/Ascii.h"

namespace {

/// What a file is decoded as; more than ImageTypeOfFile, by which photos are searched for.
ImageType ChooseVariant(const std::string& path) {
  const std::string extension = GetExtension(path);
  if (platform::EqualNoCaseAscii(extension, ".tif") || platform::EqualNoCaseAscii(extension, ".tiff")) {
    return ImageType::Tiff;
  }
  return ImageTypeFromExtension(extension);
}

/// An image without pixels of the variant for the file; null if there is none.
std::unique_ptr<CImage> MakeImage(const std::string& path) {
  switch (ChooseVariant(path)) {
    case ImageType::Jpeg:
      return std::make_unique<CJpegImage>();
    case ImageType::Tiff:
      return std::make_unique<CTiffImage>();
    case ImageType::None:
      break;
  }
  return nullptr;
}

template <typename Load>
std::unique_ptr<CImage> LoadVariant(const std::string& path, bool* isTooLarge, const Load& load) {
  if (isTooLarge) *isTooLarge = false;
  try {
    auto image = MakeImage(path);
    if (image) load(*image);
    if (image && !image->GetPixels().Top) image.reset();
    return image;
  } catch (const CTooLargeException&) {
    if (isTooLarge) *isTooLarge = true;
    return nullptr;
  } catch (...) {
    return nullptr;  // whatever is wrong with it, the file gives no picture
  }
}

}  // namespace

ImageType ImageTypeFromExtension(std::string_view extension) {
  const bool isJpeg =
      platform::EqualNoCaseAscii(extension, ".jpg") || platform::EqualNoCaseAscii(extension, ".jpeg");
  return isJpeg ? ImageType::Jpeg : ImageType::None;
}

ImageType ImageTypeOfFile(std::string_view path) { return ImageTypeFromExtension(GetExtension(path)); }

std::unique_ptr<CImage> LoadImageFile(const std::string& path, int boxWidth, int boxHeight,
                                      bool* isTooLarge) {
  return LoadVariant(path, isTooLarge, [&](CImage& image) { image.LoadFile(path, boxWidth, boxHeight); });
}

std::unique_ptr<CImage> LoadImageBytes(const std::string& path, std::span<const std::uint8_t> bytes,
                                       int boxWidth, int boxHeight) {
  return LoadVariant(path, nullptr, [&](CImage& image) { image.LoadMemory(bytes, boxWidth, boxHeight); });
}

ImageSize ReadImageSize(const std::string& path) {
  try {
    const auto image = MakeImage(path);
    if (!image) return {};
    image->ReadHeader(path);
    return image->GetNaturalSize();
  } catch (...) {
    return {};  // not known
  }
}
