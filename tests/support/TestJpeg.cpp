#include "support/TestJpeg.h"

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <random>
#include <tuple>
#include <utility>
// jpeglib.h needs <cstdio> before it.
#include <jpeglib.h>

namespace {

void SetColors(jpeg_compress_struct& info, const JpegRecipe& recipe) {
  static constexpr std::pair<J_COLOR_SPACE, int> kInputs[] = {
      {JCS_GRAYSCALE, 1}, {JCS_UNKNOWN, 2}, {JCS_RGB, 3}, {JCS_RGB, 3}, {JCS_CMYK, 4}, {JCS_CMYK, 4}};
  std::tie(info.in_color_space, info.input_components) = kInputs[static_cast<std::size_t>(recipe.Colors)];
  jpeg_set_defaults(&info);
  if (recipe.Colors == StoredColors::Ycck) jpeg_set_colorspace(&info, JCS_YCCK);
  if (recipe.Colors == StoredColors::Rgb) {
    // As an editor writes it: numbered channels, which the Adobe marker alone makes RGB.
    jpeg_set_colorspace(&info, JCS_RGB);
    for (int k = 0; k < 3; ++k) info.comp_info[k].component_id = k + 1;
    info.write_Adobe_marker = TRUE;
  }
  if (!recipe.AdobeMarker) info.write_Adobe_marker = FALSE;
  if (!recipe.Jfif) info.write_JFIF_header = FALSE;
}

/// Returns the scans, if the channels have too many blocks to share one.
std::vector<jpeg_scan_info> SetSampling(jpeg_compress_struct& info, const JpegRecipe& recipe) {
  std::vector<jpeg_scan_info> scans;
  int blocks = 0;
  for (int k = 0; k < info.num_components; ++k) {
    std::array<int, 2> sampling = {1, 1};
    if (k == 0 || k == 3) sampling = {recipe.HorizontalSampling, recipe.VerticalSampling};
    if (!recipe.Samplings.empty()) sampling = recipe.Samplings.at(static_cast<std::size_t>(k));
    info.comp_info[k].h_samp_factor = sampling[0];
    info.comp_info[k].v_samp_factor = sampling[1];
    blocks += sampling[0] * sampling[1];
    scans.push_back({1, {k}, 0, recipe.Progressive ? 0 : 63, 0, 0});
    if (recipe.Progressive) scans.push_back({1, {k}, 1, 63, 0, 0});
  }
  if (blocks <= C_MAX_BLOCKS_IN_MCU) scans.clear();
  return scans;
}

void WriteExif(jpeg_compress_struct& info, const JpegRecipe& recipe) {
  if (recipe.DateTime.empty() && recipe.Orientation == 0) return;
  std::string exif("Exif\0\0II*\0\x08\0\0\0\x02\0", 16);
  exif += std::string("\x12\x01\x03\0\x01\0\0\0", 8) + static_cast<char>(recipe.Orientation) +
          std::string(3, '\0');
  const char bytes = recipe.DateTime.empty() ? '\0' : '\x14';
  exif += std::string("\x32\x01\x02\0", 4) + bytes + std::string("\0\0\0\x26\0\0\0\0\0\0\0", 11);
  exif += recipe.DateTime + '\0';
  jpeg_write_marker(&info, JPEG_APP0 + 1, reinterpret_cast<const JOCTET*>(exif.data()),
                    static_cast<unsigned>(exif.size()));
}

}  // namespace

std::array<std::uint8_t, 4> PaintSoftly(int x, int y) {
  return {static_cast<std::uint8_t>(40 + x), static_cast<std::uint8_t>(200 - y),
          static_cast<std::uint8_t>(90 + (x + y) / 2), 0};
}

std::vector<std::uint8_t> MakeJpeg(const JpegRecipe& recipe, const Painter& painter) {
  jpeg_error_mgr errors{};
  jpeg_compress_struct info{};
  info.err = jpeg_std_error(&errors);
  jpeg_create_compress(&info);
  unsigned char* block = nullptr;
  unsigned long size = 0;
  jpeg_mem_dest(&info, &block, &size);
  info.image_width = static_cast<JDIMENSION>(recipe.Width);
  info.image_height = static_cast<JDIMENSION>(recipe.Height);
  SetColors(info, recipe);
  const auto scans = SetSampling(info, recipe);
  jpeg_set_quality(&info, recipe.Quality, TRUE);
  info.restart_interval = recipe.RestartInterval;
  info.arith_code = recipe.Arithmetic ? TRUE : FALSE;
  if (recipe.Progressive) jpeg_simple_progression(&info);
  if (!scans.empty()) {
    info.scan_info = scans.data();
    info.num_scans = static_cast<int>(scans.size());
  }
  jpeg_start_compress(&info, TRUE);
  WriteExif(info, recipe);
  for (int y = 0; y < recipe.Height; ++y) {
    std::vector<JSAMPLE> row;
    for (int x = 0; x < recipe.Width; ++x) {
      const auto samples = painter(x, y);
      row.insert(row.end(), samples.begin(), samples.begin() + info.input_components);
    }
    JSAMPROW rows = row.data();
    jpeg_write_scanlines(&info, &rows, 1);
  }
  jpeg_finish_compress(&info);
  jpeg_destroy_compress(&info);
  const std::unique_ptr<unsigned char, decltype(&std::free)> owner(block, std::free);
  return {block, block + size};
}

std::string MakeJpeg(unsigned width, unsigned height, unsigned red, unsigned green, unsigned blue,
                     const std::string& dateTime) {
  const auto byte = [](unsigned value) { return static_cast<std::uint8_t>(value); };
  const JpegRecipe recipe{.Width = static_cast<int>(width),
                          .Height = static_cast<int>(height),
                          .HorizontalSampling = 2,
                          .VerticalSampling = 2,
                          .Quality = 90,
                          .DateTime = dateTime};
  const auto jpeg = MakeJpeg(recipe, [&](int, int) {
    return std::array{byte(red), byte(green), byte(blue), std::uint8_t{0}};
  });
  return {jpeg.begin(), jpeg.end()};
}

std::vector<std::uint8_t> MakeNoisyJpeg(JpegRecipe recipe, int width, int height) {
  recipe.Width = width;
  recipe.Height = height;
  recipe.Quality = 90;
  return MakeJpeg(recipe, [random = std::mt19937(3)](int, int) mutable {
    const auto bits = random();
    return std::array{static_cast<std::uint8_t>(bits), static_cast<std::uint8_t>(bits >> 8),
                      static_cast<std::uint8_t>(bits >> 16), std::uint8_t{0}};
  });
}

std::vector<std::uint8_t> WithHeaders(std::vector<std::uint8_t> jpeg,
                                      const std::vector<std::string>& headers) {
  std::string added;
  for (const std::string& header : headers) {
    const std::size_t length = header.size() + 1;
    added += {'\xFF', header[0], static_cast<char>(length >> 8), static_cast<char>(length)};
    added += header.substr(1);
  }
  jpeg.insert(jpeg.begin() + 2, added.begin(), added.end());
  return jpeg;
}
