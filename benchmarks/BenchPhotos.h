#pragma once

#include <string>

/// A folder of photos to measure with.
struct BenchPhotos {
  std::string Folder;
  int Count = 0;
  double BitsPerPixel = 0;  // mean over the files, EXIF left out
};

/// Makes `count` photos of that size, all different, or takes those that an earlier run has made. Each has
/// 20 KB of EXIF with a date. They cost 2 to 4 bits a pixel, as a camera's do; anything else raises
/// std::runtime_error. Reads every file once, so that all are in the page cache.
BenchPhotos MakeBenchPhotos(int count, int width, int height, bool progressive = false);
