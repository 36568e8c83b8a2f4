#include <algorithm>
#include <cstring>
#include <new>

#include "base/Exceptions.h"
#include "imaging/JpegCodec.h"
#include "imaging/JpegGuard.h"

namespace {

constexpr std::size_t kFirstBlock = std::size_t{16} << 10;  // bytes; a thumbnail takes 3 to 8 KB

/// A block of bytes that grows as the library fills it.
class CMemoryDestination {
 public:
  CMemoryDestination() {
    Manager.Owner = this;
    Manager.init_destination = [](j_compress_ptr info) { From(info).Continue(info, 0); };
    Manager.empty_output_buffer = [](j_compress_ptr info) -> boolean {
      From(info).Continue(info, From(info).Bytes.size());
      return TRUE;
    };
    Manager.term_destination = [](j_compress_ptr info) {
      From(info).Used = From(info).Bytes.size() - info->dest->free_in_buffer;
    };
  }
  CMemoryDestination(const CMemoryDestination&) = delete;
  CMemoryDestination& operator=(const CMemoryDestination&) = delete;

  jpeg_destination_mgr* GetManager() { return &Manager; }

  std::vector<std::uint8_t> Take() { return {Bytes.data(), Bytes.data() + Used}; }

 private:
  struct OwnedManager : jpeg_destination_mgr {
    CMemoryDestination* Owner = nullptr;
  };

  static CMemoryDestination& From(j_compress_ptr info) {
    return *static_cast<OwnedManager*>(info->dest)->Owner;
  }

  void Continue(j_compress_ptr info, std::size_t used) {
    if (!Grow()) ERREXIT1(info, JERR_OUT_OF_MEMORY, 0);
    info->dest->next_output_byte = Bytes.data() + used;
    info->dest->free_in_buffer = Bytes.size() - used;
  }

  // No exception may leave through the library.
  bool Grow() noexcept {
    try {
      Bytes.resize(std::max(kFirstBlock, Bytes.size() * 2));
      return true;
    } catch (const std::bad_alloc&) {
      return false;
    }
  }

  OwnedManager Manager{};
  std::vector<std::uint8_t> Bytes;
  std::size_t Used = 0;
};

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
  CMemoryDestination Destination;
  jpeg_compress_struct Info{};
};

}  // namespace

std::vector<std::uint8_t> EncodeJpeg(const PixelSource& pixels, int quality) {
  if (pixels.BytesPerPixel != 3 && pixels.BytesPerPixel != 4) throw CException("Unsupported bitcount");
  if (pixels.Size.Width < 1 || pixels.Size.Height < 1) throw CException("Cannot write JPEG data to file\n");
  return CEncoder().Encode(pixels, quality);
}
