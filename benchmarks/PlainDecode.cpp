#include "PlainDecode.h"

#include <jpeglib.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <vector>

#include "Measure.h"
#include "Parallel.h"

namespace {

constexpr double kBoxWidth = 140;  // of a thumbnail, pixels
constexpr double kBoxHeight = 105;

std::vector<std::string> FindPhotos(const std::string& folder) {
  std::vector<std::string> paths;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
    if (entry.path().extension() == ".jpg") paths.push_back(entry.path().string());
  }
  std::sort(paths.begin(), paths.end());
  return paths;
}

void ReadFile(const std::string& path, std::vector<unsigned char>& bytes) {
  bytes.resize(std::filesystem::file_size(path));
  std::ifstream file(path, std::ios::binary);
  if (!file.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()))) {
    throw std::runtime_error("can't read " + path);
  }
}

[[noreturn]] void ThrowDecoderError(j_common_ptr info) {
  std::array<char, JMSG_LENGTH_MAX> text{};
  info->err->format_message(info, text.data());
  throw std::runtime_error(text.data());
}

unsigned ChooseReduction(const jpeg_decompress_struct& info) {
  const double scale = std::min(kBoxWidth / info.image_width, kBoxHeight / info.image_height);
  if (scale <= 0.125) return 8;
  if (scale <= 0.25) return 4;
  return scale <= 0.5 ? 2 : 1;
}

void Decode(const std::vector<unsigned char>& bytes, PlainPicture& picture) {
  jpeg_decompress_struct info{};
  jpeg_error_mgr errors{};
  info.err = jpeg_std_error(&errors);
  errors.error_exit = ThrowDecoderError;
  jpeg_create_decompress(&info);
  jpeg_mem_src(&info, bytes.data(), static_cast<unsigned long>(bytes.size()));
  jpeg_read_header(&info, TRUE);
  info.scale_num = 1;
  info.scale_denom = ChooseReduction(info);
  info.out_color_space = JCS_EXT_BGR;
  jpeg_start_decompress(&info);
  const std::size_t rowBytes = (std::size_t{3} * info.output_width + 3) / 4 * 4;
  std::vector<unsigned char>& pixels = picture.Pixels;
  pixels.resize(rowBytes * info.output_height);
  picture.Width = static_cast<int>(info.output_width);
  picture.Height = static_cast<int>(info.output_height);
  std::array<JSAMPROW, 16> rows{};
  while (info.output_scanline < info.output_height) {
    const unsigned count = std::min<unsigned>(rows.size(), info.output_height - info.output_scanline);
    for (unsigned i = 0; i < count; ++i) rows[i] = pixels.data() + rowBytes * (info.output_scanline + i);
    jpeg_read_scanlines(&info, rows.data(), count);
  }
  jpeg_finish_decompress(&info);
  jpeg_destroy_decompress(&info);
}

}  // namespace

double DecodePlainly(const std::string& folder, unsigned threadCount) {
  const std::vector<std::string> paths = FindPhotos(folder);
  const auto start = std::chrono::steady_clock::now();
  RunParallel(paths.size(), threadCount, [&](std::size_t index) {
    // Each thread uses its two blocks again and again, as a loop written for speed would.
    static thread_local std::vector<unsigned char> bytes;
    static thread_local PlainPicture picture;
    ReadFile(paths[index], bytes);
    Decode(bytes, picture);
  });
  return SecondsSince(start);
}

PlainPicture DecodePlainly(const std::string& path) {
  std::vector<unsigned char> bytes;
  ReadFile(path, bytes);
  PlainPicture picture;
  Decode(bytes, picture);
  return picture;
}
