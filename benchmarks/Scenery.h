#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "Noise.h"
#include "Picture.h"

/// Painters of outdoor pictures that are near enough to photographs to show a photo program with and to
/// measure it on: soft gradients, detail at every scale, and the grain of a sensor.

/// A line of hills or mountains; lines are listed from the far to the near.
struct Ridge {
  float Base = 0.5F;    // where its valleys lie, share of the picture's height from the top
  float Height = 0.1F;  // of its highest peaks above that
  float Peaks = 2;      // about how many stand side by side in a square picture
  Color Tint;
  float Haze = 0;  // 0 clear, 1 lost in the sky's colour
  bool Snow = false;
  bool Trees = false;
  int Detail = 6;  // of the outline: 2 for a dune, 6 for rock
};

enum class Ground { Water, Meadow, Sand, Beach, Snow };

struct Landscape {
  Color SkyTop;
  Color SkyLow;
  float SunX = 0.5F;  // shares of width and height
  float SunY = 0.3F;
  Color Sun;
  float Glow = 0.5F;    // how far the sun lights the sky around it, 0 to 1
  float Clouds = 0.5F;  // 0 clear, 1 overcast
  Color CloudLit;
  Color CloudShade;
  float Horizon = 0.6F;
  std::vector<Ridge> Ridges;
  Ground Floor = Ground::Water;
  Color Near;   // the ground at the viewer's feet
  Color Far;    // and at the horizon
  Color Sea{};  // with Ground::Beach
};

struct Flower {
  Color Backdrop;
  Color Petal;
  Color Heart;
  int Petals = 13;
};

struct Forest {
  Color Light;
  Color Leaves;
  Color Trunk;
};

/// Each painter gives the same picture for the same size and seed. `grain` is the strength of the sensor's
/// noise in steps of 256; it decides, with the quality, how many bits a pixel takes in a file.
Picture PaintLandscape(const Landscape& scene, int width, int height, std::uint32_t seed, float grain);
Picture PaintFlower(const Flower& scene, int width, int height, std::uint32_t seed, float grain);
Picture PaintForest(const Forest& scene, int width, int height, std::uint32_t seed, float grain);
