#include "imaging/JpegImage.h"

#include <algorithm>
#include <new>

#include "base/Exceptions.h"
#include "imaging/JpegCodec.h"
#include "imaging/JpegTurn.h"
#include "imaging/PictureMemory.h"
#include "platform/Files.h"

namespace {

constexpr int kRowAlignment = 4;  // bytes
constexpr int kBytesPerPixel = 3;

int GetRowPadding(int width) { return -(width * kBytesPerPixel) & (kRowAlignment - 1); }

std::size_t GetRowBytes(int width) {
  return static_cast<std::size_t>(width * kBytesPerPixel + GetRowPadding(width));
}

std::uint64_t GetBitmapBytes(ImageSize size) {
  return std::uint64_t{GetRowBytes(size.Width)} * static_cast<std::uint64_t>(size.Height);
}

/// Room for a bitmap, its pixels not set but the padding of its rows 0.
platform::LargeMemory MakeBits(ImageSize size) {
  if (GetBitmapBytes(size) > kMaxBitmapBytes) throw CTooLargeException();
  const auto height = static_cast<std::size_t>(size.Height);
  const std::size_t rowBytes = GetRowBytes(size.Width);
  const auto padding = static_cast<std::size_t>(GetRowPadding(size.Width));
  try {
    auto bits = platform::AllocateLargeMemory(rowBytes * height);
    if (padding > 0)
      for (std::size_t y = 1; y <= height; ++y) std::fill_n(&bits[y * rowBytes - padding], padding, 0);
    return bits;
  } catch (const std::bad_alloc&) {
    throw CException("Cannot allocate memory for JPEG\n");
  }
}

BitmapHeader MakeHeader(ImageSize size) { return {size.Width, -size.Height, kBytesPerPixel * 8}; }

int ChooseReduction(ImageSize natural, ImageSize box) {
  if (box.Width <= 0 && box.Height <= 0) return 1;
  const double scale = FitScaleOf(natural, box.Width, box.Height, false);
  if (scale <= 0.125) return 8;
  if (scale <= 0.25) return 4;
  return scale <= 0.5 ? 2 : 1;
}

// Where the header ends is found out by trying. Most end soon, but a camera may put megabytes before it.
constexpr std::size_t kLeastHeaderBytes = std::size_t{1} << 16;
constexpr std::size_t kMostHeaderBytes = std::size_t{1} << 25;

ImageSize ReadJpegSize(const std::string& path) {
  std::vector<std::uint8_t> bytes;
  for (std::size_t room = kLeastHeaderBytes; room <= kMostHeaderBytes; room *= 8) {
    bytes.resize(room);
    std::size_t got = 0;
    if (platform::ReadFilePart(path, 0, bytes, got)) break;
    try {
      return CJpegDecoder(std::span(bytes).first(got)).GetSize();
    } catch (const CException&) {
      if (got < room) break;
    }
  }
  throw CException("Cannot read JPEG header");
}

}  // namespace

CJpegImage::CJpegImage() : CImage(ImageType::Jpeg) {}

CJpegImage::CJpegImage(ImageSize size)
    : CImage(ImageType::Jpeg),
      Bits(MakeBits(size)),
      Header(MakeHeader(size)),
      NaturalSize(size),
      CurrentSize(size) {}

CJpegImage::~CJpegImage() = default;

void CJpegImage::LoadFile(const std::string& path, int boxWidth, int boxHeight) {
  CPhotoFile file;
  if (file.Read(path)) throw CException("Cannot read JPEG header");
  TakeDecoded(file.GetBytes(), {boxWidth, boxHeight});
  SetPath(path);
}

void CJpegImage::LoadMemory(std::span<const std::uint8_t> bytes, int boxWidth, int boxHeight) {
  TakeDecoded(bytes, {boxWidth, boxHeight});
  SetPath({});
}

void CJpegImage::TakeDecoded(std::span<const std::uint8_t> bytes, ImageSize box) {
  CJpegDecoder decoder(bytes);
  const ImageSize natural = decoder.GetSize();
  const int reduction = ChooseReduction(natural, box);
  const ImageSize size{CJpegDecoder::ReducedSide(natural.Width, reduction),
                       CJpegDecoder::ReducedSide(natural.Height, reduction)};
  const CMemoryShare share(GetPictureMemory(), GetBitmapBytes(size) + decoder.GetHeldBytes());
  auto bits = MakeBits(size);
  const auto rowStep = static_cast<std::ptrdiff_t>(GetRowBytes(size.Width));
  decoder.Decode(reduction, {bits.get(), rowStep, size, kBytesPerPixel});

  Bits = std::move(bits);
  Header = MakeHeader(size);
  NaturalSize = natural;
  CurrentSize = size;
  RequestedSize = box;
}

void CJpegImage::ReadHeader(const std::string& path) {
  const ImageSize size = ReadJpegSize(path);
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
  return {Bits.get(), Header, CurrentSize.Width, CurrentSize.Height, 0, GetRowPadding(CurrentSize.Width)};
}

PixelBuffer CJpegImage::GetBuffer() {
  if (!Bits) return {};
  const auto rowStep = static_cast<std::ptrdiff_t>(GetRowBytes(CurrentSize.Width));
  return {Bits.get(), rowStep, CurrentSize, kBytesPerPixel};
}

PixelSource CJpegImage::GetSource() const {
  if (!Bits) return {};
  const auto rowStep = static_cast<std::ptrdiff_t>(GetRowBytes(CurrentSize.Width));
  return {Bits.get(), rowStep, CurrentSize, kBytesPerPixel};
}
