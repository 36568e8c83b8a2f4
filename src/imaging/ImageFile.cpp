#include "imaging/ImageFile.h"

#include "base/Paths.h"
#include "imaging/JpegImage.h"
#include "imaging/PictureMemory.h"
#include "imaging/TiffImage.h"
#include "platform/Ascii.h"

namespace {

/// What a file is decoded as; more than ImageTypeOfFile, by which photos are searched for.
ImageType ChooseVariant(const std::string& path) {
  const std::string extension = GetExtension(path);
  if (platform::EqualNoCaseAscii(extension, ".tif") || platform::EqualNoCaseAscii(extension, ".tiff"))
    return ImageType::Tiff;
  return ImageTypeFromExtension(extension);
}

template <typename Load>
std::unique_ptr<CImage> LoadVariant(ImageType type, bool* isTooLarge, const Load& load) {
  if (isTooLarge) *isTooLarge = false;
  try {
    std::unique_ptr<CImage> image;
    if (type == ImageType::Jpeg) {
      auto jpeg = std::make_unique<CJpegImage>();
      load(*jpeg);
      image = std::move(jpeg);
    } else if (type == ImageType::Tiff) {
      auto tiff = std::make_unique<CTiffImage>();
      load(*tiff);
      if (tiff->GetPixels().Bits) image = std::move(tiff);
    }
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
  return LoadVariant(ChooseVariant(path), isTooLarge,
                     [&](auto& image) { image.LoadFile(path, boxWidth, boxHeight); });
}

std::unique_ptr<CImage> LoadImageBytes(const std::string& path, std::span<const std::uint8_t> bytes,
                                       int boxWidth, int boxHeight) {
  return LoadVariant(ChooseVariant(path), nullptr,
                     [&](auto& image) { image.LoadMemory(bytes, boxWidth, boxHeight); });
}

ImageSize ReadImageSize(const std::string& path) {
  try {
    switch (ChooseVariant(path)) {
      case ImageType::Jpeg: {
        CJpegImage image;
        image.ReadHeader(path);
        return image.GetNaturalSize();
      }
      case ImageType::Tiff: {
        CTiffImage image;
        image.ReadHeader(path);
        return image.GetNaturalSize();
      }
      case ImageType::None:
        break;
    }
  } catch (...) {
    return {};  // not known
  }
  return {};
}
