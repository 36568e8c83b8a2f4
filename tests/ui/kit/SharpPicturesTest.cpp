#include <filesystem>
#include <map>
#include <optional>
#include <thread>

#include "imaging/PictureMemory.h"
#include "support/ScratchFolder.h"
#include "ui/WindowTest.h"
#include "ui/kit/Job.h"
#include "ui/kit/SharpPictures.h"

namespace {

/// Photos named by their keys, and the pictures that come of them.
class SharpPictures : public testing::Test {
 protected:
  std::string PathOf(int key) const { return Scratch.GetPath() + "/" + std::to_string(key) + ".jpg"; }
  /// Waits until the picture may be held.
  void Write(int key, const QColor& hue) const {
    Scratch.Write(std::to_string(key) + ".jpg", MakePhoto(560, 420, hue));
    platform::FileStatus status;
    ASSERT_TRUE(QTest::qWaitFor([&] { return !GetStatus(PathOf(key), status) && HasSettled(status); }));
  }
  void Prepare(int first, int end, QSize box = {140, 105}) {
    std::vector<PictureWish> wishes;
    for (int key = first; key < end; ++key) wishes.push_back({key, PathOf(key), box});
    Got.clear();
    Pictures->Prepare(std::move(wishes), 2);
  }
  bool WaitFor(std::size_t count) const {
    return QTest::qWaitFor([&] { return Got.size() == count; });
  }

  const CScratchFolder Scratch;
  std::map<int, QImage> Got;
  int GivenUp = 0;
  std::optional<CSharpPictures> Pictures{
      std::in_place, [this](int key, const QImage& picture) { Got[IsJobRunning() ? -1 : key] = picture; },
      [this] { ++GivenUp; }};
};

/// All memory that decoders take theirs from, so that they wait.
std::vector<std::unique_ptr<CMemoryShare>> TakeAllMemory() {
  std::vector<std::unique_ptr<CMemoryShare>> all;
  for (std::uint64_t bytes = std::uint64_t{1} << 40; bytes > 0; bytes /= 2) {
    if (auto share = GetPictureMemory().TakeIfFree(bytes)) all.push_back(std::move(share));
  }
  return all;
}

}  // namespace

TEST_F(SharpPictures, AreHeldWhileTheirFilesStayUnchangedAndThereIsRoom) {
  for (const int key : {0, 1}) Write(key, QColor(Qt::green));
  Scratch.Write("2.jpg", "no picture");
  Prepare(0, 4);
  ASSERT_TRUE(WaitFor(2) && QTest::qWaitFor([&] { return Pictures->GetDecodedFiles() == 3; }));
  EXPECT_EQ(Got.at(0).size(), QSize(280, 210));
  const auto written = std::filesystem::last_write_time(PathOf(1));
  Write(1, QColor(Qt::blue));
  std::filesystem::last_write_time(PathOf(1), written);
  Prepare(0, 2);
  ASSERT_TRUE(WaitFor(2));
  EXPECT_EQ(Pictures->GetDecodedFiles(), 4);
  EXPECT_NEAR(Got.at(1).pixelColor(9, 9).hue(), QColor(Qt::blue).hue(), 5);
  for (int side = 500; side < 520; ++side) {  // 3 MB each
    Prepare(0, 1, {side, side});
    ASSERT_TRUE(WaitFor(1));
  }
  EXPECT_NEAR(static_cast<double>(Pictures->GetHeldBytes()), 30 << 20, 3 << 20);
}

TEST_F(SharpPictures, WhatIsGivenUpIsNeitherBegunNorGiven) {
  constexpr int kPhotos = 20;
  const int threads = static_cast<int>(std::thread::hardware_concurrency());
  for (int key = 0; key < kPhotos; ++key) Write(key, QColor(Qt::red));
  auto memory = TakeAllMemory();
  Prepare(0, kPhotos - 1);
  Write(0, QColor(Qt::red));  // time for them to begin
  Prepare(kPhotos - 1, kPhotos);
  memory.clear();
  ASSERT_TRUE(WaitFor(1));
  EXPECT_EQ(Got.begin()->first, kPhotos - 1);
  EXPECT_LE(Pictures->GetDecodedFiles(), threads + 1);

  // The same for a job; a file that changes between its reading and its decoding gives no picture.
  memory = TakeAllMemory();
  const int decoded = Pictures->GetDecodedFiles();
  Prepare(0, kPhotos, {100, 75});
  for (int key = 0; key < threads; ++key) Write(key, QColor(Qt::green));
  RunJob([&] {
    memory.clear();
    for (int turn = 0; turn < 10; ++turn) RunOnWindowThread([] {});
    EXPECT_LE(Pictures->GetDecodedFiles() - decoded, threads);
  });
  ASSERT_TRUE(QTest::qWaitFor([&] { return GivenUp > 0 || Got.contains(kPhotos - 1); }));
  EXPECT_FALSE(Got.contains(-1)) << "during the job";
  for (const auto& [key, picture] : Got) {
    EXPECT_EQ(picture.pixelColor(9, 9).green() > 128, key < threads) << key;
  }
  Prepare(0, kPhotos, {90, 75});
  Pictures.reset();  // with decoders at work
}
