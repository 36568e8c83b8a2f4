#include "base/Exceptions.h"
#include "imaging/JpegCodec.h"
#include "imaging/JpegGuard.h"
#include "imaging/JpegMemory.h"

namespace {

constexpr std::size_t kFirstBlock = std::size_t{16} << 10;  // bytes; a thumbnail takes 3 to 8 KB

class CEncoder {
 public:
  CEncoder() {
    Info.err = &Errors.Manager;
    Info.client_data = &Errors;
    const bool created = RunGuarded(Errors, [this] {
      jpeg_create_compress(&Info);
      return true;
    });
    if (!created) throw CError("Cannot initialize Intel Jpeg library\n");
    Info.dest = Destination.GetManager();
  }
  ~CEncoder() { jpeg_destroy_compress(&Info); }
  CEncoder(const CEncoder&) = delete;
  CEncoder& operator=(const CEncoder&) = delete;

  std::vector<std::uint8_t> Encode(const PixelSource& pixels, int quality) {
    const bool written = RunGuarded(Errors, [&] {
      Start(pixels, quality);
      Write(pixels);
      jpeg_finish_compress(&Info);
      return true;
    });
    if (!written) throw CException("Cannot write JPEG data to file\n");
    return Destination.Take();
  }

 private:
  void Start(const PixelSource& pixels, int quality) {
    Info.image_width = static_cast<JDIMENSION>(pixels.Size.Width);
    Info.image_height = static_cast<JDIMENSION>(pixels.Size.Height);
    Info.input_components = pixels.BytesPerPixel;
    Info.in_color_space = JCS_EXT_BGR;
    jpeg_set_defaults(&Info);  // YCbCr with chroma halved in both directions
    jpeg_set_quality(&Info, quality, TRUE);
    jpeg_start_compress(&Info, TRUE);
  }

  void Write(const PixelSource& pixels) {
    while (Info.next_scanline < Info.image_height) {
      JSAMPROW row = const_cast<JSAMPROW>(pixels.Row(static_cast<int>(Info.next_scanline)));
      jpeg_write_scanlines(&Info, &row, 1);
    }
  }

  JpegErrors Errors;
  CJpegDestination Destination{kFirstBlock};
  jpeg_compress_struct Info{};
};

}  // namespace

std::vector<std::uint8_t> EncodeJpeg(const PixelSource& pixels, int quality) {
  if (pixels.BytesPerPixel != 3) throw CException("Unsupported bitcount");
  if (pixels.Size.Width < 1 || pixels.Size.Height < 1) throw CException("Cannot write JPEG data to file\n");
  return CEncoder().Encode(pixels, quality);
}
