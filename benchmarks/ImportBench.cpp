#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "BenchPhotos.h"
#include "Benchmarks.h"
#include "ChildRun.h"
#include "Measure.h"
#include "PlainDecode.h"
#include "app/DataStores.h"
#include "base/Messages.h"
#include "base/Settings.h"
#include "catalog/Catalog.h"
#include "catalog/Properties.h"
#include "catalog/ThumbnailCache.h"
#include "discovery/FolderSearch.h"
#include "imaging/Image.h"
#include "imaging/PreparedPhoto.h"
#include "ui/kit/Application.h"
#include "ui/kit/FontTable.h"
#include "ui/kit/Job.h"
#include "ui/search/WindowedSearchProgress.h"

namespace {

constexpr int kRepetitions = 5;
constexpr int kSecondStarts = 9;
constexpr int kLargePhotos = 200;
constexpr int kSmallPhotos = 1000;
constexpr int kProgressivePhotos = 12;
constexpr int kComparedPhotos = 500;  // of the small ones

struct ImportFigures {
  double Seconds = 0;      // median of the first starts
  double SecondStart = 0;  // median of the starts after the last of them
};

ChildFigures Start(const std::string& home, const BenchPhotos& photos) {
  const ChildFigures figures = RunChild({kImportChild}, home);
  if (figures.Values.size() != 3 || static_cast<int>(figures.Values[1]) != photos.Count ||
      static_cast<int>(figures.Values[2]) != photos.Count) {
    throw std::runtime_error("the import did not bring in all photos of " + photos.Folder);
  }
  return figures;
}

// Imports and plain loops take turns, so that whatever else slows the machine down slows both.
ImportFigures CompareImport(const BenchPhotos& photos, const char* what, double limit) {
  const CScratchFolder scratch("import");
  const unsigned threads = std::thread::hardware_concurrency();
  std::vector<double> imports;
  std::vector<double> plain;
  std::vector<double> ratios;
  ImportFigures result;
  std::string home;
  for (int i = 0; i < kRepetitions; ++i) {
    home = MakeHome(scratch.GetPath(), i, photos.Folder);
    plain.push_back(DecodePlainly(photos.Folder, threads));
    imports.push_back(Start(home, photos).Values[0]);
    ratios.push_back(plain.back() / imports.back());
  }
  std::vector<double> secondStarts;
  for (int i = 0; i < kSecondStarts; ++i) secondStarts.push_back(Start(home, photos).Values[0]);
  result.Seconds = Median(imports);
  result.SecondStart = Median(secondStarts);
  std::printf(
      "  %d photos of %s, %.1f bits a pixel: import %.1f photos/s, plain loop on %u threads %.1f photos/s\n",
      photos.Count, what, photos.BitsPerPixel, photos.Count / result.Seconds, threads,
      photos.Count / Median(plain));
  PrintRatio(std::string("import / plain loop, ") + what, Median(ratios), Limit::AtLeast, limit);
  return result;
}

std::vector<std::string> ListFiles(const std::string& folder) {
  std::vector<std::string> files;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
    if (entry.is_regular_file()) files.push_back(entry.path().string());
  }
  std::sort(files.begin(), files.end());
  return files;
}

void MeasureProgressive(const BenchPhotos& photos) {
  const std::vector<std::string> files = ListFiles(photos.Folder);
  std::vector<double> ratios;
  double seconds = 0;
  for (int i = 0; i < kRepetitions; ++i) {
    const double plain = DecodePlainly(photos.Folder, 1);
    const auto start = std::chrono::steady_clock::now();
    for (const std::string& file : files) {
      if (PreparePhoto(file).Thumbnail.empty()) throw std::runtime_error("no thumbnail of " + file);
    }
    seconds = SecondsSince(start);
    ratios.push_back(plain / seconds);
  }
  std::printf("  thumbnail of a progressive photo of 12 megapixels: %.1f ms\n", seconds * 1e3 / photos.Count);
  PrintRatio("thumbnail / plain decode, progressive", Median(ratios), Limit::AtLeast, 4);
}

struct Difference {
  double Mean = 0;
  double Decibels = 0;  // peak signal to noise
  int Largest = 0;
};

Difference Compare(const PixelSource& one, const PixelSource& other) {
  Difference difference;
  double squares = 0;
  const int samples = one.Size.Width * 3;
  for (int y = 0; y < one.Size.Height; ++y) {
    for (int k = 0; k < samples; ++k) {
      const int distance = std::abs(one.Row(y)[k] - other.Row(y)[k]);
      difference.Mean += distance;
      squares += distance * distance;
      difference.Largest = std::max(difference.Largest, distance);
    }
  }
  const double count = static_cast<double>(samples) * one.Size.Height;
  difference.Mean /= count;
  difference.Decibels = 10 * std::log10(255 * 255 * count / std::max(squares, 1.0));
  return difference;
}

// The thumbnail as it would be if the JPEG library had decoded the photo.
std::vector<std::uint8_t> MakePlainThumbnail(const std::string& file) {
  const PlainPicture plain = DecodePlainly(file);
  CJpegImage image({plain.Width, plain.Height});
  std::copy(plain.Pixels.begin(), plain.Pixels.end(), image.GetPixels().Top);
  return image.MakeFitted(kThumbnailBoxWidth, kThumbnailBoxHeight)->SaveToMemory(kThumbnailQuality);
}

void CompareThumbnails(const BenchPhotos& photos, const std::string& what) {
  Difference worst{0, 1000, 0};
  std::vector<std::string> files = ListFiles(photos.Folder);
  files.resize(std::min<std::size_t>(files.size(), kComparedPhotos));
  for (const std::string& file : files) {
    CJpegImage expected;
    expected.LoadMemory(MakePlainThumbnail(file), 0, 0);
    CJpegImage thumbnail;
    thumbnail.LoadMemory(PreparePhoto(file).Thumbnail, 0, 0);
    if (thumbnail.GetCurrentSize() != expected.GetCurrentSize())
      throw std::runtime_error("wrong size: " + file);
    const Difference difference = Compare(thumbnail.GetPixels(), expected.GetPixels());
    worst.Mean = std::max(worst.Mean, difference.Mean);
    worst.Decibels = std::min(worst.Decibels, difference.Decibels);
    worst.Largest = std::max(worst.Largest, difference.Largest);
  }
  std::printf("  largest difference of a sample in %zu thumbnails, %s: %d of 255\n", files.size(),
              what.c_str(), worst.Largest);
  PrintRatio("mean difference of the worst thumbnail, " + what, worst.Mean, Limit::AtMost, 1);
  PrintRatio("PSNR of the worst thumbnail, decibels, " + what, worst.Decibels, Limit::AtLeast, 40);
}

// A folder of `count` photos that are the same files again and again under other names.
BenchPhotos LinkPhotos(const BenchPhotos& photos, int count, const std::string& folder) {
  const std::vector<std::string> files = ListFiles(photos.Folder);
  std::filesystem::create_directories(folder);
  for (int i = 0; i < count; ++i) {
    std::filesystem::create_hard_link(files[static_cast<std::size_t>(i) % files.size()],
                                      std::filesystem::path(folder) / (std::to_string(i) + ".jpg"));
  }
  return {folder, count, photos.BitsPerPixel};
}

// More photos may cost their rows, but not their pixels or thumbnails, which take several KB each. The counts
// are so large that the page caches of the two files, which have a fixed size, are full with the smaller one.
void MeasureMemory() {
  constexpr int kDifferent = 200;
  constexpr int kMany = 6000;
  constexpr int kMore = 18000;
  constexpr double kMostKilobytes = 2;  // a photo: its row, its three stamps, their places in the orders
  const BenchPhotos photos = MakeBenchPhotos(kDifferent, 640, 480);
  const CScratchFolder scratch("memory");
  std::vector<double> peaks;
  for (const int count : {kDifferent, kMany, kMore}) {
    const std::string folder = scratch.GetPath() + "/photos";
    const BenchPhotos linked = LinkPhotos(photos, count, folder);
    peaks.push_back(Start(MakeHome(scratch.GetPath(), count, folder), linked).PeakMegabytes);
    std::filesystem::remove_all(folder);
  }
  std::printf("  most memory of an import of %d, %d and %d photos: %.1f, %.1f and %.1f MB\n", kDifferent,
              kMany, kMore, peaks[0], peaks[1], peaks[2]);
  PrintRatio("KB of memory for each further photo", (peaks[2] - peaks[1]) * 1024 / (kMore - kMany),
             Limit::AtMost, kMostKilobytes);
}

// Rows with a thumbnail that shows something.
int CountThumbnails(const CCatalog& catalog, const CThumbnailCache& cache) {
  int count = 0;
  for (int i = 0; i < catalog.GetAssets().GetSize(); ++i) {
    if (cache.Load(props::AssetID.Get(catalog.GetAssets()[i])) != nullptr) ++count;
  }
  return count;
}

}  // namespace

void RunImportBench() {
  const BenchPhotos large = MakeBenchPhotos(kLargePhotos, 4000, 3000);
  const BenchPhotos small = MakeBenchPhotos(kSmallPhotos, 1632, 1224);
  CompareImport(large, "12 megapixels", 1.7);
  const ImportFigures importOfSmall = CompareImport(small, "2 megapixels", 1.4);
  std::printf("  first start with %d photos %.0f ms, second start %.1f ms\n", small.Count,
              importOfSmall.Seconds * 1e3, importOfSmall.SecondStart * 1e3);
  PrintRatio("first start / second start", importOfSmall.Seconds / importOfSmall.SecondStart, Limit::AtLeast,
             20);
  const BenchPhotos progressive = MakeBenchPhotos(kProgressivePhotos, 4000, 3000, true);
  MeasureProgressive(progressive);
  CompareThumbnails(small, "sequential");
  CompareThumbnails(progressive, "progressive");
  MeasureMemory();
}

void RunImportChild() {
  char name[] = "vellumar_bench";
  char* arguments[] = {name, nullptr};
  int count = 1;
  CApplication application(count, arguments);
  SetSettings(std::make_unique<CRegistrySettings>());
  CConsent consent;
  SetMessageBox(&consent);
  const CFontTable fonts;
  CCatalog catalog;
  CThumbnailCache cache;
  CFolderSearch& search = CFolderSearch::GetInstance();

  const auto start = std::chrono::steady_clock::now();
  {
    CWindowedSearchProgress progress(true, true);
    search.Progress = &progress;
    RunJob([&] { OpenDataStores(catalog, cache); });
    RunJob([&] { search.FirstSearch(); });
    search.Progress = nullptr;
  }
  const double seconds = SecondsSince(start);
  PrintChildFigures({seconds, static_cast<double>(catalog.GetAssets().GetSize()),
                     static_cast<double>(CountThumbnails(catalog, cache))});
}
