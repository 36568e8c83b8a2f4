#include <gmock/gmock.h>

#include <ctime>

#include "base/Exceptions.h"
#include "base/Format.h"
#include "base/Texts.h"
#include "catalog/StampList.h"
#include "platform/LocalTime.h"
#include "sharing/ServiceFixture.h"
#include "sharing/UploadRun.h"
#include "support/CatalogFixture.h"
#include "support/TestJpeg.h"

using testing::Each;
using testing::HasSubstr;

namespace {

class CQueue : public CUploadQueue {
 public:
  int GetCount() const override { return static_cast<int>(Photos.size()); }
  PhotoToUpload GetFirst() const override { return Photos.front(); }
  void Remove(const PhotoToUpload& photo) override {
    if (Refuses) throw CStorageException("disk full");
    std::erase_if(Photos, [&](const PhotoToUpload& other) { return other.Path == photo.Path; });
  }

  std::vector<PhotoToUpload> Photos;
  bool Refuses = false;
};

class UploadRunTest : public CServiceFixture {
 protected:
  /// Three photos, a user at the start, and a service whose first replies are to the probe and the login.
  void Begin(std::vector<Reply> replies) {
    Queue = {};
    for (const std::string name : {"a", "b", "c"}) {
      Queue.Photos.push_back({1, Scratch.Write(name + ".jpg", name), name, name == "b" ? "a note" : ""});
    }
    Desktop = {};
    Messages.Texts.clear();
    replies.insert(replies.begin(), {Reply{}, Member});
    Serve(replies);
  }

  CQueue Queue;
};

TEST_F(UploadRunTest, ARunGoesOnToTheFirstPhotoThatFails) {
  const Reply refused = MakeReply(500, "no");
  const std::string failed = LoadText(StringId::PhotosNotProcessed);
  const std::string away = LoadText(StringId::ServiceNotReachable);
  using Row = std::tuple<std::vector<Reply>, std::function<void()>, int, std::string, std::size_t>;
  const Row rows[] = {
      // with the photos uploaded, the message, and how often the dialog opens
      {{Taken}, [] {}, 3, "", 1},
      {{Taken, refused}, [] {}, 1, failed, 1},
      {{refused}, [] {}, 0, failed, 1},
      {{Reply{}}, [&] { Desktop.StopAt = "10%"; }, 0, "", 1},
      {{Taken, Reply{}}, [&] { Desktop.StopAt = "b1"; }, 1, "", 1},
      {{Taken}, [&] { Desktop.StopAt = "total 3"; }, 0, "", 1},
      {{Taken}, [&] { std::filesystem::remove(Queue.Photos[1].Path); }, 1, failed, 1},
      {{Taken}, [&] { Queue.Refuses = true; }, 1, "disk full", 1},
      {{}, [&] { Queue.Photos.clear(); }, 0, "", 0},
      {{}, [&] { CSettingsRef().SetString("ServiceHost", "x.example"); }, 0, away, 0},
      {{}, [&] { Server.reset(); }, 0, away, 0},
      {{}, [&] { Desktop.Entries.clear(); }, 0, "", 1},
      {{}, [&] { Desktop.Ending = true; }, 0, "", 0},
  };
  for (const auto& [replies, prepare, uploaded, message, prompts] : rows) {
    for (const bool orderPrints : {false, true}) {
      Begin(replies);
      prepare();
      const int left = Queue.GetCount() - (Queue.Refuses ? 0 : uploaded);
      EXPECT_EQ(RunUpload(Queue, Desktop, orderPrints), uploaded) << message << Desktop.StopAt;
      EXPECT_EQ(Queue.GetCount(), left) << message << Desktop.StopAt;
      EXPECT_EQ(Messages.Texts.empty() ? "" : Messages.Texts.back(), message);
      EXPECT_EQ(Desktop.Prompts.size(), prompts) << message << Desktop.StopAt;
      EXPECT_EQ(Desktop.Pages.size(), uploaded > 0 ? 1U : 0U) << message << Desktop.StopAt;
      EXPECT_THAT(Desktop.Pages, Each(HasSubstr(orderPrints ? "&Cart=Y" : "&Album=")));
    }
  }
}

TEST_F(UploadRunTest, EachPhotoIsSaidToTheService) {
  Begin({Taken});
  RunUpload(Queue, Desktop, true);
  std::tm today{};
  platform::ToLocalTime(std::time(nullptr), today);
  const std::string album = platform::FormatTime(today, "AlbumName=%B %#d, %Y;");
  EXPECT_EQ(Server->GetRequests()[0], "");  // of the probe
  EXPECT_THAT(
      Server->GetRequests()[3],
      HasSubstr(MakeParts(
          album + "WatermarkSize=0;Quantity=1;ProductID=2;DirectPrint=N;Caption=b;Description=a note;")));
}

TEST(TransferPercentTest, ThePercentageFollowsTheRequest) {
  const std::pair<TransferState, int> rows[] = {
      {{false, 50, 100, 200, 10, 5, 0}, 0},      {{true, 45, 100, 0, 0, 0, 0}, 5},
      {{true, 1000, 1000, 0, 0, 0, 499}, 52},    {{true, 1000, 1000, 200, kNoContentLength, 70, 99999}, 95},
      {{true, 1000, 1000, 200, 100, 50, 5}, 98}, {{true, 3000000000, 3000000000, 0, 0, 0, 1500000000}, 52},
  };
  for (const auto& [state, percent] : rows) EXPECT_EQ(GetTransferPercent(state), percent) << percent;
}

class PhotoToUploadTest : public CCatalogFixture {};

TEST_F(PhotoToUploadTest, APhotoIsDescribedByItsNameAndItsNote) {
  CAssetRecord record = AddRow(Scratch.Write("My photo.jpg", MakeJpeg(160, 120, 200, 100, 50)));
  EXPECT_EQ(DescribePhotoToUpload(record).Description, "");
  record.GetStamps(StampId::Note).SetText("by the sea", 0);
  const PhotoToUpload photo = DescribePhotoToUpload(record);
  UploadStatus status;
  status.SetPhoto(0, photo);
  EXPECT_EQ(photo.Caption + ", " + photo.Description + ", " + status.InfoLine,
            Format("My photo, by the sea, 160 x 120, %dK", ReadBytes(photo.Path).size() / 1000));
}

}  // namespace
