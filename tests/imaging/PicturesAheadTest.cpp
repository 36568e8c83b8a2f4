#include <gtest/gtest.h>

#include <chrono>
#include <fstream>

#include "imaging/PicturesAhead.h"
#include "support/ScratchFolder.h"
#include "support/TestJpeg.h"

namespace {

void WaitUntil(const std::function<bool()>& condition) {
  for (int k = 0; k < 5000 && !condition(); ++k) std::this_thread::sleep_for(std::chrono::milliseconds(2));
  EXPECT_TRUE(condition());
}

/// Waits until the times of what is written from now on differ from those of what was written.
void Settle() {
  const auto begin = std::chrono::steady_clock::now();
  WaitUntil([begin] { return std::chrono::steady_clock::now() - begin > std::chrono::milliseconds(25); });
}

}  // namespace

TEST(PicturesAheadTest, GivesEachPictureOnceAndNoneOfAFileThatChanged) {
  const CScratchFolder scratch;
  const std::string jpeg = MakeJpeg(400, 300, 9, 99, 199);
  const std::string a = scratch.Write("a.jpg", jpeg), b = scratch.Write("b.jpg", jpeg);
  const std::string noPicture = scratch.Write("c.jpg", "no picture"), none = scratch.File("none.jpg");
  const std::string tiff = scratch.Write("d.tif", jpeg);
  Settle();
  CPicturesAhead ahead;
  ahead.Prepare({noPicture, none, a, b, tiff}, {100, 100});
  WaitUntil([&] { return ahead.Has(a) && ahead.Has(b); });
  for (const std::string& path : {noPicture, none, tiff}) EXPECT_EQ(ahead.Take(path), nullptr) << path;
  const auto picture = ahead.Take(a);
  ASSERT_NE(picture, nullptr);
  EXPECT_EQ(picture->GetCurrentSize(), (ImageSize{100, 75}));
  EXPECT_EQ(ahead.Take(a), nullptr);

  ahead.Prepare({a, b}, {90, 100});
  EXPECT_TRUE(ahead.Has(b)) << "it is large enough";
  ahead.Prepare({a, b}, {200, 100});
  WaitUntil([&] { return ahead.Has(b); });
  EXPECT_EQ(ahead.Take(b)->GetCurrentSize(), (ImageSize{200, 150}));

  WaitUntil([&] { return ahead.Has(a); });
  std::fstream(a) << jpeg;  // the same bytes in the same file
  EXPECT_EQ(ahead.Take(a), nullptr);
  ahead.Prepare({b}, {200, 100});
  ahead.GiveUp();
  EXPECT_EQ(ahead.Take(b), nullptr);
}

TEST(PicturesAheadTest, WhatHasNoRoomIsLeftOut) {
  const CScratchFolder scratch;
  const std::string large = scratch.Write("large.jpg", MakeJpeg(300, 200, 9, 99, 199));
  const std::string tiny = scratch.Write("tiny.jpg", MakeJpeg(8, 8, 9, 99, 199));
  Settle();
  auto room = GetAheadMemory().TakeIfFree(1024);
  std::vector<std::unique_ptr<CMemoryShare>> taken;
  for (std::uint64_t bytes = std::uint64_t{1} << 40; bytes > 0; bytes /= 2) {
    while (auto share = GetAheadMemory().TakeIfFree(bytes)) taken.push_back(std::move(share));
  }
  room.reset();
  CPicturesAhead ahead;
  ahead.Prepare({large, tiny}, {});
  WaitUntil([&] { return ahead.Has(tiny); });
  EXPECT_EQ(ahead.Take(large), nullptr);
}
