#include <gtest/gtest.h>
#include <sys/stat.h>

#include <atomic>
#include <thread>

#include "imaging/PictureMemory.h"
#include "imaging/PreparedPhoto.h"
#include "support/ScratchFolder.h"
#include "support/TestJpeg.h"

TEST(PreparedPhotoTest, GivesDateAndThumbnailOfWhatIsAPhoto) {
  const CScratchFolder scratch;
  const std::string jpeg = MakeJpeg(800, 600, 9, 99, 199, "2005:01:02 03:04:05");
  const PreparedPhoto photo = PreparePhoto(scratch.Write("a.JPG", jpeg));
  EXPECT_TRUE(photo.WasRead && photo.CameraDate != 0 && !photo.Thumbnail.empty());
  ASSERT_EQ(::mkfifo(scratch.File("fifo.jpg").c_str(), 0600), 0);
  for (const char* path : {"fifo.jpg", "gone.jpg"}) {
    EXPECT_FALSE(PreparePhoto(scratch.File(path)).WasRead) << path;
  }
  const PreparedPhoto garbage = PreparePhoto(scratch.Write("garbage.jpg", std::string(5000, 'g')));
  EXPECT_TRUE(garbage.WasRead && garbage.Thumbnail.empty());
  std::filesystem::resize_file(scratch.Write("huge.jpg", ""), std::uintmax_t{1} << 40);
  EXPECT_TRUE(PreparePhoto(scratch.File("huge.jpg")).WasRead) << "it isn't tried again";
  EXPECT_NE(PreparePhoto(scratch.Write("cut.jpg", jpeg.substr(0, 120))).CameraDate, 0)
      << "the date needs no picture";
}

TEST(PictureMemoryTest, SharesWaitForEachOtherAndNoneIsLargerThanAll) {
  CMemoryPool pool(100);
  EXPECT_THROW(CMemoryShare(pool, 101), CTooLargeException);
  std::atomic<int> used = 0;
  std::atomic<bool> tooMuch = false;
  std::vector<std::jthread> threads;
  for (const int bytes : {10, 40, 70, 100}) {
    threads.emplace_back([&, bytes] {
      for (int k = 0; k < 200; ++k) {
        const CMemoryShare share(pool, static_cast<std::uint64_t>(bytes));
        if ((used += bytes) > 100) tooMuch = true;
        used -= bytes;
      }
    });
  }
  threads.clear();
  EXPECT_FALSE(tooMuch);
}
