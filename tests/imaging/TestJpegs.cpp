#include "imaging/TestJpegs.h"

#include <cstdio>
#include <cstdlib>
// jpeglib.h needs <cstdio> before it.
#include <jpeglib.h>

#include <algorithm>
#include <random>
#include <stdexcept>

namespace {

J_COLOR_SPACE InputSpace(StoredColors colors) {
  switch (colors) {
    case StoredColors::Grey:
      return JCS_GRAYSCALE;
    case StoredColors::TwoChannels:
      return JCS_UNKNOWN;
    case StoredColors::YCbCr:
    case StoredColors::Rgb:
      return JCS_RGB;
    default:
      return JCS_CMYK;
  }
}

int InputChannels(StoredColors colors) {
  switch (InputSpace(colors)) {
    case JCS_GRAYSCALE:
      return 1;
    case JCS_UNKNOWN:
      return 2;
    case JCS_RGB:
      return 3;
    default:
      return 4;
  }
}

void SeparateScansIfNeeded(jpeg_compress_struct& info) {
  static thread_local std::vector<jpeg_scan_info> scans;
  int blocks = 0;
  for (int k = 0; k < info.num_components; ++k)
    blocks += info.comp_info[k].h_samp_factor * info.comp_info[k].v_samp_factor;
  if (blocks <= C_MAX_BLOCKS_IN_MCU) return;
  scans.clear();
  for (int k = 0; k < info.num_components; ++k) {
    if (info.progressive_mode) {
      scans.push_back({1, {k}, 0, 0, 0, 0});
      scans.push_back({1, {k}, 1, 63, 0, 0});
    } else {
      scans.push_back({1, {k}, 0, 63, 0, 0});
    }
  }
  info.scan_info = scans.data();
  info.num_scans = static_cast<int>(scans.size());
}

void SetUp(jpeg_compress_struct& info, const JpegRecipe& recipe) {
  info.image_width = static_cast<JDIMENSION>(recipe.Width);
  info.image_height = static_cast<JDIMENSION>(recipe.Height);
  info.in_color_space = InputSpace(recipe.Colors);
  info.input_components = InputChannels(recipe.Colors);
  jpeg_set_defaults(&info);
  if (recipe.Colors == StoredColors::Rgb) {
    // As an editor writes it: numbered channels, told as RGB by the Adobe marker alone.
    jpeg_set_colorspace(&info, JCS_RGB);
    for (int k = 0; k < 3; ++k) info.comp_info[k].component_id = k + 1;
    info.write_Adobe_marker = TRUE;
  }
  if (recipe.Colors == StoredColors::Ycck) jpeg_set_colorspace(&info, JCS_YCCK);
  if (!recipe.AdobeMarker) info.write_Adobe_marker = FALSE;
  jpeg_set_quality(&info, recipe.Quality, TRUE);
  for (int k = 0; k < info.num_components; ++k) {
    const bool isFull = k == 0 || k == 3;
    info.comp_info[k].h_samp_factor = isFull ? recipe.HorizontalSampling : 1;
    info.comp_info[k].v_samp_factor = isFull ? recipe.VerticalSampling : 1;
  }
  for (std::size_t k = 0; k < recipe.Samplings.size(); ++k) {
    info.comp_info[k].h_samp_factor = recipe.Samplings[k][0];
    info.comp_info[k].v_samp_factor = recipe.Samplings[k][1];
  }
  if (!recipe.Jfif) info.write_JFIF_header = FALSE;
  info.restart_interval = recipe.RestartInterval;
  info.arith_code = recipe.Arithmetic ? TRUE : FALSE;
  if (recipe.Progressive) jpeg_simple_progression(&info);
  SeparateScansIfNeeded(info);
}

std::size_t FindMarker(std::span<const std::uint8_t> jpeg, std::initializer_list<std::uint8_t> markers,
                       bool last) {
  std::size_t found = jpeg.size();
  for (std::size_t i = 0; i + 1 < jpeg.size(); ++i) {
    if (jpeg[i] != 0xFF || std::find(markers.begin(), markers.end(), jpeg[i + 1]) == markers.end()) continue;
    found = i;
    if (!last) break;
  }
  if (found == jpeg.size()) throw std::runtime_error("no such marker");
  return found;
}

}  // namespace

std::vector<std::uint8_t> MakeJpeg(const JpegRecipe& recipe, const Painter& painter) {
  jpeg_compress_struct info{};
  jpeg_error_mgr errors{};
  info.err = jpeg_std_error(&errors);  // ends the test program on an error
  jpeg_create_compress(&info);
  unsigned char* block = nullptr;
  unsigned long size = 0;
  jpeg_mem_dest(&info, &block, &size);
  SetUp(info, recipe);
  jpeg_start_compress(&info, TRUE);
  const auto channels = static_cast<std::size_t>(info.input_components);
  std::vector<std::uint8_t> row(static_cast<std::size_t>(recipe.Width) * channels);
  for (int y = 0; y < recipe.Height; ++y) {
    for (int x = 0; x < recipe.Width; ++x) {
      const auto samples = painter(x, y);
      std::copy_n(samples.begin(), channels, &row[static_cast<std::size_t>(x) * channels]);
    }
    JSAMPROW rowPointer = row.data();
    jpeg_write_scanlines(&info, &rowPointer, 1);
  }
  jpeg_finish_compress(&info);
  jpeg_destroy_compress(&info);
  std::vector<std::uint8_t> jpeg(block, block + size);
  std::free(block);
  return jpeg;
}

std::vector<std::uint8_t> ForgeSize(std::vector<std::uint8_t> jpeg, int width, int height) {
  const std::size_t frame = FindMarker(jpeg, {0xC0, 0xC1, 0xC2, 0xC9, 0xCA}, false);
  jpeg[frame + 5] = static_cast<std::uint8_t>(height >> 8);
  jpeg[frame + 6] = static_cast<std::uint8_t>(height);
  jpeg[frame + 7] = static_cast<std::uint8_t>(width >> 8);
  jpeg[frame + 8] = static_cast<std::uint8_t>(width);
  return jpeg;
}

std::vector<std::uint8_t> RepeatLastScan(std::span<const std::uint8_t> jpeg, int times) {
  const std::size_t scan = FindMarker(jpeg, {0xDA}, true);
  const std::size_t end = FindMarker(jpeg, {0xD9}, true);
  std::vector<std::uint8_t> repeated(jpeg.begin(), jpeg.begin() + static_cast<std::ptrdiff_t>(scan));
  const auto lastScan = jpeg.subspan(scan, end - scan);
  for (int k = 0; k < times; ++k) repeated.insert(repeated.end(), lastScan.begin(), lastScan.end());
  repeated.insert(repeated.end(), {0xFF, 0xD9});
  return repeated;
}

std::vector<std::uint8_t> MakeNoisyJpeg(JpegRecipe recipe) {
  recipe.Quality = 90;
  return MakeJpeg(recipe, [random = std::mt19937(3)](int, int) mutable {
    const auto bits = random();
    return std::array<std::uint8_t, 4>{static_cast<std::uint8_t>(bits), static_cast<std::uint8_t>(bits >> 8),
                                       static_cast<std::uint8_t>(bits >> 16), 0};
  });
}

std::array<std::uint8_t, 4> PaintSoftly(int x, int y) {
  return {static_cast<std::uint8_t>(40 + x), static_cast<std::uint8_t>(200 - y),
          static_cast<std::uint8_t>(90 + (x + y) / 2), 0};
}
