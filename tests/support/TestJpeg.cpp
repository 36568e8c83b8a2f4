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

class CJpegMaker {
 public:
  explicit CJpegMaker(const JpegRecipe& recipe) : Recipe(recipe) {
    Info.err = jpeg_std_error(&Errors);
    jpeg_create_compress(&Info);
  }
  ~CJpegMaker() { jpeg_destroy_compress(&Info); }
  CJpegMaker(const CJpegMaker&) = delete;
  CJpegMaker& operator=(const CJpegMaker&) = delete;

  std::vector<std::uint8_t> Make(const Painter& painter) {
    unsigned char* block = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&Info, &block, &size);
    Info.image_width = static_cast<JDIMENSION>(Recipe.Width);
    Info.image_height = static_cast<JDIMENSION>(Recipe.Height);
    SetColors();
    SetSampling();
    jpeg_set_quality(&Info, Recipe.Quality, TRUE);
    Info.restart_interval = Recipe.RestartInterval;
    Info.arith_code = Recipe.Arithmetic ? TRUE : FALSE;
    if (Recipe.Progressive) jpeg_simple_progression(&Info);
    SeparateScansIfNeeded();
    jpeg_start_compress(&Info, TRUE);
    if (!Recipe.DateTime.empty()) WriteDate();
    WriteRows(painter);
    jpeg_finish_compress(&Info);
    const std::unique_ptr<unsigned char, decltype(&std::free)> owner(block, std::free);
    return {block, block + size};
  }

 private:
  void SetColors() {
    static constexpr std::pair<J_COLOR_SPACE, int> kInputs[] = {
        {JCS_GRAYSCALE, 1}, {JCS_UNKNOWN, 2}, {JCS_RGB, 3}, {JCS_RGB, 3}, {JCS_CMYK, 4}, {JCS_CMYK, 4}};
    std::tie(Info.in_color_space, Info.input_components) = kInputs[static_cast<std::size_t>(Recipe.Colors)];
    jpeg_set_defaults(&Info);
    if (Recipe.Colors == StoredColors::Ycck) jpeg_set_colorspace(&Info, JCS_YCCK);
    if (Recipe.Colors == StoredColors::Rgb) {
      // As an editor writes it: numbered channels, which the Adobe marker alone makes RGB.
      jpeg_set_colorspace(&Info, JCS_RGB);
      for (int k = 0; k < 3; ++k) Info.comp_info[k].component_id = k + 1;
      Info.write_Adobe_marker = TRUE;
    }
    if (!Recipe.AdobeMarker) Info.write_Adobe_marker = FALSE;
    if (!Recipe.Jfif) Info.write_JFIF_header = FALSE;
  }

  void SetSampling() {
    for (int k = 0; k < Info.num_components; ++k) {
      const bool isFull = k == 0 || k == 3;
      Info.comp_info[k].h_samp_factor = isFull ? Recipe.HorizontalSampling : 1;
      Info.comp_info[k].v_samp_factor = isFull ? Recipe.VerticalSampling : 1;
    }
    for (std::size_t k = 0; k < Recipe.Samplings.size(); ++k) {
      Info.comp_info[k].h_samp_factor = Recipe.Samplings[k][0];
      Info.comp_info[k].v_samp_factor = Recipe.Samplings[k][1];
    }
  }

  /// Channels that have too many blocks to share a scan get scans of their own.
  void SeparateScansIfNeeded() {
    int blocks = 0;
    for (int k = 0; k < Info.num_components; ++k)
      blocks += Info.comp_info[k].h_samp_factor * Info.comp_info[k].v_samp_factor;
    if (blocks <= C_MAX_BLOCKS_IN_MCU) return;
    for (int k = 0; k < Info.num_components; ++k) {
      Scans.push_back({1, {k}, 0, Recipe.Progressive ? 0 : 63, 0, 0});
      if (Recipe.Progressive) Scans.push_back({1, {k}, 1, 63, 0, 0});
    }
    Info.scan_info = Scans.data();
    Info.num_scans = static_cast<int>(Scans.size());
  }

  void WriteDate() {
    std::string exif("Exif\0\0II*\0\x08\0\0\0", 14);
    exif += std::string("\x01\0\x32\x01\x02\0\x14\0\0\0\x1a\0\0\0\0\0\0\0", 18);
    exif += Recipe.DateTime + '\0';
    jpeg_write_marker(&Info, JPEG_APP0 + 1, reinterpret_cast<const JOCTET*>(exif.data()),
                      static_cast<unsigned>(exif.size()));
  }

  void WriteRows(const Painter& painter) {
    std::vector<JSAMPLE> row;
    for (int y = 0; y < Recipe.Height; ++y) {
      row.clear();
      for (int x = 0; x < Recipe.Width; ++x) {
        const auto samples = painter(x, y);
        row.insert(row.end(), samples.begin(), samples.begin() + Info.input_components);
      }
      JSAMPROW rows = row.data();
      jpeg_write_scanlines(&Info, &rows, 1);
    }
  }

  const JpegRecipe& Recipe;
  jpeg_error_mgr Errors{};
  jpeg_compress_struct Info{};
  std::vector<jpeg_scan_info> Scans;
};

}  // namespace

std::array<std::uint8_t, 4> PaintSoftly(int x, int y) {
  return {static_cast<std::uint8_t>(40 + x), static_cast<std::uint8_t>(200 - y),
          static_cast<std::uint8_t>(90 + (x + y) / 2), 0};
}

std::vector<std::uint8_t> MakeJpeg(const JpegRecipe& recipe, const Painter& painter) {
  return CJpegMaker(recipe).Make(painter);
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
