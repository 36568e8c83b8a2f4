#include "Scenery.h"

#include <cmath>

#include "Canvas.h"

namespace {

// What a landscape shows in one direction; u and v in heights of the picture.
class LandscapePainter {
 public:
  LandscapePainter(const Landscape& scene, float aspect, std::uint32_t seed)
      : Scene(scene), Aspect(aspect), Seed(seed) {}

  Color At(float u, float v) const { return v < Scene.Horizon ? Above(u, v) : Below(u, v); }

 private:
  // Sky and ridges. Ridges may reach below the horizon on land; water cuts them off there.
  Color Above(float u, float v) const {
    Color color = Sky(u, v);
    std::uint32_t seed = Seed + 1000;
    for (const Ridge& ridge : Scene.Ridges) {
      seed += 77;
      const float below = v - Crest(ridge, u, seed);
      if (below > 0) color = Slope(ridge, u, v, below, seed);
    }
    return color;
  }

  Color Sky(float u, float v) const {
    const float low = std::clamp(v / Scene.Horizon, 0.0F, 1.0F);
    Color color = Mix(Scene.SkyTop, Scene.SkyLow, std::pow(low, 1.3F));
    const float distance = std::hypot(u - Scene.SunX * Aspect, v - Scene.SunY);
    color = color + Scene.Sun * (Scene.Glow * 0.55F * std::exp(-distance * 4.5F));
    color = Mix(color, Scene.Sun * 1.15F, SmoothStep(0.034F, 0.028F, distance));

    // Clouds lie on a plane above, so they crowd towards the horizon.
    const float height = Scene.Horizon - v + 0.14F;
    const float x = (u - 0.5F * Aspect) / height;
    const float y = 1.3F / height;
    const float density = Fractal(x * 1.1F, y * 1.6F, 6, Seed);
    const float threshold = 0.78F - 0.45F * Scene.Clouds;
    const float cover = SmoothStep(threshold, threshold + 0.2F, density);
    if (cover <= 0) return color;
    const float towardsSun =
        Fractal((x + (Scene.SunX * Aspect - u) * 0.35F) * 1.1F, (y + 0.2F) * 1.6F, 5, Seed);
    const float lit =
        std::clamp(0.55F + (density - towardsSun) * 3 + 0.4F * std::exp(-distance * 3), 0.0F, 1.0F);
    const float fading = SmoothStep(0, 0.1F, Scene.Horizon - v);
    return Mix(color, Mix(Scene.CloudShade, Scene.CloudLit, lit), cover * (0.35F + 0.6F * fading));
  }

  // The height at which a ridge ends against the sky.
  static float Crest(const Ridge& ridge, float u, std::uint32_t seed) {
    const float peaks = Folded(u * ridge.Peaks * 0.5F, ridge.Detail, seed);
    const float swell = Fractal(u * ridge.Peaks * 0.5F, 7.5F, 2, seed + 5);
    float crest = ridge.Base - ridge.Height * (0.3F + 1.1F * peaks) * (0.35F + 0.8F * swell);
    if (ridge.Trees) crest -= TreeTops(u, seed);
    return crest;
  }

  // Two rows of pointed trees of different heights.
  static float TreeTops(float u, std::uint32_t seed) {
    float highest = 0;
    for (int row = 0; row < 2; ++row) {
      const float place = u * (row == 0 ? 55.0F : 83.0F);
      const int cell = Floor(place);
      const float tall = 0.25F + 0.75F * CellNoise(cell, row, seed + 31);
      const float across = std::abs(place - static_cast<float>(cell) - 0.5F) * 2;
      const float ragged = 0.2F * SmoothNoise(u * 900, static_cast<float>(row), seed);
      highest = std::max(highest, 0.04F * tall * (1 - across - ragged));
    }
    return highest;
  }

  Color Slope(const Ridge& ridge, float u, float v, float below, std::uint32_t seed) const {
    const float side = Scene.SunX * Aspect > u ? 0.012F : -0.012F;
    const float here = Fractal(u * 9, v * 11, 6, seed + 9);
    const float lit =
        std::clamp(0.5F + (here - Fractal((u + side) * 9, (v - 0.012F) * 11, 5, seed + 9)) * 4, 0.0F, 1.0F);
    Color color = ridge.Tint * (0.55F + 0.5F * lit + 0.35F * (here - 0.5F));
    if (ridge.Snow) {
      // Snow lies high up and on the gentle sides; bare rock shows in streaks down the steep ones.
      const float altitude = 1 - below / ridge.Height;
      const float streaks = Fractal(u * 34 + v * 12, v * 9, 4, seed + 13);
      const float share = SmoothStep(0.52F, 0.66F, 0.5F * altitude + 0.34F * lit + 0.62F * (streaks - 0.2F));
      color = Mix(color * 0.8F, Color{0.93F, 0.95F, 1.0F} * (0.58F + 0.45F * lit), share);
    }
    if (ridge.Trees) color = color * (0.7F + 0.6F * SmoothNoise(u * 160, v * 60, seed));
    return Mix(color, Scene.SkyLow, ridge.Haze * (0.8F + 0.2F * std::clamp(below * 4, 0.0F, 1.0F)));
  }

  Color Below(float u, float v) const {
    const float depth = v - Scene.Horizon;
    const float distance = 0.12F / (depth + 0.015F);
    const float across = (u - 0.5F * Aspect) * distance * 6;
    const float nearness = std::clamp(depth / (1 - Scene.Horizon), 0.0F, 1.0F);
    switch (Scene.Floor) {
      case Ground::Water:
        return Water(u, v, across, distance);
      case Ground::Meadow:
        return Meadow(u, v, across, distance, nearness);
      case Ground::Sand:
        return Sand(across, distance, nearness);
      case Ground::Beach:
        return Beach(u, depth, across, distance, nearness);
      case Ground::Snow:
        break;
    }
    const float drift = Fractal(across * 0.6F, distance * 5, 6, Seed + 3);
    const float lit = drift - Fractal((across + 0.15F) * 0.6F, distance * 5 + 0.1F, 5, Seed + 3);
    return Mix(Scene.Far, Scene.Near, nearness) * std::clamp(0.93F + lit * 1.2F, 0.6F, 1.1F);
  }

  Color Water(float u, float v, float across, float distance) const {
    const float ripple = Fractal(across * 2.2F, distance * 26, 4, Seed + 3) - 0.5F;
    const float depth = v - Scene.Horizon;
    const float mirrored = Scene.Horizon - depth * 0.9F + ripple * (0.02F + 0.16F * depth);
    const Color image = Above(u + ripple * 0.02F, std::min(mirrored, Scene.Horizon - 0.001F));
    const float nearness = std::clamp(depth / (1 - Scene.Horizon), 0.0F, 1.0F);
    Color color = Mix(image * 0.86F, Scene.Near, 0.12F + 0.45F * nearness * nearness);
    color = color * (1 + ripple * 0.5F);

    // The sun's path over the waves.
    const float beside = std::abs(u - Scene.SunX * Aspect + ripple * 0.1F);
    const float path = std::exp(-beside * (10 - 5 * nearness)) * SmoothStep(0.02F, 0.25F, ripple + 0.08F);
    return color + Scene.Sun * (path * 0.75F * Scene.Glow);
  }

  Color Meadow(float u, float v, float across, float distance, float nearness) const {
    const float patches = Fractal(across * 0.8F, distance * 7, 5, Seed + 3);
    const float blades = SmoothNoise(u * 320, v * 45 + 0.3F * std::sin(u * 40), Seed + 4);
    Color color = Mix(Scene.Far, Scene.Near, SmoothStep(0, 0.8F, nearness + 0.25F * (patches - 0.5F)));
    color = color * (0.62F + 0.5F * patches + 0.35F * (blades - 0.5F) * (0.4F + nearness));
    const float flower = CellNoise(Floor(across * 22), Floor(distance * 260), Seed + 6);
    if (flower > 0.985F && patches > 0.48F) color = Mix(color, {0.98F, 0.86F, 0.3F}, 0.55F);
    return color;
  }

  Color Sand(float across, float distance, float nearness) const {
    const float swell = Fractal(across * 0.35F, distance * 2.5F, 4, Seed + 3);
    const float ripples = std::sin(distance * 130 + swell * 34 + across * 1.5F);
    const float grains = Fractal(across * 14, distance * 160, 3, Seed + 8) - 0.5F;
    const float shade = 0.8F + 0.42F * (swell - 0.4F) + 0.05F * ripples * nearness + 0.16F * grains;
    return Mix(Scene.Far, Scene.Near, nearness) * shade;
  }

  // Sea up to a shoreline that runs slantwise, foam along it, then wet and dry sand.
  Color Beach(float u, float depth, float across, float distance, float nearness) const {
    const float shore = 0.1F + 0.16F * u / Aspect + 0.03F * (Fractal(u * 3, 0.5F, 4, Seed + 21) - 0.5F);
    const float seawards = shore - depth;
    const float waves = Fractal(across * 0.7F, distance * 22, 5, Seed + 22);
    if (seawards < 0) {
      const float wet = SmoothStep(-0.06F, 0, seawards);
      return Mix(Sand(across, distance, nearness), Mix(Scene.Sea, Scene.Near, 0.5F) * 0.75F, 0.6F * wet);
    }
    const Color deep = Scene.Sea * (0.72F + 0.5F * waves);
    const Color shallow = Mix(Scene.Sea * 1.25F, Scene.Near, 0.3F);
    const Color sea = Mix(deep, shallow, SmoothStep(0.1F, 0, seawards));
    const float surf = Fractal(u * 26, seawards * 160, 4, Seed + 23);
    const float foam = SmoothStep(0.5F, 0.62F, surf) * SmoothStep(0.055F, 0.01F, seawards) +
                       SmoothStep(0.72F, 0.78F, waves) * 0.5F;
    return Mix(sea, {0.96F, 0.98F, 0.99F},
               std::clamp(foam + SmoothStep(0.008F, 0.002F, seawards), 0.0F, 1.0F));
  }

  const Landscape& Scene;
  const float Aspect;
  const std::uint32_t Seed;
};

float AspectOf(int width, int height) { return static_cast<float>(width) / static_cast<float>(height); }

}  // namespace

Picture PaintLandscape(const Landscape& scene, int width, int height, std::uint32_t seed, float grain) {
  const LandscapePainter painter(scene, AspectOf(width, height), seed);
  return FillCanvas(width, height, seed, grain, [&](float u, float v) { return painter.At(u, v); });
}

Picture PaintFlower(const Flower& scene, int width, int height, std::uint32_t seed, float grain) {
  const float aspect = AspectOf(width, height);
  const float size = std::min(aspect, 1.0F);
  const float middleX = 0.48F * aspect;
  return FillCanvas(width, height, seed, grain, [&](float u, float v) {
    // Far out of focus: broad patches of light and leaf.
    const float blur =
        SmoothNoise(u * 2.6F, v * 2.6F, seed) * 0.7F + SmoothNoise(u * 6, v * 6, seed + 1) * 0.3F;
    Color color = scene.Backdrop * (0.35F + 1.0F * blur * blur + 0.3F * (1 - v));
    const float x = (u - middleX) / size;
    const float y = (v - 0.46F) / size * 1.12F;
    const float radius = std::hypot(x, y);
    const float angle = std::atan2(y, x);
    const float stalk = std::abs(u - middleX - 0.05F * std::sin(v * 3)) / size;
    if (v > 0.46F) color = Mix(color, scene.Backdrop * 0.8F, SmoothStep(0.022F, 0.012F, stalk));

    // Two rings of petals, the lower one turned by half a petal and darker.
    for (int ring = 0; ring < 2; ++ring) {
      const float turned = angle * static_cast<float>(scene.Petals) / 2 + (ring == 0 ? 1.57F : 0.0F);
      const float petal = std::abs(std::cos(turned + 0.25F * std::sin(radius * 9)));
      const float reach = (ring == 0 ? 0.43F : 0.38F) * std::pow(petal, 0.28F);
      const float veins = Fractal(angle * 40, radius * 5, 4, seed + 7);
      const float shade = (ring == 0 ? 0.66F : 0.86F) + 0.22F * petal -
                          0.22F * SmoothStep(0.25F, 0.08F, radius) + 0.22F * (veins - 0.5F);
      const float edge = SmoothStep(reach, reach - 0.006F, radius);
      color = Mix(color, scene.Petal * shade, edge);
    }
    const float seeds = Fractal(x * 60, y * 60, 3, seed + 9);
    const float heart = SmoothStep(0.118F, 0.108F, radius + 0.012F * seeds);
    const float dome = 0.55F + 0.5F * seeds - 2.5F * (x * 0.4F + y * 0.4F);
    return Mix(color, scene.Heart * dome, heart);
  });
}

Picture PaintForest(const Forest& scene, int width, int height, std::uint32_t seed, float grain) {
  constexpr int kRows = 5;  // of trunks, from the far to the near
  return FillCanvas(width, height, seed, grain, [&](float u, float v) {
    const float leaves = Fractal(u * 5, v * 5, 6, seed);
    const float gap = SmoothStep(0.45F, 0.7F, leaves);
    Color color = Mix(scene.Leaves * (0.5F + leaves * 0.8F), scene.Light, gap * SmoothStep(1.0F, 0.2F, v));
    const float floorLine = 0.72F + 0.05F * Fractal(u * 3, 1, 4, seed + 2);
    if (v > floorLine) {
      const float litter = Fractal(u * 20, v * 60, 5, seed + 3);
      const float patch = Fractal(u * 2.5F, v * 9, 3, seed + 4);
      color = Mix(scene.Leaves, scene.Trunk, 0.35F) *
              (0.35F + litter * 0.8F + 0.6F * SmoothStep(0.5F, 0.7F, patch));
    }
    for (int row = 0; row < kRows; ++row) {
      const float nearness = static_cast<float>(row + 1) / kRows;
      const float spacing = 0.07F + 0.16F * nearness;
      const float place = u / spacing + static_cast<float>(row) * 0.37F;
      const int cell = Floor(place);
      const float foot = 0.73F + 0.17F * nearness * nearness;
      const float thick =
          (0.1F + 0.14F * CellNoise(cell, row, seed + 5)) * (1 + 0.25F * SmoothStep(foot - 0.1F, foot, v));
      const float middle =
          0.5F + 0.45F * (CellNoise(cell, row, seed + 6) - 0.5F) + 0.03F * std::sin(v * 5 + place);
      const float across = (place - static_cast<float>(cell) - middle) / thick;
      if (v > foot || std::abs(across) > 1 || CellNoise(cell, row, seed + 8) < 0.25F) continue;
      const float bark = Fractal(u * 90, v * 14, 4, seed + 9);
      const Color trunk = scene.Trunk * (0.35F + 0.55F * bark + 0.4F * std::max(0.0F, -across));
      color = Mix(color, Mix(scene.Light * 0.75F, trunk, 0.25F + 0.75F * nearness),
                  SmoothStep(1, 0.85F, std::abs(across)));
    }
    // Light falls in from the upper left.
    const float beam = SmoothNoise((u - v * 0.55F) * 7, 0.5F, seed + 11);
    return color + scene.Light * (0.22F * SmoothStep(0.55F, 0.9F, beam) * (1 - v));
  });
}
