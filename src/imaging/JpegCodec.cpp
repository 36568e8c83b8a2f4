#include "imaging/JpegCodec.h"

#include <algorithm>
#include <cstring>
#include <new>

#include "base/Exceptions.h"
#include "imaging/DcPicture.h"
#include "imaging/JpegLibrary.h"
#include "imaging/PictureMemory.h"

namespace {

constexpr int kGrey = 128;
constexpr int kRowsAtOnce = CUprightRows::kMostRowsAtOnce;
constexpr std::size_t kBytesPerPixel = 3;
constexpr int kMeansReduction = 8;  // at which a pixel is the mean of a block

enum class ColorForm {
  Direct,        // the library gives blue, green, red
  Inks,          // cyan, magenta, yellow, black; full is 255
  InvertedInks,  // the same; full is 0
  Unsupported,
};

bool HasInkNames(const jpeg_decompress_struct& info) {
  const jpeg_component_info* parts = info.comp_info;
  return parts[0].component_id == 'C' && parts[1].component_id == 'M' && parts[2].component_id == 'Y' &&
         parts[3].component_id == 'K';
}

ColorForm ChooseColorForm(const jpeg_decompress_struct& info) {
  switch (info.num_components) {
    case 1:
    case 3:
      return ColorForm::Direct;
    case 4:
      if (info.saw_Adobe_marker) return ColorForm::InvertedInks;
      return HasInkNames(info) ? ColorForm::Inks : ColorForm::Unsupported;
    default:
      return ColorForm::Unsupported;
  }
}

inline std::uint8_t DivideBy255(unsigned product) {
  return static_cast<std::uint8_t>((product + 128 + ((product + 128) >> 8)) >> 8);
}

/// `Flip` turns ink into light: 255 if full ink is 255, otherwise 0.
template <unsigned Flip>
void InksToPixels(const JSAMPLE* inks, std::uint8_t* pixels, JDIMENSION count) {
  for (; count > 0; --count, inks += 4, pixels += 3) {
    const unsigned light = inks[3] ^ Flip;
    pixels[0] = DivideBy255((inks[2] ^ Flip) * light);
    pixels[1] = DivideBy255((inks[1] ^ Flip) * light);
    pixels[2] = DivideBy255((inks[0] ^ Flip) * light);
  }
}

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

class CJpegDecoder::Impl {
 public:
  explicit Impl(std::span<const std::uint8_t> bytes) : Bytes(bytes), Source(bytes), Budget(bytes.size()) {
    Info.err = &Errors.Manager;
    Info.client_data = &Errors;
    const bool created = RunGuarded(Errors, [this] {
      jpeg_create_decompress(&Info);
      return true;
    });
    if (!created) throw CError("Cannot initialize Intel Jpeg library\n");
    Info.src = Source.GetManager();
    const bool read = RunGuarded(Errors, [this] { return jpeg_read_header(&Info, TRUE) == JPEG_HEADER_OK; });
    if (!read) {
      jpeg_destroy_decompress(&Info);
      throw CException("Cannot read JPEG header");
    }
    Form = ChooseColorForm(Info);
    Way = ReadWayUp(Bytes.first(Bytes.size() - Source.GetRest().size()));
  }

  ~Impl() { jpeg_destroy_decompress(&Info); }
  Impl(const Impl&) = delete;
  Impl& operator=(const Impl&) = delete;

  ImageSize GetSize() const {
    return {static_cast<int>(Info.image_width), static_cast<int>(Info.image_height)};
  }

  WayUp GetWayUp() const { return Way; }

  std::uint64_t GetHeldBytes(int reduction) {
    const std::uint64_t coefficients = jpeg_has_multiple_scans(&Info) ? GetCoefficientBytes(Info) : 0;
    if (reduction != kMeansReduction) return coefficients;
    return std::max(coefficients, CDcPicture::GetHeldBytes(Info, Bytes.size()));
  }

  void Decode(int reduction, const PixelBuffer& target, bool mayTryAgain = true) {
    if (Form == ColorForm::Unsupported) throw CException("Unsupported number of channels");
    if (!IsAffordable(Info)) throw CTooLargeException();
    const ImageSize stored = GetUprightSize(target.Size, Way);  // swapped once more
    if (reduction == kMeansReduction && mayTryAgain && PaintMeans(stored, target)) return;
    CUprightRows rows(stored, Way, target);
    const bool started = RunGuarded(Errors, [&] { return Start(reduction, stored); });
    if (started && !ReadScans() && mayTryAgain && EndOfLastScan > 0 && !Budget.IsSpent()) {
      // The library gave up on what stands between two scans, and its state can't be relied on any more. The
      // scans before the flaw are the picture: it is decoded anew, as if the file ended there.
      jpeg_destroy_decompress(&Info);  // or the coefficients would be held twice
      Impl(Bytes.first(EndOfLastScan)).Decode(reduction, target, false);
      return;
    }
    if (Budget.IsSpent()) throw CTooLargeException();
    const bool decoded = started && !Failed && RunGuarded(Errors, [&] { return ReadRows(rows); });
    if (!decoded) throw CException("Cannot read JPEG data from file\n");
  }

 private:
  /// Paints the picture at 1/8 without the library. False, with nothing painted, if it has to be asked.
  bool PaintMeans(ImageSize stored, const PixelBuffer& target) const {
    try {
      CDcPicture picture(Info, Source.GetRest());
      CUprightRows rows(stored, Way, target);
      return picture.Read(Bytes.size()) && picture.Paint(rows);
    } catch (const std::bad_alloc&) {
      return false;  // the library takes less memory
    }
  }

  /// Reads the scans of a progressive file, or of one with a scan for each channel.
  bool ReadScans() {
    Failed = Info.buffered_image && !RunGuarded(Errors, [this] { return ReadAllScans(); });
    return !Failed;
  }

  // All below runs guarded.

  bool Start(int reduction, ImageSize size) {
    Info.scale_num = 1;
    Info.scale_denom = static_cast<unsigned>(reduction);
    Info.out_color_space = Form == ColorForm::Direct ? JCS_EXT_BGR : JCS_CMYK;
    Info.buffered_image = jpeg_has_multiple_scans(&Info);
    jpeg_start_decompress(&Info);
    return Info.output_width == static_cast<unsigned>(size.Width) &&
           Info.output_height == static_cast<unsigned>(size.Height);
  }

  bool ReadAllScans() {
    for (int status = JPEG_REACHED_SOS; status != JPEG_REACHED_EOI; status = jpeg_consume_input(&Info)) {
      if (status == JPEG_SCAN_COMPLETED) {
        constexpr std::size_t kMarkerBytes = 2;  // of the marker behind the scan, already read
        EndOfLastScan = Bytes.size() - std::min(Info.src->bytes_in_buffer, Bytes.size());
        if (Info.unread_marker != 0) EndOfLastScan -= std::min(kMarkerBytes, EndOfLastScan);
      }
      if (status != JPEG_REACHED_SOS) continue;
      if (!Budget.Allows(Info)) return false;
    }
    return jpeg_start_output(&Info, Info.input_scan_number);
  }

  bool ReadRows(CUprightRows& rows) {
    JSAMPARRAY wide = nullptr;
    if (Form != ColorForm::Direct) {
      wide = Info.mem->alloc_sarray(reinterpret_cast<j_common_ptr>(&Info), JPOOL_IMAGE, Info.output_width * 4,
                                    kRowsAtOnce);
    }
    JDIMENSION end = Info.output_height;
    while (Info.output_scanline < end) {
      const JDIMENSION first = Info.output_scanline;
      const JDIMENSION count = wide ? ReadConverted(rows, wide) : ReadDirect(rows);
      if (count == 0) return false;
      rows.Advance(static_cast<int>(first + count));
      // The rows that the library has buffered still hold picture; all after them would be grey.
      if (HasNoMoreData() && end == Info.output_height) end = std::min(end, first + count + 3 * RowsOfMCU());
    }
    for (JDIMENSION y = end; y < Info.output_height; ++y) {
      std::memset(rows.Row(static_cast<int>(y)), kGrey, Info.output_width * kBytesPerPixel);
      rows.Advance(static_cast<int>(y) + 1);
    }
    return true;
  }

  bool HasNoMoreData() const {
    return Errors.RanDry && !Info.buffered_image &&
           (Info.unread_marker == JPEG_EOI || Info.restart_interval == 0);
  }

  JDIMENSION RowsOfMCU() const {
    return static_cast<JDIMENSION>(Info.max_v_samp_factor * Info.min_DCT_scaled_size);
  }

  JDIMENSION ReadDirect(const CUprightRows& target) {
    JSAMPROW rows[kRowsAtOnce] = {};
    const JDIMENSION wanted = std::min<JDIMENSION>(kRowsAtOnce, Info.output_height - Info.output_scanline);
    for (JDIMENSION k = 0; k < wanted; ++k) rows[k] = target.Row(static_cast<int>(Info.output_scanline + k));
    return jpeg_read_scanlines(&Info, rows, wanted);
  }

  JDIMENSION ReadConverted(const CUprightRows& target, JSAMPARRAY wide) {
    const int first = static_cast<int>(Info.output_scanline);
    const JDIMENSION count = jpeg_read_scanlines(&Info, wide, kRowsAtOnce);
    for (JDIMENSION k = 0; k < count; ++k) {
      std::uint8_t* row = target.Row(first + static_cast<int>(k));
      if (Form == ColorForm::Inks) {
        InksToPixels<255>(wide[k], row, Info.output_width);
      } else {
        InksToPixels<0>(wide[k], row, Info.output_width);
      }
    }
    return count;
  }

  JpegErrors Errors;
  const std::span<const std::uint8_t> Bytes;
  WayUp Way = WayUp::AsStored;
  CJpegSource Source;
  jpeg_decompress_struct Info{};
  ColorForm Form = ColorForm::Unsupported;
  CScanBudget Budget;
  std::size_t EndOfLastScan = 0;  // bytes up to the end of the last whole scan
  bool Failed = false;
};

CJpegDecoder::CJpegDecoder(std::span<const std::uint8_t> bytes) : Inside(std::make_unique<Impl>(bytes)) {}

CJpegDecoder::~CJpegDecoder() = default;

ImageSize CJpegDecoder::GetSize() const { return Inside->GetSize(); }

WayUp CJpegDecoder::GetWayUp() const { return Inside->GetWayUp(); }

std::uint64_t CJpegDecoder::GetHeldBytes(int reduction) const { return Inside->GetHeldBytes(reduction); }

void CJpegDecoder::Decode(int reduction, const PixelBuffer& target) { Inside->Decode(reduction, target); }

std::vector<std::uint8_t> EncodeJpeg(const PixelSource& pixels, int quality) {
  if (pixels.BytesPerPixel != 3) throw CException("Unsupported bitcount");
  if (pixels.Size.Width < 1 || pixels.Size.Height < 1) throw CException("Cannot write JPEG data to file\n");
  return CEncoder().Encode(pixels, quality);
}
