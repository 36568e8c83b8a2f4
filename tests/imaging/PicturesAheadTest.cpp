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

/// Writes a photo and waits until its times tell it from one that is written next.
std::string WriteSettled(const CScratchFolder& scratch, const std::string& name, const std::string& bytes) {
  const std::string path = scratch.Write(name, bytes);
  platform::FileStatus status;
  EXPECT_FALSE(platform::GetStatus(path, status));
  WaitUntil([&] {
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    return now - std::chrono::nanoseconds(status.ChangeTime) > std::chrono::milliseconds(20);
  });
  return path;
}

}  // namespace

TEST(PicturesAheadTest, GivesEachPictureOnceAndNoneOfAFileThatChanged) {
  const CScratchFolder scratch;
  const std::string jpeg = MakeJpeg(400, 300, 9, 99, 199);
  const std::string noPicture = WriteSettled(scratch, "c.jpg", "no picture");
  const std::string a = WriteSettled(scratch, "a.jpg", jpeg), b = WriteSettled(scratch, "b.jpg", jpeg);
  CPicturesAhead ahead;
  ahead.Prepare({noPicture, scratch.File("none.jpg"), a, b, scratch.Write("d.tif", jpeg)}, {100, 100});
  WaitUntil([&] { return ahead.Has(a) && ahead.Has(b); });
  for (const std::string& path : {noPicture, scratch.File("none.jpg"), scratch.File("d.tif")}) {
    EXPECT_EQ(ahead.Take(path), nullptr) << path;
  }
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
  const std::string large = WriteSettled(scratch, "large.jpg", MakeJpeg(300, 200, 9, 99, 199));
  const std::string tiny = WriteSettled(scratch, "tiny.jpg", MakeJpeg(8, 8, 9, 99, 199));
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
