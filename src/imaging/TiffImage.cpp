#include "imaging/TiffImage.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <new>

#include "base/Exceptions.h"
#include "base/Product.h"
#include "imaging/PictureMemory.h"
#include "imaging/TiffMemory.h"
#include "platform/Files.h"

namespace {

constexpr int kBytesPerPixel = 4;

/// 0 by 0 if the tags are missing or the picture is too large to be held.
ImageSize ReadSize(TIFF* tiff) {
  std::uint32_t width = 0;
  std::uint32_t height = 0;
  if (!TIFFGetField(tiff, TIFFTAG_IMAGEWIDTH, &width) || !TIFFGetField(tiff, TIFFTAG_IMAGELENGTH, &height))
    return {};
  constexpr std::uint32_t kMaxSide = std::numeric_limits<int>::max() / kBytesPerPixel;
  if (width > kMaxSide || height > kMaxSide) return {};
  return {static_cast<int>(width), static_cast<int>(height)};
}

std::uint64_t GetBitmapBytes(ImageSize size) {
  return static_cast<std::uint64_t>(size.Width) * static_cast<std::uint64_t>(size.Height) * kBytesPerPixel;
}

/// The held pixels, and as much again: the library takes that to decode them, and so does a turned copy.
std::uint64_t GetWorkingBytes(ImageSize size) { return 2 * GetBitmapBytes(size); }

void SwapRedAndBlue(std::uint32_t& pixel) {
  const std::uint32_t parts[] = {TIFFGetB(pixel), TIFFGetG(pixel), TIFFGetR(pixel), TIFFGetA(pixel)};
  auto* bytes = reinterpret_cast<std::uint8_t*>(&pixel);
  for (int k = 0; k < kBytesPerPixel; ++k) bytes[k] = static_cast<std::uint8_t>(parts[k]);
}

bool SetTags(TIFF* tiff, ImageSize size) {
  return TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, static_cast<std::uint32_t>(size.Width)) &&
         TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, static_cast<std::uint32_t>(size.Height)) &&
         TIFFSetField(tiff, TIFFTAG_ORIENTATION, ORIENTATION_TOPLEFT) &&
         TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, 8) &&
         TIFFSetField(tiff, TIFFTAG_COMPRESSION, COMPRESSION_PACKBITS) &&
         TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_RGB) &&
         TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, 3) && TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, 1) &&
         TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG) &&
         TIFFSetField(tiff, TIFFTAG_RESOLUTIONUNIT, RESUNIT_NONE) &&
         TIFFSetField(tiff, TIFFTAG_SOFTWARE, GetProductInfo().ProductName.c_str());
}

bool WriteRows(TIFF* tiff, const PixelSource& pixels) {
  std::vector<std::uint8_t> row(static_cast<std::size_t>(pixels.Size.Width) * 3);
  for (int y = 0; y < pixels.Size.Height; ++y) {
    const std::uint8_t* from = pixels.Row(y);
    for (std::size_t i = 0; i < row.size(); i += 3, from += kBytesPerPixel) {
      row[i] = from[2];
      row[i + 1] = from[1];
      row[i + 2] = from[0];
    }
    if (TIFFWriteScanline(tiff, row.data(), static_cast<std::uint32_t>(y), 0) < 0) return false;
  }
  return TIFFFlush(tiff) != 0;
}

void WriteTiff(const PixelSource& pixels, const std::string& path) {
  TiffOutput output;
  TiffHandle tiff = CreateTiff(output);
  const bool written =
      pixels.Top && tiff && SetTags(tiff.get(), pixels.Size) && WriteRows(tiff.get(), pixels);
  tiff.reset();
  if (!written || platform::WriteFileAtomically(path, output.Bytes.data(), output.Bytes.size()))
    throw CException("Cannot write TIFF data to file\n");
}

/// The pixels turned by 90 degrees, rows from the top downwards; counter-clockwise if not `clockwise`.
std::vector<std::uint32_t> TurnPixels(const PixelSource& pixels, bool clockwise) {
  const int width = pixels.Size.Height;
  const int height = pixels.Size.Width;
  std::vector<std::uint32_t> turned(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
  for (int y = 0; y < pixels.Size.Height; ++y) {
    const std::uint8_t* from = pixels.Row(y);
    for (int x = 0; x < pixels.Size.Width; ++x, from += kBytesPerPixel) {
      const int column = clockwise ? width - 1 - y : y;
      const int row = clockwise ? x : height - 1 - x;
      const auto place = static_cast<std::size_t>(row) * static_cast<std::size_t>(width);
      std::memcpy(&turned[place + static_cast<std::size_t>(column)], from, kBytesPerPixel);
    }
  }
  return turned;
}

}  // namespace

CTiffImage::CTiffImage() : CImage(ImageType::Tiff) {}

CTiffImage::~CTiffImage() = default;

void CTiffImage::Clear() {
  Bits = {};
  Header = {};
  NaturalSize = {};
  CompressedAsJpeg = false;
  HasMorePages = false;
}

void CTiffImage::LoadFile(const std::string& path, int boxWidth, int boxHeight) {
  CPhotoFile file;
  static_cast<void>(file.Read(path));  // what can't be read holds nothing
  TakeDecoded(file.GetBytes(), {boxWidth, boxHeight});
  SetPath(path);
}

void CTiffImage::LoadMemory(std::span<const std::uint8_t> bytes, int boxWidth, int boxHeight) {
  TakeDecoded(bytes, {boxWidth, boxHeight});
  SetPath({});
}

void CTiffImage::TakeDecoded(std::span<const std::uint8_t> bytes, ImageSize box) {
  Clear();
  RequestedSize = box;
  TiffInput input{bytes};
  const TiffHandle tiff = OpenTiff(input);
  if (!tiff) return;
  const ImageSize size = ReadSize(tiff.get());
  const std::uint64_t bitmapBytes = GetBitmapBytes(size);
  if (bitmapBytes == 0) return;
  if (bitmapBytes > kMaxBitmapBytes) throw CTooLargeException();
  const CMemoryShare share(GetPictureMemory(), GetWorkingBytes(size));
  const std::size_t count = static_cast<std::size_t>(size.Width) * static_cast<std::size_t>(size.Height);
  std::vector<std::uint32_t> bits;
  try {
    bits.resize(count);
  } catch (const std::bad_alloc&) {
    return;
  }
  constexpr int kGoOnAfterErrors = 0;  // as for a JPEG, what a damaged file has is shown
  if (!TIFFReadRGBAImage(tiff.get(), static_cast<std::uint32_t>(size.Width),
                         static_cast<std::uint32_t>(size.Height), bits.data(), kGoOnAfterErrors))
    return;
  std::ranges::for_each(bits, SwapRedAndBlue);
  std::uint16_t compression = 0;
  std::uint16_t page = 0;
  std::uint16_t pages = 0;
  CompressedAsJpeg =
      TIFFGetField(tiff.get(), TIFFTAG_COMPRESSION, &compression) && compression == COMPRESSION_JPEG;
  HasMorePages =
      TIFFGetField(tiff.get(), TIFFTAG_PAGENUMBER, &page, &pages) != 0 || TIFFLastDirectory(tiff.get()) == 0;
  Bits = std::move(bits);
  Header = {size.Width, size.Height, kBytesPerPixel * 8};
  NaturalSize = size;
}

void CTiffImage::ReadHeader(const std::string& path) {
  Clear();
  TiffFile file{path};
  if (const TiffHandle tiff = OpenTiff(file)) NaturalSize = ReadSize(tiff.get());
  SetPath(path);
}

bool CTiffImage::Rotate(int angle) {
  if (Bits.empty()) return false;
  if (angle != 90 && angle != 270) throw CException("Cannot write TIFF data to file\n");
  const std::string path = GetPath();
  {
    const CMemoryShare share(GetPictureMemory(), GetWorkingBytes(NaturalSize));
    const std::vector<std::uint32_t> turned = TurnPixels(GetSource(), angle == 90);
    const ImageSize size{NaturalSize.Height, NaturalSize.Width};
    WriteTiff({reinterpret_cast<const std::uint8_t*>(turned.data()),
               std::ptrdiff_t{size.Width} * kBytesPerPixel, size, kBytesPerPixel},
              path);
  }
  LoadFile(path, RequestedSize.Width, RequestedSize.Height);
  return true;
}

void CTiffImage::Save(const std::string& path, int) const { WriteTiff(GetSource(), path); }

BitmapPixels CTiffImage::GetPixels() {
  if (Bits.empty()) return {};
  return {reinterpret_cast<std::uint8_t*>(Bits.data()), Header, NaturalSize.Width, NaturalSize.Height, 1, 0};
}

PixelSource CTiffImage::GetSource() const {
  if (Bits.empty()) return {};
  const std::ptrdiff_t rowBytes = std::ptrdiff_t{NaturalSize.Width} * kBytesPerPixel;
  const auto* bottom = reinterpret_cast<const std::uint8_t*>(Bits.data());
  return {bottom + (NaturalSize.Height - 1) * rowBytes, -rowBytes, NaturalSize, kBytesPerPixel};
}
