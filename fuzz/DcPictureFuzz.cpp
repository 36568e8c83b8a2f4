// A picture from DC coefficients is left to the JPEG library, or has the coefficients that the library reads.

#include <algorithm>
#include <cstdlib>
#include <optional>
#include <vector>

#include "imaging/DcPicture.h"
#include "imaging/JpegLibrary.h"

namespace {

using Bytes = std::span<const std::uint8_t>;

constexpr std::uint64_t kMostPixels = 1 << 22;  // more would take too long to compare

/// A file in the library's hands, up to its first scan.
class CHeader {
 public:
  explicit CHeader(Bytes bytes) : Source(bytes) {
    Info.err = &Errors.Manager;
    Info.client_data = &Errors;
    IsRead = RunGuarded(Errors, [&] {
      jpeg_create_decompress(&Info);
      Info.src = Source.GetManager();
      return jpeg_read_header(&Info, TRUE) == JPEG_HEADER_OK;
    });
  }
  ~CHeader() { jpeg_destroy_decompress(&Info); }
  CHeader(const CHeader&) = delete;
  CHeader& operator=(const CHeader&) = delete;

  JpegErrors Errors;
  CJpegSource Source;
  jpeg_decompress_struct Info{};
  bool IsRead = false;
};

bool HasSameCoefficients(CHeader& file, const CDcPicture& picture) {
  return RunGuarded(file.Errors, [&] {
    jvirt_barray_ptr* arrays = jpeg_read_coefficients(&file.Info);
    for (int k = 0; k < file.Info.num_components; ++k) {
      const jpeg_component_info& channel = file.Info.comp_info[k];
      for (JDIMENSION y = 0; y < channel.height_in_blocks; ++y) {
        const JBLOCKARRAY row = file.Info.mem->access_virt_barray(reinterpret_cast<j_common_ptr>(&file.Info),
                                                                  arrays[k], y, 1, FALSE);
        for (JDIMENSION x = 0; x < channel.width_in_blocks; ++x) {
          const auto& block = row[0][x];
          const auto number = static_cast<std::size_t>(k);
          if (block[0] != picture.GetCoefficient(number, x, y)) return false;
          const BlockDetail* detail = picture.FindDetail(number, x, y);
          if (!detail) continue;
          if (block[1] != detail->Across || block[DCTSIZE] != detail->Down) return false;
          if (block[DCTSIZE + 1] != detail->Diagonal) return false;
        }
      }
    }
    return true;
  });
}

void Paint(const CDcPicture& picture, ImageSize size) {
  std::vector<std::uint8_t> pixels(static_cast<std::size_t>(size.Width) * 3 *
                                   static_cast<std::size_t>(size.Height));
  CUprightRows rows(size, WayUp::AsStored, {pixels.data(), size.Width * std::ptrdiff_t{3}, size, 3});
  picture.Paint(rows);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const Bytes bytes(data, size);
  CHeader header(bytes);
  const jpeg_decompress_struct& info = header.Info;
  if (!header.IsRead || std::uint64_t{info.image_width} * info.image_height > kMostPixels) return 0;
  const Bytes scans = header.Source.GetRest();
  CDcPicture picture(info, scans);
  if (!picture.Read(size)) return 0;
  Paint(picture,
        {static_cast<int>((info.image_width + 7) / 8), static_cast<int>((info.image_height + 7) / 8)});
  // Of a file that isn't progressive the first scan is the picture, whatever follows.
  const std::size_t end = info.progressive_mode ? scans.size() : FindMarker(scans, 0);
  CHeader again(bytes.first(size - scans.size() + end));
  if (!HasSameCoefficients(again, picture)) std::abort();
  return 0;
}
