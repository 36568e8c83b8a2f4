#include <gtest/gtest.h>
#include <sys/stat.h>

#include <thread>

#include "imaging/JpegImage.h"
#include "imaging/PictureMemory.h"
#include "imaging/PreparedPhoto.h"
#include "support/ScratchFolder.h"
#include "support/TestJpeg.h"

namespace {

/// A JPEG with a date behind its start: "2005:01:02 03:04:05".
std::string MakePhoto(int width, int height) {
  const auto bytes =
      MakeJpeg({.Width = width, .Height = height, .Quality = 75, .DateTime = "2005:01:02 03:04:05"});
  return {bytes.begin(), bytes.end()};
}

ImageSize SizeOf(const PreparedPhoto& photo) {
  CJpegImage image;
  image.LoadMemory(photo.Thumbnail, 0, 0);
  return image.GetCurrentSize();
}

}  // namespace

TEST(PreparedPhotoTest, GivesDateAndThumbnailFromOneRead) {
  const CScratchFolder scratch;
  const PreparedPhoto photo = PreparePhoto(scratch.Write("a.JPG", MakePhoto(800, 600)));
  std::tm local{};
  local.tm_year = 105;
  local.tm_mday = 2;
  local.tm_hour = 3;
  local.tm_min = 4;
  local.tm_sec = 5;
  EXPECT_EQ(std::mktime(&local), photo.CameraDate);
  EXPECT_EQ((ImageSize{140, 105}), SizeOf(photo));
  EXPECT_EQ((ImageSize{78, 105}), SizeOf(PreparePhoto(scratch.Write("b.jpg", MakePhoto(600, 800)))));
  EXPECT_EQ((ImageSize{100, 50}), SizeOf(PreparePhoto(scratch.Write("c.jpg", MakePhoto(100, 50)))));
}

TEST(PreparedPhotoTest, WhatIsNoPhotoGivesNothingAndDoesNotHang) {
  const CScratchFolder scratch;
  ASSERT_EQ(0, ::mkfifo(scratch.File("fifo.jpg").c_str(), 0600));
  ASSERT_EQ(0, ::mkdir(scratch.File("folder.jpg").c_str(), 0700));
  scratch.Write("garbage.jpg", std::string(5000, 'g'));
  scratch.Write("empty.jpg", "");
  for (const char* name : {"fifo.jpg", "folder.jpg", "garbage.jpg", "empty.jpg", "gone.jpg"})
    EXPECT_TRUE(PreparePhoto(scratch.File(name)).Thumbnail.empty()) << name;
  EXPECT_TRUE(PreparePhoto("/dev/zero").Thumbnail.empty());
  // The date doesn't hang on the picture.
  EXPECT_NE(0, PreparePhoto(scratch.Write("cut.jpg", MakePhoto(300, 200).substr(0, 120))).CameraDate);
}

TEST(PreparedPhotoTest, ManyThreadsPrepareTheSame) {
  const CScratchFolder scratch;
  const std::string path = scratch.Write("a.jpg", MakePhoto(800, 600));
  const PreparedPhoto expected = PreparePhoto(path);
  std::vector<int> wrong(4);
  std::vector<std::thread> threads;
  for (int& count : wrong)
    threads.emplace_back([&] {
      for (int k = 0; k < 20; ++k)
        if (PreparePhoto(path).Thumbnail != expected.Thumbnail) ++count;
    });
  for (auto& thread : threads) thread.join();
  EXPECT_EQ(std::vector<int>(4), wrong);
}

TEST(PictureMemoryTest, SharesWaitForEachOtherAndNoneIsLargerThanAll) {
  CMemoryPool pool(100);
  EXPECT_THROW(CMemoryShare(pool, 101), CTooLargeException);
  std::atomic<int> used = 0;
  std::atomic<bool> tooMuch = false;
  std::vector<std::jthread> threads;
  for (const int bytes : {10, 40, 70, 100})
    threads.emplace_back([&, bytes] {
      for (int k = 0; k < 200; ++k) {
        const CMemoryShare share(pool, static_cast<std::uint64_t>(bytes));
        if ((used += bytes) > 100) tooMuch = true;
        used -= bytes;
      }
    });
  threads.clear();
  EXPECT_FALSE(tooMuch);
}
