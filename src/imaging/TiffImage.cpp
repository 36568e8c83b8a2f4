#include "imaging/TiffImage.h"

#include <tiffio.h>

#include <algorithm>
#include <limits>
#include <memory>
#include <new>

#include "base/Exceptions.h"
#include "base/Texts.h"
#include "imaging/PictureMemory.h"
#include "imaging/WayUp.h"
#include "platform/Files.h"

namespace {

constexpr int kBytesPerPixel = 4;
constexpr const char* kCannotWrite = "Cannot write TIFF data to file\n";

struct TiffCloser {
  void operator()(TIFF* tiff) const { TIFFClose(tiff); }
};
using TiffHandle = std::unique_ptr<TIFF, TiffCloser>;

/// A whole file in memory, to be read. It outlives its handle.
struct TiffInput {
  std::span<const std::uint8_t> Bytes;
  std::uint64_t Position = 0;

  std::uint64_t GetSize() const { return Bytes.size(); }

  tmsize_t Read(std::span<std::uint8_t> buffer) {
    if (Position >= Bytes.size()) return 0;
    const auto rest = Bytes.subspan(static_cast<std::size_t>(Position));
    const std::size_t count = std::min(buffer.size(), rest.size());
    std::copy_n(rest.begin(), count, buffer.begin());
    Position += count;
    return static_cast<tmsize_t>(count);
  }

  tmsize_t Write(std::span<const std::uint8_t>) { return -1; }
};

/// A file on disk, of which only the parts that the library asks for are read.
struct TiffFile {
  std::string Path;
  std::uint64_t Position = 0;

  std::uint64_t GetSize() const {
    platform::FileStatus status;
    return platform::GetStatus(Path, status) ? 0 : status.Size;
  }

  tmsize_t Read(std::span<std::uint8_t> buffer) {
    std::size_t got = 0;
    if (platform::ReadFilePart(Path, Position, buffer, got)) return -1;
    Position += got;
    return static_cast<tmsize_t>(got);
  }

  tmsize_t Write(std::span<const std::uint8_t>) { return -1; }
};

/// A file in memory that is being written, and partly read again by the library.
struct TiffOutput {
  std::vector<std::uint8_t> Bytes;
  std::uint64_t Position = 0;

  std::uint64_t GetSize() const { return Bytes.size(); }

  tmsize_t Read(std::span<std::uint8_t> buffer) {
    TiffInput input{Bytes, Position};
    const tmsize_t count = input.Read(buffer);
    Position = input.Position;
    return count;
  }

  tmsize_t Write(std::span<const std::uint8_t> bytes) noexcept {
    const std::uint64_t end = Position + bytes.size();
    if (end > 2 * kMaxBitmapBytes) return -1;
    try {
      if (end > Bytes.size()) Bytes.resize(end);
    } catch (const std::bad_alloc&) {
      return -1;
    }
    std::ranges::copy(bytes, Bytes.data() + Position);
    Position = end;
    return static_cast<tmsize_t>(bytes.size());
  }
};

template <typename Stream>
tmsize_t Read(thandle_t handle, void* buffer, tmsize_t size) {
  if (size <= 0) return 0;
  return static_cast<Stream*>(handle)->Read(
      {static_cast<std::uint8_t*>(buffer), static_cast<std::size_t>(size)});
}

template <typename Stream>
tmsize_t Write(thandle_t handle, void* buffer, tmsize_t size) {
  if (size < 0) return -1;
  return static_cast<Stream*>(handle)->Write(
      {static_cast<const std::uint8_t*>(buffer), static_cast<std::size_t>(size)});
}

template <typename Stream>
toff_t Seek(thandle_t handle, toff_t offset, int whence) {
  auto* stream = static_cast<Stream*>(handle);
  // A negative offset comes as an unsigned number and wraps.
  if (whence == SEEK_SET) stream->Position = offset;
  if (whence == SEEK_CUR) stream->Position += offset;
  if (whence == SEEK_END) stream->Position = stream->GetSize() + offset;
  return stream->Position;
}

template <typename Stream>
toff_t GetSize(thandle_t handle) {
  return static_cast<Stream*>(handle)->GetSize();
}

int Close(thandle_t) { return 0; }

int Silence(TIFF*, void*, const char*, const char*, va_list) { return 1; }

struct OptionsCloser {
  void operator()(TIFFOpenOptions* options) const { TIFFOpenOptionsFree(options); }
};

/// Null if the stream holds no TIFF. `mode` is "w" to write, "rm" to read without mapping the file.
template <typename Stream>
TiffHandle OpenTiff(Stream& stream, const char* mode) {
  const std::unique_ptr<TIFFOpenOptions, OptionsCloser> options(TIFFOpenOptionsAlloc());
  if (!options) return nullptr;
  TIFFOpenOptionsSetErrorHandlerExtR(options.get(), Silence, nullptr);
  TIFFOpenOptionsSetWarningHandlerExtR(options.get(), Silence, nullptr);
  TIFFOpenOptionsSetMaxSingleMemAlloc(options.get(), static_cast<tmsize_t>(kMaxBitmapBytes));
  return TiffHandle(TIFFClientOpenExt("", mode, &stream, Read<Stream>, Write<Stream>, Seek<Stream>, Close,
                                      GetSize<Stream>, nullptr, nullptr, options.get()));
}

/// 0 by 0 if the tags are missing or the picture is too large to be held.
ImageSize GetPictureSize(TIFF* tiff) {
  std::uint32_t width = 0;
  std::uint32_t height = 0;
  if (!TIFFGetField(tiff, TIFFTAG_IMAGEWIDTH, &width) || !TIFFGetField(tiff, TIFFTAG_IMAGELENGTH, &height)) {
    return {};
  }
  constexpr std::uint32_t kMaxSide = std::numeric_limits<int>::max() / kBytesPerPixel;
  if (width > kMaxSide || height > kMaxSide) return {};
  return {static_cast<int>(width), static_cast<int>(height)};
}

WayUp GetWayUp(TIFF* tiff) {
  std::uint16_t value = 0;
  return WayUpOfTag(TIFFGetField(tiff, TIFFTAG_ORIENTATION, &value) ? value : 0);
}

std::uint64_t GetBitmapBytes(ImageSize size) {
  return static_cast<std::uint64_t>(size.Width) * static_cast<std::uint64_t>(size.Height) * kBytesPerPixel;
}

/// The held pixels, and as much again: the library takes that to decode them, and so does a turned copy,
/// which is made when the library has given its part back.
std::uint64_t GetWorkingBytes(ImageSize size) { return 2 * GetBitmapBytes(size); }

void StoreColors(std::uint32_t pixel, std::uint8_t* bytes) {
  bytes[0] = static_cast<std::uint8_t>(TIFFGetB(pixel));
  bytes[1] = static_cast<std::uint8_t>(TIFFGetG(pixel));
  bytes[2] = static_cast<std::uint8_t>(TIFFGetR(pixel));
  bytes[3] = static_cast<std::uint8_t>(TIFFGetA(pixel));
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

std::vector<std::uint8_t> EncodeTiff(const PixelSource& pixels) {
  TiffOutput output;
  TiffHandle tiff = OpenTiff(output, "w");
  const bool written =
      pixels.Top && tiff && SetTags(tiff.get(), pixels.Size) && WriteRows(tiff.get(), pixels);
  tiff.reset();
  if (!written) throw CException(kCannotWrite);
  return std::move(output.Bytes);
}

/// Null if there isn't enough.
platform::LargeMemory TryToAllocate(std::uint64_t bytes) {
  try {
    return platform::AllocateLargeMemory(bytes);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

/// The pixels as they are stored, rows from the top downwards. False if the library can't read them.
bool ReadPixels(TIFF* tiff, WayUp wayUp, const PixelBuffer& pixels) {
  const auto count =
      static_cast<std::size_t>(pixels.Size.Width) * static_cast<std::size_t>(pixels.Size.Height);
  std::fill_n(pixels.Top, count * kBytesPerPixel, 0);  // a damaged file may not give all pixels
  auto* raster = reinterpret_cast<std::uint32_t*>(pixels.Top);
  constexpr int kGoOnAfterErrors = 0;  // as for a JPEG, what a damaged file has is shown
  // In the order of the file: the library by itself only mirrors, and never makes columns of rows.
  if (!TIFFReadRGBAImageOriented(tiff, static_cast<std::uint32_t>(pixels.Size.Width),
                                 static_cast<std::uint32_t>(pixels.Size.Height), raster,
                                 static_cast<int>(wayUp), kGoOnAfterErrors)) {
    return false;
  }
  for (std::size_t i = 0; i < count; ++i) StoreColors(raster[i], pixels.Top + i * kBytesPerPixel);
  return true;
}

/// Pixels without padding in `memory`, rows from the top downwards.
PixelBuffer GetRows(std::uint8_t* memory, ImageSize size) {
  return {memory, std::ptrdiff_t{size.Width} * kBytesPerPixel, size, kBytesPerPixel};
}

}  // namespace

void CTiffImage::Decode(std::span<const std::uint8_t> bytes, ImageSize) {
  HoldNoPixels({});
  CompressedAsJpeg = false;
  HasMorePages = false;
  TiffInput input{bytes};
  TiffHandle tiff = OpenTiff(input, "rm");
  if (!tiff) return;
  const ImageSize size = GetPictureSize(tiff.get());
  const WayUp wayUp = GetWayUp(tiff.get());
  const std::uint64_t bitmapBytes = GetBitmapBytes(size);
  if (bitmapBytes == 0) return;
  if (bitmapBytes > kMaxBitmapBytes) throw CTooLargeException();
  const CMemoryShare share(GetPictureMemory(), GetWorkingBytes(size));
  const platform::LargeMemory memory = TryToAllocate(bitmapBytes);
  const PixelBuffer stored = GetRows(memory.get(), size);
  if (!memory || !ReadPixels(tiff.get(), wayUp, stored)) return;
  std::uint16_t compression = 0;
  std::uint16_t page = 0;
  std::uint16_t pages = 0;
  CompressedAsJpeg =
      TIFFGetField(tiff.get(), TIFFTAG_COMPRESSION, &compression) && compression == COMPRESSION_JPEG;
  HasMorePages =
      TIFFGetField(tiff.get(), TIFFTAG_PAGENUMBER, &page, &pages) != 0 || TIFFLastDirectory(tiff.get()) == 0;
  tiff.reset();  // what it holds is counted for the upright pixels, too
  platform::LargeMemory upright = TryToAllocate(bitmapBytes);
  if (!upright) return;
  const ImageSize uprightSize = GetUprightSize(size, wayUp);
  PixelBuffer pixels = GetRows(upright.get(), uprightSize);
  pixels.Top += (uprightSize.Height - 1) * pixels.RowStep;
  pixels.RowStep = -pixels.RowStep;
  PutUpright(stored, wayUp, pixels);
  HoldPixels(std::move(upright), pixels, uprightSize);
}

ImageSize CTiffImage::ReadSize(const std::string& path) const {
  TiffFile file{path};
  const TiffHandle tiff = OpenTiff(file, "rm");
  return tiff ? GetUprightSize(GetPictureSize(tiff.get()), GetWayUp(tiff.get())) : ImageSize();
}

std::vector<std::uint8_t> CTiffImage::SaveToMemory(int) const { return EncodeTiff(GetPixels()); }

bool CTiffImage::TurnFile(int angle) {
  if (angle != 90 && angle != 270) throw CException(kCannotWrite);
  const CMemoryShare share(GetPictureMemory(), GetWorkingBytes(GetNaturalSize()));
  const WayUp turn = angle == 90 ? WayUp::TurnRight : WayUp::TurnLeft;
  const ImageSize size = GetUprightSize(GetNaturalSize(), turn);
  std::vector<std::uint8_t> turned(GetBitmapBytes(size));
  const PixelBuffer pixels = GetRows(turned.data(), size);
  PutUpright(GetPixels(), turn, pixels);
  ReplaceFile(GetPath(), EncodeTiff(pixels));
  return true;
}
