#include "imaging/Image.h"

#include <algorithm>
#include <cerrno>
#include <limits>
#include <new>
#include <system_error>
#include <utility>

#include "base/Exceptions.h"
#include "imaging/JpegCodec.h"
#include "imaging/JpegTurn.h"
#include "imaging/PictureMemory.h"
#include "imaging/Scaler.h"
#include "imaging/WayUp.h"
#include "platform/Files.h"
#include "platform/WholeFiles.h"

namespace {

constexpr int kRowAlignment = 4;  // bytes
constexpr int kBytesPerPixel = 3;

int CutToInt(double value) {
  constexpr double kLimit = std::numeric_limits<int>::max();
  return static_cast<int>(std::clamp(value, -kLimit, kLimit));
}

int GetRowPadding(int width) { return -(width * kBytesPerPixel) & (kRowAlignment - 1); }

std::size_t GetRowBytes(int width) {
  const int bytes = width * kBytesPerPixel + GetRowPadding(width);
  return static_cast<std::size_t>(bytes);
}

std::uint64_t GetBitmapBytes(ImageSize size) {
  return std::uint64_t{GetRowBytes(size.Width)} * static_cast<std::uint64_t>(size.Height);
}

/// Memory for a bitmap of 24 bits: the padding of its rows is 0, its pixels aren't set.
platform::LargeMemory AllocateBitmap(ImageSize size) {
  if (GetBitmapBytes(size) > kMaxBitmapBytes) throw CTooLargeException();
  const auto height = static_cast<std::size_t>(size.Height);
  const std::size_t rowBytes = GetRowBytes(size.Width);
  const auto padding = static_cast<std::size_t>(GetRowPadding(size.Width));
  try {
    auto memory = platform::AllocateLargeMemory(rowBytes * height);
    if (padding > 0) {
      for (std::size_t y = 1; y <= height; ++y) std::fill_n(&memory[y * rowBytes - padding], padding, 0);
    }
    return memory;
  } catch (const std::bad_alloc&) {
    throw CException("Cannot allocate memory for JPEG\n");
  }
}

PixelBuffer GetRows(const platform::LargeMemory& memory, ImageSize size) {
  return {memory.get(), static_cast<std::ptrdiff_t>(GetRowBytes(size.Width)), size, kBytesPerPixel};
}

int ChooseReduction(ImageSize natural, ImageSize box) {
  if (box.Width <= 0 && box.Height <= 0) return 1;
  const double scale = FitScaleOf(natural, box.Width, box.Height, false);
  if (scale <= 0.125) return 8;
  if (scale <= 0.25) return 4;
  return scale <= 0.5 ? 2 : 1;
}

WayUp ReadWayUpOfFile(std::span<const std::uint8_t> bytes) {
  try {
    return CJpegDecoder(bytes).GetWayUp();
  } catch (const CException&) {
    return WayUp::AsStored;  // it can't be turned either
  }
}

/// What `look` finds in a JPEG's headers. CException "Cannot read JPEG header".
template <typename Look>
auto ReadHeaders(const std::string& path, const Look& look) {
  // How long the header is shows only when it has been read: mostly a few kilobytes, but some cameras write
  // megabytes.
  constexpr std::size_t kFirstTry = std::size_t{1} << 16;
  constexpr std::size_t kLastTry = std::size_t{1} << 25;
  std::vector<std::uint8_t> bytes;
  for (std::size_t room = kFirstTry; room <= kLastTry; room *= 8) {
    bytes.resize(room);
    std::size_t got = 0;
    if (platform::ReadFilePart(path, 0, bytes, got)) break;
    try {
      return look(CJpegDecoder(std::span(bytes).first(got)));
    } catch (const CException&) {
      if (got < room) break;
    }
  }
  throw CException("Cannot read JPEG header");
}

/// Whether a file couldn't be written because the disk is full or fails.
bool IsDiskTrouble(const std::error_code& error) {
  return error == std::errc::no_space_on_device || error == std::errc::file_too_large ||
         error == std::errc::io_error || error == std::error_code(EDQUOT, std::system_category());
}

}  // namespace

double FitScaleOf(ImageSize size, int boxWidth, int boxHeight, bool allowEnlarging) {
  if (size.Width < 1 || size.Height < 1) return 1.0;
  const double horizontal = static_cast<double>(boxWidth) / size.Width;
  const double vertical = static_cast<double>(boxHeight) / size.Height;
  if (!allowEnlarging && horizontal >= 1.0 && vertical >= 1.0) return 1.0;
  return std::min(horizontal, vertical);
}

ImageSize GetDecodedSize(ImageSize natural, ImageSize box) {
  const int reduction = ChooseReduction(natural, box);
  return {CJpegDecoder::ReducedSide(natural.Width, reduction),
          CJpegDecoder::ReducedSide(natural.Height, reduction)};
}

void CImage::LoadFile(const std::string& path, int boxWidth, int boxHeight) {
  CPhotoFile file;
  const bool read = !file.Read(path);
  Load(read ? file.GetBytes() : std::span<const std::uint8_t>(), {boxWidth, boxHeight}, path);
}

void CImage::LoadMemory(std::span<const std::uint8_t> bytes, int boxWidth, int boxHeight) {
  Load(bytes, {boxWidth, boxHeight}, {});
}

void CImage::Load(std::span<const std::uint8_t> bytes, ImageSize box, std::string path) {
  Decode(bytes, box);
  RequestedSize = box;
  Path = std::move(path);
}

void CImage::ReadHeader(const std::string& path) {
  HoldNoPixels(ReadSize(path));
  Path = path;
}

bool CImage::Rotate(int angle) {
  if (!Pixels.Top || !TurnFile(angle)) return false;
  LoadFile(Path, RequestedSize.Width, RequestedSize.Height);
  return true;
}

void CImage::Save(const std::string& path, int quality) const { ReplaceFile(path, SaveToMemory(quality)); }

ImageSize CImage::ScaledSize(double scale) const {
  return {CutToInt(std::max(CurrentSize.Width * scale, 1.0)),
          CutToInt(std::max(CurrentSize.Height * scale, 1.0))};
}

ImageSize CImage::Draw(const PixelBuffer& target, int x, int y, double scale) const {
  const ImageSize size = ScaledSize(scale);
  StretchPixels(Pixels, target, x, y, size);
  return size;
}

void CImage::DrawOver(const PixelBuffer& target) const { StretchPixels(Pixels, target, 0, 0, target.Size); }

std::unique_ptr<CJpegImage> CImage::MakeFitted(int boxWidth, int boxHeight) const {
  if (std::min({Pixels.Size.Width, Pixels.Size.Height, boxWidth, boxHeight}) < 1) return nullptr;
  const double scale = FitScale(boxWidth, boxHeight, false);
  auto fitted = std::make_unique<CJpegImage>(ScaledSize(scale));
  Draw(fitted->GetPixels(), 0, 0, scale);
  return fitted;
}

void CImage::HoldPixels(platform::LargeMemory memory, const PixelBuffer& pixels, ImageSize naturalSize) {
  Memory = std::move(memory);
  Pixels = pixels;
  NaturalSize = naturalSize;
  CurrentSize = pixels.Size;
}

void CImage::HoldNoPixels(ImageSize naturalSize) {
  Memory.reset();
  Pixels = {};
  NaturalSize = naturalSize;
  CurrentSize = naturalSize;
}

void CImage::ReplaceFile(const std::string& path, std::span<const std::uint8_t> bytes) const {
  if (platform::WriteFileAtomically(path, bytes.data(), bytes.size())) {
    throw CException(Type == ImageType::Jpeg ? "Cannot write JPEG data to file\n"
                                             : "Cannot write TIFF data to file\n");
  }
}

CJpegImage::CJpegImage(ImageSize size) : CImage(ImageType::Jpeg) {
  auto memory = AllocateBitmap(size);
  const PixelBuffer pixels = GetRows(memory, size);
  HoldPixels(std::move(memory), pixels, size);
}

std::vector<std::uint8_t> CJpegImage::SaveToMemory(int quality) const {
  return EncodeJpeg(GetPixels(), quality);
}

void CJpegImage::Decode(std::span<const std::uint8_t> bytes, ImageSize box) {
  CJpegDecoder decoder(bytes);
  const ImageSize natural = GetUprightSize(decoder.GetSize(), decoder.GetWayUp());
  const ImageSize size = GetDecodedSize(natural, box);
  const int reduction = ChooseReduction(natural, box);
  const CMemoryShare share(GetPictureMemory(), GetBitmapBytes(size) + decoder.GetHeldBytes(reduction));
  auto memory = AllocateBitmap(size);
  const PixelBuffer pixels = GetRows(memory, size);
  decoder.Decode(reduction, pixels);
  HoldPixels(std::move(memory), pixels, natural);
}

ImageSize CJpegImage::ReadSize(const std::string& path) const {
  return ReadHeaders(path, [](const CJpegDecoder& decoder) {
    return GetUprightSize(decoder.GetSize(), decoder.GetWayUp());
  });
}

WayUp ReadWayUp(const std::string& path) {
  return ReadHeaders(path, [](const CJpegDecoder& decoder) { return decoder.GetWayUp(); });
}

bool CJpegImage::TurnFile(int angle) { return TransformJpeg(GetPath(), GetPath(), angle); }

bool TransformJpeg(const std::string& sourcePath, const std::string& destinationPath, int angle) {
  CPhotoFile file;
  if (file.Read(sourcePath)) throw CException("Cannot read src file");
  const auto turned = TurnJpeg(file.GetBytes(), GetStoredAngle(angle, ReadWayUpOfFile(file.GetBytes())));
  if (!turned) return false;
  const std::error_code error =
      platform::WriteFileAtomically(destinationPath, turned->data(), turned->size());
  if (IsDiskTrouble(error)) {
    throw CStorageException("\"" + destinationPath + "\" can't be written: " + error.message() + ".");
  }
  if (error) throw CException("Cannot open destination file");
  return true;
}
