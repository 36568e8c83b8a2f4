#include <gtest/gtest.h>

#include <algorithm>

#include "imaging/AutoFix.h"
#include "imaging/Image.h"

namespace {

using Pixel = std::array<std::uint8_t, 3>;  // blue, green, red

Pixel Grey(int value) {
  const auto byte = static_cast<std::uint8_t>(value);
  return {byte, byte, byte};
}

/// An image with rows from the bottom upwards. Whatever lies between its colours is 77.
class CPixelImage : public CJpegImage {
 public:
  CPixelImage(ImageSize size, int bytesPerPixel) {
    const std::ptrdiff_t rowBytes = std::ptrdiff_t{size.Width} * bytesPerPixel + 2;
    auto memory = platform::AllocateLargeMemory(static_cast<std::size_t>(rowBytes * size.Height));
    std::fill_n(memory.get(), rowBytes * size.Height, 77);
    std::uint8_t* top = memory.get() + rowBytes * (size.Height - 1);
    HoldPixels(std::move(memory), {top, -rowBytes, size, bytesPerPixel}, size);
  }
};

/// Corrects the pixels as an image of at most 40 columns.
std::vector<Pixel> Fix(std::vector<Pixel> pixels, int bytesPerPixel) {
  const int count = static_cast<int>(pixels.size());
  const int width = std::min(count, 40);
  CPixelImage image({width, count / width}, bytesPerPixel);
  const auto place = [rows = image.GetPixels(), width, bytesPerPixel](std::size_t i) {
    return rows.Row(static_cast<int>(i) / width) + static_cast<int>(i) % width * bytesPerPixel;
  };
  for (std::size_t i = 0; i < pixels.size(); ++i) std::ranges::copy(pixels[i], place(i));
  AutoFix(image);
  for (std::size_t i = 0; i < pixels.size(); ++i) std::copy_n(place(i), 3, pixels[i].begin());
  EXPECT_EQ(place(static_cast<std::size_t>(width - 1))[bytesPerPixel], 77) << "the padding";
  EXPECT_TRUE(bytesPerPixel == 3 || place(7)[3] == 77) << "the fourth byte";
  return pixels;
}

/// So many pixels of a colour, and what becomes of it.
struct Part {
  std::size_t Count;
  Pixel Before, After;
};

void ExpectFixed(const std::vector<Part>& parts, const char* what) {
  std::vector<Pixel> before, after;
  for (const Part& part : parts) {
    before.insert(before.end(), part.Count, part.Before);
    after.insert(after.end(), part.Count, part.After);
  }
  for (const int bytesPerPixel : {3, 4}) EXPECT_EQ(Fix(before, bytesPerPixel), after) << what;
}

}  // namespace

TEST(AutoFixTest, ColorsFollowTheBrightnessByTheirSaturation) {
  // A median of 50 gives 50 -> 105, 100 -> 153, 200 -> 223, and the stretch 0, 103, 255.
  ExpectFixed({{5000, Grey(50), Grey(0)},
               {4800, Grey(200), Grey(254)},  // 200 x (255 / 200) falls just short of 255
               {40, {100, 50, 0}, {103, 52, 1}},
               {30, {0, 100, 50}, {1, 103, 52}},
               {30, {50, 0, 100}, {52, 1, 103}},
               {100, Grey(100), Grey(103)}},
              "colours");
  ExpectFixed({{64, Grey(100), Grey(0)}, {16, Grey(100), Grey(0)}}, "one colour");
  ExpectFixed({{80, Grey(0), Grey(0)}}, "black");
  ExpectFixed({{40, Grey(0), Grey(0)}, {40, Grey(255), Grey(255)}}, "black and white");
  ExpectFixed({{24, Grey(255), Grey(255)}, {1, Grey(0), Grey(0)}}, "the first bin exceeds the budget");
  ExpectFixed({{24, Grey(0), Grey(0)}, {1, Grey(255), Grey(255)}}, "so does the last one");
  CJpegImage empty;
  AutoFix(empty);
  EXPECT_EQ(empty.GetPixels().Top, nullptr);
}

TEST(AutoFixTest, DarkPicturesAreLiftedByTheirMedian) {
  const struct {
    int Median, Lifted, Other, OtherLifted;
  } cases[] = {{128, 128, 200, 200}, {100, 127, 200, 213}, {50, 105, 100, 153}};
  for (const auto& c : cases)
    ExpectFixed({{400, Grey(0), Grey(0)},
                 {150, Grey(c.Median), Grey(c.Lifted)},
                 {10, Grey(c.Other), Grey(c.OtherLifted)},
                 {440, Grey(255), Grey(255)}},
                "median");
}

TEST(AutoFixTest, EndsAreClippedUntilThreeInAHundredOrAFrequentBrightness) {
  // Of 2000 pixels 60 are clipped at each end, in bins of at most 50: 5% of the largest. The bin that exceeds
  // this counts if at least half of it is within.
  ExpectFixed({{49, Grey(130), Grey(0)},
               {49, Grey(131), Grey(2)},
               {50, Grey(140), Grey(22)},
               {754, Grey(170), Grey(91)},
               {1000, Grey(200), Grey(160)},
               {49, Grey(240), Grey(252)},
               {49, Grey(250), Grey(255)}},
              "from 130 to 241");
  ExpectFixed({{49, Grey(130), Grey(0)},
               {20, Grey(131), Grey(0)},
               {50, Grey(140), Grey(21)},
               {812, Grey(170), Grey(91)},
               {1000, Grey(200), Grey(161)},
               {20, Grey(240), Grey(255)},
               {49, Grey(250), Grey(255)}},
              "from 131 to 240");
  ExpectFixed({{40, Grey(130), Grey(0)},
               {20, Grey(131), Grey(0)},
               {50, Grey(140), Grey(19)},
               {839, Grey(170), Grey(83)},
               {1000, Grey(200), Grey(147)},
               {51, Grey(250), Grey(255)}},
              "from 131, where 60 are reached, to the frequent 250");
}
