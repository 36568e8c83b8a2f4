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
      if (pixels.BytesPerPixel == 4)
        WriteWithAlpha(pixels);
      else
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
    Info.in_color_space = pixels.BytesPerPixel == 4 ? JCS_CMYK : JCS_EXT_BGR;
    jpeg_set_defaults(&Info);  // YCbCr with chroma halved in both directions
    if (pixels.BytesPerPixel == 4) {
      jpeg_set_colorspace(&Info, JCS_YCCK);
      Info.write_Adobe_marker = FALSE;
    }
    jpeg_set_quality(&Info, quality, TRUE);
    jpeg_start_compress(&Info, TRUE);
  }

  void Write(const PixelSource& pixels) {
    while (Info.next_scanline < Info.image_height) {
      JSAMPROW row = const_cast<JSAMPROW>(pixels.Row(static_cast<int>(Info.next_scanline)));
      jpeg_write_scanlines(&Info, &row, 1);
    }
  }

  // The library makes YCbCr and a fourth channel of inks alone, so the three colours go in inverted.
  void WriteWithAlpha(const PixelSource& pixels) {
    JSAMPARRAY wide =
        Info.mem->alloc_sarray(reinterpret_cast<j_common_ptr>(&Info), JPOOL_IMAGE, Info.image_width * 4, 1);
    while (Info.next_scanline < Info.image_height) {
      const std::uint8_t* from = pixels.Row(static_cast<int>(Info.next_scanline));
      JSAMPROW to = wide[0];
      for (JDIMENSION x = 0; x < Info.image_width; ++x, from += 4, to += 4) {
        for (int k = 0; k < 3; ++k) to[k] = static_cast<JSAMPLE>(255 - from[k]);
        to[3] = from[3];
      }
      jpeg_write_scanlines(&Info, wide, 1);
    }
  }

  JpegErrors Errors;
  CJpegDestination Destination{kFirstBlock};
  jpeg_compress_struct Info{};
};

}  // namespace

std::vector<std::uint8_t> EncodeJpeg(const PixelSource& pixels, int quality) {
  if (pixels.BytesPerPixel != 3 && pixels.BytesPerPixel != 4) throw CException("Unsupported bitcount");
  if (pixels.Size.Width < 1 || pixels.Size.Height < 1) throw CException("Cannot write JPEG data to file\n");
  return CEncoder().Encode(pixels, quality);
}
