#include "imaging/PlainJpeg.h"

#include <cstdio>
// jpeglib.h needs <cstdio> before it.
#include <jpeglib.h>

PlainJpeg ReadPlainly(std::span<const std::uint8_t> jpeg) {
  jpeg_decompress_struct info{};
  jpeg_error_mgr errors{};
  info.err = jpeg_std_error(&errors);
  errors.output_message = [](j_common_ptr) {};  // of damaged files
  jpeg_create_decompress(&info);
  jpeg_mem_src(&info, jpeg.data(), static_cast<unsigned long>(jpeg.size()));
  jpeg_save_markers(&info, JPEG_COM, 0xFFFF);
  for (int k = 0; k < 16; ++k) jpeg_save_markers(&info, JPEG_APP0 + k, 0xFFFF);
  jpeg_read_header(&info, TRUE);
  info.out_color_space = info.jpeg_color_space;
  info.do_fancy_upsampling = FALSE;
  jpeg_start_decompress(&info);
  PlainJpeg plain{static_cast<int>(info.image_width),
                  static_cast<int>(info.image_height),
                  info.num_components,
                  info.progressive_mode != FALSE,
                  info.arith_code != FALSE,
                  info.restart_interval,
                  {},
                  {}};
  for (jpeg_saved_marker_ptr marker = info.marker_list; marker; marker = marker->next) {
    plain.Headers.push_back(std::string(1, static_cast<char>(marker->marker)));
    plain.Headers.back().append(reinterpret_cast<const char*>(marker->data), marker->data_length);
  }
  const std::size_t rowBytes = std::size_t{info.image_width} * static_cast<std::size_t>(info.num_components);
  plain.Samples.resize(rowBytes * info.image_height);
  while (info.output_scanline < info.image_height) {
    JSAMPROW row = &plain.Samples[rowBytes * info.output_scanline];
    jpeg_read_scanlines(&info, &row, 1);
  }
  jpeg_destroy_decompress(&info);
  return plain;
}
