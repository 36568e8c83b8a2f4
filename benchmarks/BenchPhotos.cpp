#include "BenchPhotos.h"

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <thread>
#include <vector>

#include "Measure.h"
#include "Parallel.h"
#include "PhotoFile.h"
#include "Scenery.h"

namespace {

constexpr std::size_t kExifBytes = 20480;
constexpr int kQuality = 92;
constexpr float kGrain = 9;  // steps of 256; with the quality, about 3 bits a pixel
constexpr int kPerFolder = 100;

const Landscape kLake{.SkyTop = {0.3F, 0.5F, 0.8F},
                      .SkyLow = {0.9F, 0.86F, 0.8F},
                      .SunX = -0.1F,
                      .SunY = 0.1F,
                      .Sun = {1.0F, 0.96F, 0.84F},
                      .Clouds = 0.6F,
                      .CloudLit = {1.0F, 0.98F, 0.95F},
                      .CloudShade = {0.6F, 0.64F, 0.72F},
                      .Horizon = 0.5F,
                      .Ridges = {{0.49F, 0.25F, 1.8F, {0.42F, 0.47F, 0.55F}, 0.3F, true},
                                 {0.51F, 0.05F, 3.0F, {0.1F, 0.19F, 0.12F}, 0.05F, false, true}},
                      .Floor = Ground::Water,
                      .Near = {0.13F, 0.27F, 0.33F},
                      .Far = {0.5F, 0.6F, 0.7F}};
const Flower kFlower{{0.3F, 0.46F, 0.2F}, {0.98F, 0.97F, 0.95F}, {0.98F, 0.76F, 0.14F}, 21};
const Forest kForest{{0.94F, 0.97F, 0.7F}, {0.22F, 0.42F, 0.12F}, {0.34F, 0.27F, 0.19F}};

std::vector<Picture> PaintBases(int width, int height) {
  std::vector<Picture> bases(4);
  RunParallel(bases.size(), std::thread::hardware_concurrency(), [&](std::size_t index) {
    switch (index) {
      case 0:
        bases[index] = PaintLandscape(kLake, width, height, 1, kGrain);
        break;
      case 1:
        bases[index] = PaintFlower(kFlower, width, height, 2, kGrain);
        break;
      case 2:
        bases[index] = PaintForest(kForest, width, height, 3, kGrain);
        break;
      default:
        bases[index] = PaintLandscape(kLake, width, height, 4, kGrain);
        break;
    }
  });
  return bases;
}

// The base shifted sideways around its edge, by an amount of its own for each photo: as costly to decode as
// the base, but never the same bytes.
Picture Vary(const Picture& base, int index) {
  Picture varied(base.Width, base.Height);
  const int shift = index * 37 % base.Width;
  const std::size_t left = static_cast<std::size_t>(shift) * 3;
  const std::size_t right = static_cast<std::size_t>(base.Width - shift) * 3;
  for (int y = 0; y < base.Height; ++y) {
    std::memcpy(varied.Row(y), base.Row(y) + left, right);
    std::memcpy(varied.Row(y) + right, base.Row(y), left);
  }
  return varied;
}

std::filesystem::path PathOf(const std::filesystem::path& folder, int index) {
  char name[40];
  std::snprintf(name, sizeof name, "roll%02d/IMG_%04d.jpg", index / kPerFolder, index);
  return folder / name;
}

void MakeMissing(const std::filesystem::path& folder, int count, int width, int height, bool progressive) {
  std::vector<int> missing;
  for (int index = 0; index < count; ++index) {
    if (!std::filesystem::exists(PathOf(folder, index))) missing.push_back(index);
  }
  if (missing.empty()) return;
  std::printf("  making %zu photos of %d by %d in %s\n", missing.size(), width, height, folder.c_str());
  std::fflush(stdout);
  const std::vector<Picture> bases = PaintBases(width, height);
  RunParallel(missing.size(), std::thread::hardware_concurrency(), [&](std::size_t i) {
    const int index = missing[i];
    PhotoSettings settings;
    settings.Quality = kQuality;
    settings.Progressive = progressive;
    settings.ExifBytes = kExifBytes;
    settings.Taken.tm_year = 120 + index % 6;
    settings.Taken.tm_mon = index % 12;
    settings.Taken.tm_mday = 1 + index % 28;
    settings.Taken.tm_hour = index % 24;
    const std::filesystem::path path = PathOf(folder, index);
    std::filesystem::create_directories(path.parent_path());
    const Picture picture = Vary(bases[static_cast<std::size_t>(index) % bases.size()], index);
    WritePhoto(path.string(), EncodePhoto(picture, settings), settings);
  });
}

std::size_t ReadThrough(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  std::vector<char> block(1 << 20);
  std::size_t total = 0;
  while (file.read(block.data(), static_cast<std::streamsize>(block.size())) || file.gcount() > 0) {
    total += static_cast<std::size_t>(file.gcount());
  }
  return total;
}

}  // namespace

BenchPhotos MakeBenchPhotos(int count, int width, int height, bool progressive) {
  char name[80];
  std::snprintf(name, sizeof name, "bench-photos/%d-of-%dx%d%s", count, width, height,
                progressive ? "-progressive" : "");
  const std::filesystem::path folder = GetKeptFolder(name);
  MakeMissing(folder, count, width, height, progressive);

  std::atomic<std::size_t> bytes{0};
  RunParallel(static_cast<std::size_t>(count), std::thread::hardware_concurrency(),
              [&](std::size_t index) { bytes += ReadThrough(PathOf(folder, static_cast<int>(index))); });
  const double pixels = static_cast<double>(count) * width * height;
  const double pictureBytes = static_cast<double>(bytes) - static_cast<double>(kExifBytes) * count;
  BenchPhotos photos{folder.string(), count, pictureBytes * 8 / pixels};
  if (photos.BitsPerPixel < 2 || photos.BitsPerPixel > 4) {
    throw std::runtime_error("the photos in " + photos.Folder + " have " +
                             std::to_string(photos.BitsPerPixel) + " bits a pixel, not 2 to 4");
  }
  return photos;
}
