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

/// So many rows of a colour, and what becomes of it.
struct Part {
  Part(int count, Pixel before, Pixel after) : Count(count), Before(before), After(after) {}
  Part(int count, int before, int after) : Part(count, Grey(before), Grey(after)) {}
  int Count;
  Pixel Before, After;
};

/// An image of three columns, rows from the bottom upwards. Whatever isn't a colour is 77.
class CRowsImage : public CJpegImage {
 public:
  CRowsImage(int height, int bytesPerPixel) {
    const std::ptrdiff_t rowBytes = std::ptrdiff_t{3} * bytesPerPixel + 2;
    auto memory = platform::AllocateLargeMemory(static_cast<std::size_t>(rowBytes * height));
    std::fill_n(memory.get(), rowBytes * height, 77);
    std::uint8_t* top = memory.get() + rowBytes * (height - 1);
    HoldPixels(std::move(memory), {top, -rowBytes, {3, height}, bytesPerPixel}, {3, height});
  }
};

void ExpectFixed(const std::vector<Part>& parts, const char* what) {
  std::vector<Part> rows;
  for (const Part& part : parts) rows.insert(rows.end(), static_cast<std::size_t>(part.Count), part);
  for (const int bytesPerPixel : {3, 4}) {
    const int height = static_cast<int>(rows.size());
    CRowsImage image(height, bytesPerPixel);
    const auto place = [&](int i) { return image.GetPixels().Row(i / 3) + i % 3 * bytesPerPixel; };
    for (int i = 0; i < 3 * height; ++i) {
      std::ranges::copy(rows[static_cast<std::size_t>(i / 3)].Before, place(i));
    }
    AutoFix(image);
    for (int i = 0; i < 3 * height; ++i) {
      ASSERT_TRUE(std::ranges::equal(rows[static_cast<std::size_t>(i / 3)].After, std::span(place(i), 3)))
          << what;
    }
    EXPECT_EQ(place(3 * height - 1)[3], 77) << "the fourth byte, or the padding";
  }
}

}  // namespace

TEST(AutoFixTest, ColorsFollowTheBrightnessByTheirSaturation) {
  // A median of 50 gives 50 -> 105, 100 -> 153, 200 -> 223, and the stretch 0, 103, 255.
  ExpectFixed({{5000, 50, 0},
               {4800, 200, 254},  // 200 x (255 / 200) falls just short of 255
               {40, {100, 50, 0}, {103, 52, 1}},
               {30, {0, 100, 50}, {1, 103, 52}},
               {30, {50, 0, 100}, {52, 1, 103}},
               {100, 100, 103}},
              "colours");
  ExpectFixed({{80, 100, 0}}, "one colour");
  ExpectFixed({{80, 0, 0}}, "black");
  ExpectFixed({{40, 0, 0}, {40, 255, 255}}, "black and white");
  ExpectFixed({{21, 255, 255}, {1, 0, 0}}, "the first bin exceeds the budget");
  ExpectFixed({{21, 0, 0}, {1, 255, 255}}, "so does the last one");
  CJpegImage empty;
  AutoFix(empty);
  EXPECT_EQ(empty.GetPixels().Top, nullptr);
}

TEST(AutoFixTest, DarkPicturesAreLiftedByTheirMedian) {
  ExpectFixed({{400, 0, 0}, {150, 128, 128}, {10, 200, 200}, {440, 255, 255}}, "not lifted");
  ExpectFixed({{400, 0, 0}, {150, 100, 127}, {10, 200, 213}, {440, 255, 255}}, "a gamma of 0.74");
  ExpectFixed({{400, 0, 0}, {150, 50, 105}, {10, 100, 153}, {440, 255, 255}}, "one of 0.43, softened");
}

TEST(AutoFixTest, EndsAreClippedUntilThreeInAHundredOrAFrequentBrightness) {
  // Of 2000 rows 60 are clipped at each end, in bins of at most 50: 5% of the largest. The bin that exceeds
  // this counts if at least half of it is within.
  ExpectFixed({{49, 130, 0}, {49, 131, 2}, {804, 170, 91}, {1000, 200, 160}, {49, 240, 252}, {49, 250, 255}},
              "from 130 to 241");
  ExpectFixed({{49, 130, 0}, {20, 131, 0}, {862, 170, 91}, {1000, 200, 161}, {20, 240, 255}, {49, 250, 255}},
              "from 131 to 240");
  ExpectFixed({{40, 130, 0}, {20, 131, 0}, {50, 140, 19}, {839, 170, 83}, {1000, 200, 147}, {51, 250, 255}},
              "from 131, where 60 are reached, to the frequent 250");
}
