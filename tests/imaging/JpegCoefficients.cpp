#include "imaging/JpegCoefficients.h"

#include <cstdio>
// jpeglib.h needs <cstdio> before it.
#include <jpeglib.h>

#include <algorithm>

namespace {

/// A file that has been opened for reading, its header taken in.
class COpenJpeg {
 public:
  explicit COpenJpeg(std::span<const std::uint8_t> jpeg) {
    Info.err = jpeg_std_error(&Errors);
    Errors.output_message = [](j_common_ptr) {};  // of damaged files
    jpeg_create_decompress(&Info);
    jpeg_mem_src(&Info, jpeg.data(), static_cast<unsigned long>(jpeg.size()));
    jpeg_save_markers(&Info, JPEG_COM, 0xFFFF);
    for (int k = 0; k < 16; ++k) jpeg_save_markers(&Info, JPEG_APP0 + k, 0xFFFF);
    jpeg_read_header(&Info, TRUE);
  }
  ~COpenJpeg() { jpeg_destroy_decompress(&Info); }
  COpenJpeg(const COpenJpeg&) = delete;
  COpenJpeg& operator=(const COpenJpeg&) = delete;

  jpeg_decompress_struct Info{};

 private:
  jpeg_error_mgr Errors{};
};

ChannelCoefficients ReadChannel(jpeg_decompress_struct& info, int index, jvirt_barray_ptr blocks) {
  const jpeg_component_info& from = info.comp_info[index];
  const bool isSingle = info.num_components == 1;  // its sampling means nothing then
  ChannelCoefficients channel{isSingle ? 1 : from.h_samp_factor,
                              isSingle ? 1 : from.v_samp_factor,
                              static_cast<int>(from.width_in_blocks),
                              static_cast<int>(from.height_in_blocks),
                              {},
                              {}};
  std::copy_n(info.quant_tbl_ptrs[from.quant_tbl_no]->quantval, 64, channel.Quantization.begin());
  for (JDIMENSION y = 0; y < from.height_in_blocks; ++y) {
    const JBLOCKROW row =
        info.mem->access_virt_barray(reinterpret_cast<j_common_ptr>(&info), blocks, y, 1, FALSE)[0];
    for (JDIMENSION x = 0; x < from.width_in_blocks; ++x) {
      std::copy_n(row[x], 64, channel.Blocks.emplace_back().begin());
    }
  }
  return channel;
}

ChannelCoefficients TurnByDefinition(const ChannelCoefficients& channel) {
  ChannelCoefficients turned{
      channel.VerticalSampling, channel.HorizontalSampling, channel.Height, channel.Width, {}, {}};
  for (std::size_t i = 0; i < 64; ++i) turned.Quantization[i] = channel.Quantization[i % 8 * 8 + i / 8];
  for (int y = 0; y < turned.Height; ++y) {
    for (int x = 0; x < turned.Width; ++x) {
      // The lower left corner comes to stand at the upper left.
      const Block& from =
          channel.Blocks[static_cast<std::size_t>((channel.Height - 1 - x) * channel.Width + y)];
      Block& to = turned.Blocks.emplace_back();
      for (std::size_t i = 0; i < 64; ++i) {
        const int value = from[i % 8 * 8 + i / 8];
        to[i] = static_cast<std::int16_t>(i % 2 == 1 ? -value : value);
      }
    }
  }
  return turned;
}

}  // namespace

JpegCoefficients ReadCoefficients(std::span<const std::uint8_t> jpeg) {
  COpenJpeg open(jpeg);
  jvirt_barray_ptr* blocks = jpeg_read_coefficients(&open.Info);
  JpegCoefficients picture{
      static_cast<int>(open.Info.image_width), static_cast<int>(open.Info.image_height), {}};
  for (int k = 0; k < open.Info.num_components; ++k)
    picture.Channels.push_back(ReadChannel(open.Info, k, blocks[k]));
  return picture;
}

JpegForm ReadForm(std::span<const std::uint8_t> jpeg) {
  COpenJpeg open(jpeg);
  JpegForm form{
      open.Info.progressive_mode != FALSE, open.Info.arith_code != FALSE, open.Info.restart_interval, {}};
  for (jpeg_saved_marker_ptr marker = open.Info.marker_list; marker; marker = marker->next) {
    std::string header(1, static_cast<char>(marker->marker));
    header.append(reinterpret_cast<const char*>(marker->data), marker->data_length);
    form.Headers.push_back(header);
  }
  return form;
}

JpegCoefficients TurnByDefinition(const JpegCoefficients& picture) {
  JpegCoefficients turned{picture.Height, picture.Width, {}};
  for (const ChannelCoefficients& channel : picture.Channels)
    turned.Channels.push_back(TurnByDefinition(channel));
  return turned;
}
