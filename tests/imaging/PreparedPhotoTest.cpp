#include <gtest/gtest.h>
#include <sys/stat.h>

#include <atomic>
#include <thread>

#include "imaging/Image.h"
#include "imaging/PictureMemory.h"
#include "imaging/PreparedPhoto.h"
#include "support/ScratchFolder.h"
#include "support/TestJpeg.h"

namespace {

ImageSize SizeOf(const PreparedPhoto& photo) {
  CJpegImage image;
  image.LoadMemory(photo.Thumbnail, 0, 0);
  return image.GetCurrentSize();
}

}  // namespace

TEST(PreparedPhotoTest, GivesDateAndThumbnailFromOneReadInEveryThread) {
  const CScratchFolder scratch;
  const std::string path = scratch.Write("a.JPG", MakeJpeg(800, 600, 9, 99, 199, "2005:01:02 03:04:05"));
  const PreparedPhoto photo = PreparePhoto(path);
  EXPECT_TRUE(photo.WasRead);
  std::tm local{};
  EXPECT_NE(::strptime("2005:01:02 03:04:05", "%Y:%m:%d %H:%M:%S", &local), nullptr);
  EXPECT_EQ(photo.CameraDate, std::mktime(&local));
  EXPECT_EQ(SizeOf(photo), (ImageSize{140, 105}));

  std::atomic<int> wrong = 0;
  std::vector<std::jthread> threads;
  for (int k = 0; k < 4; ++k)
    threads.emplace_back([&] { wrong += PreparePhoto(path).Thumbnail != photo.Thumbnail; });
  threads.clear();
  EXPECT_EQ(wrong, 0);
}

TEST(PreparedPhotoTest, WhatIsNoPhotoGivesNothingAndDoesNotHang) {
  const CScratchFolder scratch;
  ASSERT_EQ(::mkfifo(scratch.File("fifo.jpg").c_str(), 0600), 0);
  ASSERT_EQ(::mkdir(scratch.File("folder.jpg").c_str(), 0700), 0);
  for (const char* path : {"fifo.jpg", "folder.jpg", "gone.jpg"}) {
    EXPECT_FALSE(PreparePhoto(scratch.File(path)).WasRead) << path;
  }
  const PreparedPhoto garbage = PreparePhoto(scratch.Write("garbage.jpg", std::string(5000, 'g')));
  EXPECT_TRUE(garbage.WasRead && garbage.Thumbnail.empty());
  std::filesystem::resize_file(scratch.Write("huge.jpg", ""), std::uintmax_t{1} << 40);
  EXPECT_TRUE(PreparePhoto(scratch.File("huge.jpg")).WasRead) << "it isn't tried again";
  const std::string photo = MakeJpeg(300, 200, 1, 2, 3, "2005:01:02 03:04:05");
  EXPECT_NE(PreparePhoto(scratch.Write("cut.jpg", photo.substr(0, 120))).CameraDate, 0)
      << "the date needs no picture";
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
