#include <cstdio>
// jpeglib.h needs <cstdio> before it.
#include <fcntl.h>
#include <jpeglib.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "BenchPhotos.h"
#include "Benchmarks.h"
#include "Measure.h"
#include "catalog/Catalog.h"
#include "editing/ChangePhoto.h"
#include "imaging/AutoFix.h"
#include "imaging/ImageFile.h"

namespace {

constexpr int kPhotos = 4;
constexpr int kRounds = 7;
constexpr int kQuality = 70;
constexpr double kMegapixels = 12;

using Paths = std::vector<std::string>;
using Bytes = std::vector<unsigned char>;

/// The median over all rounds of one photo, in seconds, summed over the photos. The ways to do a thing are
/// timed in turns, so that what else the machine does falls on all of them alike.
template <typename... Ways>
std::array<double, sizeof...(Ways)> MeasureInTurns(const Paths& photos, const Ways&... ways) {
  std::array<double, sizeof...(Ways)> sums{};
  for (const std::string& photo : photos) {
    std::array<std::vector<double>, sizeof...(Ways)> times;
    for (int round = 0; round < kRounds; ++round) {
      std::size_t way = 0;
      const auto measure = [&](const auto& work) {
        const auto start = std::chrono::steady_clock::now();
        work(photo);
        times[way++].push_back(SecondsSince(start));
      };
      (measure(ways), ...);
    }
    for (std::size_t way = 0; way < sums.size(); ++way) sums[way] += Median(times[way]);
  }
  return sums;
}

void RunProcess(std::vector<std::string> arguments) {
  std::vector<char*> pointers;
  pointers.reserve(arguments.size() + 1);
  for (std::string& argument : arguments) pointers.push_back(argument.data());
  pointers.push_back(nullptr);
  pid_t child = 0;
  if (posix_spawnp(&child, pointers[0], nullptr, nullptr, pointers.data(), environ) != 0) {
    throw std::runtime_error(arguments[0] + " can't be started; is libjpeg-turbo-progs installed?");
  }
  int status = 0;
  while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
  }
  if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) throw std::runtime_error(arguments[0] + " failed");
}

void CompareTurns(const Paths& photos, const CScratchFolder& scratch) {
  const std::string turnPhoto =
      std::filesystem::read_symlink("/proc/self/exe").parent_path().string() + "/turn_photo";
  const std::string ours = scratch.GetPath() + "/turned.jpg";
  const std::string theirs = scratch.GetPath() + "/jpegtran.jpg";
  const auto [turning, jpegtran] = MeasureInTurns(
      photos,
      [&](const std::string& photo) {
        RunProcess({turnPhoto, photo, ours, "90"});
      },
      [&](const std::string& photo) {
        RunProcess(
            {"jpegtran", "-rotate", "90", "-trim", "-copy", "all", "-optimize", "-outfile", theirs, photo});
      });
  const int count = static_cast<int>(photos.size());
  std::printf("  turning a photo of %g megapixels, flushed: %.0f ms; jpegtran, not flushed: %.0f ms\n",
              kMegapixels, turning / count * 1e3, jpegtran / count * 1e3);
  PrintRatio("photos turned in the time of one by jpegtran", jpegtran / turning, Limit::AtLeast, 0.9);
}

Bytes ReadFile(const std::string& path) {
  Bytes bytes(std::filesystem::file_size(path));
  std::ifstream file(path, std::ios::binary);
  if (!file.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()))) {
    throw std::runtime_error("can't read " + path);
  }
  return bytes;
}

void WriteFlushed(const std::string& path, const unsigned char* bytes, std::size_t size) {
  const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
  const bool written =
      file >= 0 && write(file, bytes, size) == static_cast<ssize_t>(size) && fsync(file) == 0;
  if (file >= 0) close(file);
  if (!written) throw std::runtime_error("can't write " + path);
}

struct PlainPicture {
  JDIMENSION Width = 0;
  JDIMENSION Height = 0;
  Bytes Pixels;

  JSAMPROW Row(JDIMENSION y) { return Pixels.data() + std::size_t{3} * Width * y; }
};

PlainPicture DecodeWhole(const Bytes& bytes) {
  jpeg_decompress_struct info{};
  jpeg_error_mgr errors{};
  info.err = jpeg_std_error(&errors);  // ends the process on an error
  jpeg_create_decompress(&info);
  jpeg_mem_src(&info, bytes.data(), static_cast<unsigned long>(bytes.size()));
  jpeg_read_header(&info, TRUE);
  info.out_color_space = JCS_EXT_BGR;
  jpeg_start_decompress(&info);
  PlainPicture picture{info.output_width, info.output_height, {}};
  picture.Pixels.resize(std::size_t{3} * picture.Width * picture.Height);
  while (info.output_scanline < info.output_height) {
    JSAMPROW row = picture.Row(info.output_scanline);
    jpeg_read_scanlines(&info, &row, 1);
  }
  jpeg_finish_decompress(&info);
  jpeg_destroy_decompress(&info);
  return picture;
}

/// What AutoFix is measured against: decode, encode, write, and nothing in between.
void CodePlainly(const std::string& from, const std::string& to) {
  PlainPicture picture = DecodeWhole(ReadFile(from));
  jpeg_compress_struct info{};
  jpeg_error_mgr errors{};
  info.err = jpeg_std_error(&errors);
  jpeg_create_compress(&info);
  unsigned char* block = nullptr;
  unsigned long size = 0;
  jpeg_mem_dest(&info, &block, &size);
  info.image_width = picture.Width;
  info.image_height = picture.Height;
  info.input_components = 3;
  info.in_color_space = JCS_EXT_BGR;
  jpeg_set_defaults(&info);
  jpeg_set_quality(&info, kQuality, TRUE);
  jpeg_start_compress(&info, TRUE);
  while (info.next_scanline < info.image_height) {
    JSAMPROW row = picture.Row(info.next_scanline);
    jpeg_write_scanlines(&info, &row, 1);
  }
  jpeg_finish_compress(&info);
  jpeg_destroy_compress(&info);
  WriteFlushed(to, block, size);
  std::free(block);
}

void FixFile(const std::string& from, const std::string& to) {
  const auto image = LoadImageFile(from, 0, 0);
  if (!image) throw std::runtime_error("can't decode " + from);
  AutoFix(*image);
  image->Save(to, kQuality);
}

void CompareFixes(const Paths& photos, const CScratchFolder& scratch) {
  const auto [plain, fix] = MeasureInTurns(
      photos, [&](const std::string& photo) { CodePlainly(photo, scratch.GetPath() + "/plain.jpg"); },
      [&](const std::string& photo) { FixFile(photo, scratch.GetPath() + "/fixed.jpg"); });
  const int count = static_cast<int>(photos.size());
  std::printf("  decoding and encoding one, flushed: %.0f ms; correcting it in between: %.0f ms\n",
              plain / count * 1e3, fix / count * 1e3);
  PrintRatio("AutoFix from file to file / decoding and encoding", fix / plain, Limit::AtMost, 1.3);
}

/// The whole command, with the copy that it keeps, on photos of their own that are put back each time.
void MeasureCommand(const Paths& photos, const CScratchFolder& scratch) {
  CCatalog catalog;
  catalog.Open(scratch.GetPath() + "/vellumar.db");
  double fixing = 0;
  double undoing = 0;
  for (const std::string& photo : photos) {
    const std::string path = scratch.GetPath() + "/" + std::filesystem::path(photo).filename().string();
    std::filesystem::copy_file(photo, path);
    const CAssetRecord record = catalog.AddAsset(path);
    const auto use = [&](const std::string&) { AutoFixPhoto(record, nullptr, {}); };
    const auto [fix, undo] = MeasureInTurns({path}, use, use);
    fixing += fix;
    undoing += undo;
  }
  const int count = static_cast<int>(photos.size());
  std::printf("  the whole command, with its copy of the original: %.0f ms; its undoing: %.1f ms\n",
              fixing / count * 1e3, undoing / count * 1e3);
}

}  // namespace

void RunEditBench() {
  const BenchPhotos made = MakeBenchPhotos(kPhotos, 4000, 3000);
  Paths photos;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(made.Folder)) {
    if (entry.path().extension() == ".jpg") photos.push_back(entry.path().string());
  }
  const CScratchFolder scratch("edit");
  CompareTurns(photos, scratch);
  CompareFixes(photos, scratch);
  MeasureCommand(photos, scratch);
}
