#include "imaging/JpegImage.h"

#include <algorithm>
#include <new>

#include "base/Exceptions.h"
#include "imaging/JpegCodec.h"
#include "imaging/JpegTurn.h"
#include "platform/Files.h"

namespace {

constexpr int kRowAlignment = 4;  // bytes

int GetRowPadding(int width, int bytesPerPixel) { return -(width * bytesPerPixel) & (kRowAlignment - 1); }

std::size_t GetRowBytes(int width, int bytesPerPixel) {
  const int rowBytes = width * bytesPerPixel + GetRowPadding(width, bytesPerPixel);
  return static_cast<std::size_t>(rowBytes);
}

/// Room for a bitmap, its pixels not set but the padding of its rows 0.
platform::LargeMemory MakeBits(ImageSize size, int bytesPerPixel) {
  const auto height = static_cast<std::size_t>(size.Height);
  const std::uint64_t pixels = static_cast<std::uint64_t>(size.Width) * height;
  if (pixels > kMaxBitmapBytes / static_cast<unsigned>(bytesPerPixel))
    throw CException("Cannot allocate memory for JPEG\n");
  const std::size_t rowBytes = GetRowBytes(size.Width, bytesPerPixel);
  const auto padding = static_cast<std::size_t>(GetRowPadding(size.Width, bytesPerPixel));
  try {
    auto bits = platform::AllocateLargeMemory(rowBytes * height);
    if (padding > 0)
      for (std::size_t y = 1; y <= height; ++y) std::fill_n(&bits[y * rowBytes - padding], padding, 0);
    return bits;
  } catch (const std::bad_alloc&) {
    throw CException("Cannot allocate memory for JPEG\n");
  }
}

BitmapHeader MakeHeader(ImageSize size, int bytesPerPixel) {
  return {size.Width, -size.Height, bytesPerPixel * 8};
}

int ChooseReduction(ImageSize natural, ImageSize box) {
  if (box.Width <= 0 && box.Height <= 0) return 1;
  const double scale = FitScaleOf(natural, box.Width, box.Height, false);
  if (scale <= 0.125) return 8;
  if (scale <= 0.25) return 4;
  return scale <= 0.5 ? 2 : 1;
}

std::vector<std::uint8_t> ReadPhoto(const std::string& path) {
  std::vector<std::uint8_t> bytes;
  if (platform::ReadWholeFile(path, bytes)) throw CException("Cannot read JPEG header");
  return bytes;
}

}  // namespace

CJpegImage::CJpegImage() : CImage(ImageType::Jpeg) {}

CJpegImage::CJpegImage(ImageSize size)
    : CImage(ImageType::Jpeg),
      Bits(MakeBits(size, 3)),
      Header(MakeHeader(size, 3)),
      NaturalSize(size),
      CurrentSize(size) {}

CJpegImage::~CJpegImage() = default;

void CJpegImage::LoadFile(const std::string& path, int boxWidth, int boxHeight) {
  TakeDecoded(ReadPhoto(path), {boxWidth, boxHeight});
  SetPath(path);
}

void CJpegImage::LoadMemory(std::span<const std::uint8_t> bytes, int boxWidth, int boxHeight) {
  TakeDecoded(bytes, {boxWidth, boxHeight});
  SetPath({});
}

void CJpegImage::TakeDecoded(std::span<const std::uint8_t> bytes, ImageSize box) {
  CJpegDecoder decoder(bytes);
  const ImageSize natural = decoder.GetSize();
  const int bytesPerPixel = decoder.GetBytesPerPixel();
  if (bytesPerPixel != 3 && bytesPerPixel != 4) throw CException("Unsupported number of channels");
  const int reduction = ChooseReduction(natural, box);
  const ImageSize size{CJpegDecoder::ReducedSide(natural.Width, reduction),
                       CJpegDecoder::ReducedSide(natural.Height, reduction)};
  auto bits = MakeBits(size, bytesPerPixel);
  const auto rowStep = static_cast<std::ptrdiff_t>(GetRowBytes(size.Width, bytesPerPixel));
  decoder.Decode(reduction, {bits.get(), rowStep, size, bytesPerPixel});

  Bits = std::move(bits);
  Header = MakeHeader(size, bytesPerPixel);
  NaturalSize = natural;
  CurrentSize = size;
  RequestedSize = box;
}

void CJpegImage::ReadHeader(const std::string& path) {
  const std::vector<std::uint8_t> bytes = ReadPhoto(path);
  const ImageSize size = CJpegDecoder(bytes).GetSize();
  Bits.reset();
  Header = {};
  NaturalSize = size;
  CurrentSize = size;
  SetPath(path);
}

bool CJpegImage::Rotate(int angle) {
  if (!Bits) return false;
  const std::string path = GetPath();
  if (!TransformJpeg(path, path, angle)) return false;
  LoadFile(path, RequestedSize.Width, RequestedSize.Height);
  return true;
}

void CJpegImage::Save(const std::string& path, int quality) const {
  const std::vector<std::uint8_t> bytes = SaveToMemory(quality);
  if (platform::WriteFileAtomically(path, bytes.data(), bytes.size()))
    throw CException("Cannot write JPEG data to file\n");
}

std::vector<std::uint8_t> CJpegImage::SaveToMemory(int quality) const {
  return EncodeJpeg(GetSource(), quality);
}

BitmapPixels CJpegImage::GetPixels() {
  if (!Bits) return {};
  const int bytesPerPixel = Header.BitCount / 8;
  return {Bits.get(),        Header,
          CurrentSize.Width, CurrentSize.Height,
          bytesPerPixel - 3, GetRowPadding(CurrentSize.Width, bytesPerPixel)};
}

PixelBuffer CJpegImage::GetBuffer() {
  if (!Bits) return {};
  const int bytesPerPixel = Header.BitCount / 8;
  const auto rowStep = static_cast<std::ptrdiff_t>(GetRowBytes(CurrentSize.Width, bytesPerPixel));
  return {Bits.get(), rowStep, CurrentSize, bytesPerPixel};
}

PixelSource CJpegImage::GetSource() const {
  if (!Bits) return {};
  const int bytesPerPixel = Header.BitCount / 8;
  const auto rowStep = static_cast<std::ptrdiff_t>(GetRowBytes(CurrentSize.Width, bytesPerPixel));
  return {Bits.get(), rowStep, CurrentSize, bytesPerPixel};
}
