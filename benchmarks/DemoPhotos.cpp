#include <cstdio>
#include <exception>
#include <filesystem>
#include <string>
#include <thread>
#include <variant>
#include <vector>

#include "Parallel.h"
#include "PhotoFile.h"
#include "Scenery.h"

// Makes a small collection of sample photos: several folders and months, upright and wide pictures.
//
// usage: demo_photos FOLDER
//
// Photos that are there already are left alone, so a second run takes no time.

namespace {

constexpr float kGrain = 5;  // steps of 256
constexpr int kQuality = 90;

const Landscape kSunsetLake{.SkyTop = {0.20F, 0.27F, 0.48F},
                            .SkyLow = {1.0F, 0.66F, 0.32F},
                            .SunX = 0.62F,
                            .SunY = 0.47F,
                            .Sun = {1.0F, 0.86F, 0.50F},
                            .Glow = 0.85F,
                            .Clouds = 0.62F,
                            .CloudLit = {1.0F, 0.62F, 0.36F},
                            .CloudShade = {0.30F, 0.26F, 0.38F},
                            .Horizon = 0.56F,
                            .Ridges = {{0.55F, 0.16F, 1.6F, {0.30F, 0.28F, 0.42F}, 0.45F},
                                       {0.56F, 0.10F, 2.6F, {0.16F, 0.15F, 0.22F}, 0.15F},
                                       {0.575F, 0.04F, 2.0F, {0.07F, 0.07F, 0.09F}, 0, false, true}},
                            .Floor = Ground::Water,
                            .Near = {0.10F, 0.13F, 0.22F},
                            .Far = {0.5F, 0.4F, 0.4F}};

const Landscape kMorningLake{.SkyTop = {0.36F, 0.57F, 0.83F},
                             .SkyLow = {0.90F, 0.88F, 0.84F},
                             .SunX = -0.1F,
                             .SunY = 0.1F,
                             .Sun = {1.0F, 0.96F, 0.84F},
                             .Glow = 0.5F,
                             .Clouds = 0.4F,
                             .CloudLit = {1.0F, 0.98F, 0.95F},
                             .CloudShade = {0.68F, 0.71F, 0.78F},
                             .Horizon = 0.5F,
                             .Ridges = {{0.49F, 0.22F, 1.8F, {0.42F, 0.47F, 0.55F}, 0.5F, true},
                                        {0.50F, 0.13F, 2.2F, {0.24F, 0.34F, 0.30F}, 0.25F},
                                        {0.51F, 0.05F, 3.0F, {0.10F, 0.19F, 0.12F}, 0.05F, false, true}},
                             .Floor = Ground::Water,
                             .Near = {0.13F, 0.27F, 0.33F},
                             .Far = {0.5F, 0.6F, 0.7F}};

const Landscape kAlps{.SkyTop = {0.16F, 0.38F, 0.74F},
                      .SkyLow = {0.66F, 0.80F, 0.93F},
                      .SunX = 0.1F,
                      .SunY = -0.2F,
                      .Sun = {1.0F, 0.97F, 0.9F},
                      .Glow = 0.3F,
                      .Clouds = 0.5F,
                      .CloudLit = {1.0F, 1.0F, 1.0F},
                      .CloudShade = {0.66F, 0.71F, 0.80F},
                      .Horizon = 0.64F,
                      .Ridges = {{0.60F, 0.42F, 1.7F, {0.42F, 0.43F, 0.47F}, 0.18F, true},
                                 {0.64F, 0.24F, 2.1F, {0.36F, 0.35F, 0.32F}, 0.06F, true},
                                 {0.66F, 0.07F, 2.4F, {0.15F, 0.25F, 0.13F}, 0, false, true}},
                      .Floor = Ground::Meadow,
                      .Near = {0.36F, 0.50F, 0.18F},
                      .Far = {0.42F, 0.52F, 0.26F}};

const Landscape kBeach{.SkyTop = {0.22F, 0.50F, 0.84F},
                       .SkyLow = {0.80F, 0.90F, 0.96F},
                       .SunX = 0.8F,
                       .SunY = -0.1F,
                       .Sun = {1.0F, 0.98F, 0.9F},
                       .Glow = 0.4F,
                       .Clouds = 0.35F,
                       .CloudLit = {1.0F, 1.0F, 1.0F},
                       .CloudShade = {0.78F, 0.83F, 0.89F},
                       .Horizon = 0.52F,
                       .Ridges = {{0.53F, 0.06F, 1.2F, {0.36F, 0.44F, 0.46F}, 0.35F}},
                       .Floor = Ground::Beach,
                       .Near = {0.90F, 0.80F, 0.60F},
                       .Far = {0.93F, 0.86F, 0.70F},
                       .Sea = {0.13F, 0.44F, 0.56F}};

const Landscape kDunes{.SkyTop = {0.24F, 0.42F, 0.70F},
                       .SkyLow = {0.96F, 0.82F, 0.66F},
                       .SunX = 0.9F,
                       .SunY = 0.36F,
                       .Sun = {1.0F, 0.9F, 0.68F},
                       .Glow = 0.7F,
                       .Clouds = 0.1F,
                       .CloudLit = {1.0F, 0.9F, 0.8F},
                       .CloudShade = {0.8F, 0.7F, 0.68F},
                       .Horizon = 0.55F,
                       .Ridges = {{0.56F, 0.16F, 2.4F, {0.80F, 0.55F, 0.36F}, 0.4F, false, false, 2},
                                  {0.60F, 0.13F, 1.9F, {0.82F, 0.49F, 0.27F}, 0.16F, false, false, 2},
                                  {0.68F, 0.14F, 1.3F, {0.85F, 0.48F, 0.23F}, 0.03F, false, false, 2}},
                       .Floor = Ground::Sand,
                       .Near = {0.84F, 0.50F, 0.26F},
                       .Far = {0.90F, 0.58F, 0.34F}};

const Landscape kWinter{.SkyTop = {0.40F, 0.52F, 0.72F},
                        .SkyLow = {0.95F, 0.86F, 0.82F},
                        .SunX = 0.3F,
                        .SunY = 0.42F,
                        .Sun = {1.0F, 0.93F, 0.80F},
                        .Glow = 0.6F,
                        .Clouds = 0.3F,
                        .CloudLit = {1.0F, 0.93F, 0.90F},
                        .CloudShade = {0.66F, 0.68F, 0.78F},
                        .Horizon = 0.6F,
                        .Ridges = {{0.58F, 0.24F, 1.6F, {0.50F, 0.54F, 0.64F}, 0.4F, true},
                                   {0.60F, 0.08F, 2.0F, {0.20F, 0.25F, 0.30F}, 0.2F, false, true},
                                   {0.62F, 0.03F, 3.0F, {0.10F, 0.14F, 0.17F}, 0, false, true}},
                        .Floor = Ground::Snow,
                        .Near = {0.86F, 0.90F, 0.97F},
                        .Far = {0.96F, 0.93F, 0.93F}};

const Landscape kMoonBay{.SkyTop = {0.03F, 0.05F, 0.13F},
                         .SkyLow = {0.22F, 0.28F, 0.44F},
                         .SunX = 0.4F,
                         .SunY = 0.2F,
                         .Sun = {0.88F, 0.90F, 0.98F},
                         .Glow = 0.5F,
                         .Clouds = 0.5F,
                         .CloudLit = {0.42F, 0.47F, 0.60F},
                         .CloudShade = {0.09F, 0.11F, 0.19F},
                         .Horizon = 0.58F,
                         .Ridges = {{0.57F, 0.12F, 1.4F, {0.10F, 0.12F, 0.20F}, 0.3F},
                                    {0.59F, 0.06F, 2.2F, {0.03F, 0.04F, 0.06F}, 0, false, true}},
                         .Floor = Ground::Water,
                         .Near = {0.03F, 0.05F, 0.10F},
                         .Far = {0.1F, 0.1F, 0.2F}};

const Landscape kSpringHills{.SkyTop = {0.28F, 0.54F, 0.86F},
                             .SkyLow = {0.82F, 0.91F, 0.96F},
                             .SunX = 0.7F,
                             .SunY = -0.1F,
                             .Sun = {1.0F, 0.98F, 0.9F},
                             .Glow = 0.3F,
                             .Clouds = 0.6F,
                             .CloudLit = {1.0F, 1.0F, 1.0F},
                             .CloudShade = {0.70F, 0.75F, 0.82F},
                             .Horizon = 0.62F,
                             .Ridges = {{0.57F, 0.10F, 1.2F, {0.36F, 0.50F, 0.48F}, 0.5F},
                                        {0.61F, 0.10F, 1.5F, {0.32F, 0.50F, 0.24F}, 0.25F},
                                        {0.64F, 0.07F, 1.2F, {0.28F, 0.45F, 0.15F}, 0.05F, false, true}},
                             .Floor = Ground::Meadow,
                             .Near = {0.42F, 0.58F, 0.16F},
                             .Far = {0.48F, 0.62F, 0.26F}};

const Flower kDaisy{{0.30F, 0.46F, 0.20F}, {0.98F, 0.97F, 0.95F}, {0.98F, 0.76F, 0.14F}, 21};
const Flower kSunflower{{0.24F, 0.36F, 0.30F}, {1.0F, 0.78F, 0.10F}, {0.42F, 0.24F, 0.10F}, 26};
const Flower kAster{{0.36F, 0.34F, 0.22F}, {0.66F, 0.44F, 0.82F}, {0.96F, 0.72F, 0.20F}, 29};
const Forest kSummerForest{{0.94F, 0.97F, 0.70F}, {0.22F, 0.42F, 0.12F}, {0.34F, 0.27F, 0.19F}};
const Forest kAutumnForest{{1.0F, 0.88F, 0.58F}, {0.72F, 0.36F, 0.10F}, {0.28F, 0.22F, 0.18F}};

using Scene = std::variant<const Landscape*, const Flower*, const Forest*>;

struct Sample {
  const char* Path;  // below the folder
  Scene What;
  int Width;
  int Height;
  int Year;
  int Month;
  int Day;
  int Hour;
};

const std::vector<Sample> kSamples{
    {"August at the lake/A quiet evening.jpg", &kSunsetLake, 1920, 1280, 2026, 8, 9, 20},
    {"August at the lake/Still water.jpg", &kMorningLake, 1920, 1280, 2026, 8, 8, 8},
    {"August at the lake/Across the lake.jpg", &kMorningLake, 1600, 1200, 2026, 8, 8, 9},
    {"August at the lake/Last light.jpg", &kSunsetLake, 1200, 1600, 2026, 8, 9, 21},
    {"August at the lake/Moon over the bay.jpg", &kMoonBay, 1800, 1200, 2026, 8, 9, 23},
    {"August at the lake/Path through the wood.jpg", &kSummerForest, 1800, 1200, 2026, 8, 10, 11},
    {"August at the lake/Clearing.jpg", &kSummerForest, 1200, 1600, 2026, 8, 10, 12},
    {"Mountains/Above the valley.jpg", &kAlps, 1920, 1280, 2026, 9, 5, 10},
    {"Mountains/North face.jpg", &kAlps, 1600, 1200, 2026, 9, 5, 12},
    {"Mountains/The pass.jpg", &kAlps, 1200, 1600, 2026, 9, 6, 9},
    {"Mountains/Meadow in the evening.jpg", &kSpringHills, 1800, 1200, 2026, 9, 6, 18},
    {"Autumn/Golden wood.jpg", &kAutumnForest, 1800, 1200, 2026, 10, 17, 15},
    {"Autumn/Between the trunks.jpg", &kAutumnForest, 1200, 1600, 2026, 10, 17, 16},
    {"Autumn/Asters.jpg", &kAster, 1600, 1200, 2026, 10, 18, 11},
    {"Garden/Daisy.jpg", &kDaisy, 1600, 1200, 2026, 5, 23, 10},
    {"Garden/Sunflower.jpg", &kSunflower, 1200, 1600, 2026, 7, 19, 14},
    {"Garden/Sunflower, close.jpg", &kSunflower, 1600, 1200, 2026, 7, 19, 15},
    {"Garden/Hills behind the house.jpg", &kSpringHills, 1920, 1280, 2026, 5, 24, 12},
    {"By the sea/Low tide.jpg", &kBeach, 1920, 1280, 2026, 7, 4, 12},
    {"By the sea/Dunes.jpg", &kDunes, 1800, 1200, 2026, 7, 5, 18},
    {"By the sea/Beach in the morning.jpg", &kBeach, 1600, 1200, 2026, 7, 6, 9},
    {"By the sea/Over the dunes.jpg", &kDunes, 1200, 1600, 2026, 7, 6, 19},
    {"Winter walk/First snow.jpg", &kWinter, 1920, 1280, 2026, 1, 10, 15},
    {"Winter walk/Edge of the wood.jpg", &kWinter, 1200, 1600, 2026, 1, 10, 16},
};

struct Painter {
  const Sample& What;
  std::uint32_t Seed;

  Picture operator()(const Landscape* scene) const {
    return PaintLandscape(*scene, What.Width, What.Height, Seed, kGrain);
  }
  Picture operator()(const Flower* scene) const {
    return PaintFlower(*scene, What.Width, What.Height, Seed, kGrain);
  }
  Picture operator()(const Forest* scene) const {
    return PaintForest(*scene, What.Width, What.Height, Seed, kGrain);
  }
};

void MakeSample(const std::string& folder, std::size_t index) {
  const Sample& sample = kSamples[index];
  const std::filesystem::path path = std::filesystem::path(folder) / sample.Path;
  if (std::filesystem::exists(path)) return;
  PhotoSettings settings;
  settings.Quality = kQuality;
  settings.Taken.tm_year = sample.Year - 1900;
  settings.Taken.tm_mon = sample.Month - 1;
  settings.Taken.tm_mday = sample.Day;
  settings.Taken.tm_hour = sample.Hour;
  settings.Taken.tm_min = static_cast<int>(index * 7 % 60);
  const Picture picture =
      std::visit(Painter{sample, static_cast<std::uint32_t>(index * 31 + 7)}, sample.What);
  WritePhoto(path.string(), EncodePhoto(picture, settings), settings);
}

void MakeSamples(const std::string& folder) {
  for (const Sample& sample : kSamples) {
    std::filesystem::create_directories((std::filesystem::path(folder) / sample.Path).parent_path());
  }
  RunParallel(kSamples.size(), std::thread::hardware_concurrency(),
              [&](std::size_t index) { MakeSample(folder, index); });
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: demo_photos FOLDER\n");
    return 2;
  }
  try {
    MakeSamples(argv[1]);
  } catch (const std::exception& problem) {
    std::fprintf(stderr, "demo_photos: %s\n", problem.what());
    return 1;
  }
  return 0;
}
