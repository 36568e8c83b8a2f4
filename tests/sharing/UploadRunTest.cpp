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
  struct Row {
    std::vector<Reply> Replies;
    std::function<void()> Prepare;
    int Uploaded;
    std::string Message;
    std::size_t Prompts = 1;
  };
  const Row rows[] = {
      {{Taken}, [] {}, 3, ""},
      {{Taken, refused}, [] {}, 1, failed},
      {{refused}, [] {}, 0, failed},
      {{Reply{}}, [&] { Desktop.StopAt = "10%"; }, 0, ""},
      {{Taken, Reply{}}, [&] { Desktop.StopAt = "1 b"; }, 1, ""},
      {{Taken}, [&] { Desktop.StopAt = "total 3"; }, 0, ""},
      {{Taken}, [&] { std::filesystem::remove(Queue.Photos[1].Path); }, 1, failed},
      {{Taken}, [&] { Queue.Refuses = true; }, 1, "disk full"},
      {{}, [&] { Queue.Photos.clear(); }, 0, "", 0},
      {{},
       [&] { CSettingsRef().SetString("ServiceHost", ""); },
       0,
       LoadText(StringId::ServiceNotReachable),
       0},
      {{}, [&] { Desktop.Entries.clear(); }, 0, ""},
      {{}, [&] { Desktop.Ending = true; }, 0, "", 0},
  };
  for (const Row& row : rows) {
    for (const bool orderPrints : {false, true}) {
      Begin(row.Replies);
      row.Prepare();
      const int left = Queue.GetCount() - (Queue.Refuses ? 0 : row.Uploaded);
      EXPECT_EQ(RunUpload(Queue, Desktop, orderPrints), row.Uploaded) << &row - rows;
      EXPECT_EQ(Queue.GetCount(), left) << &row - rows;
      EXPECT_THAT(Messages.Texts, Each(row.Message)) << &row - rows;
      EXPECT_EQ(Messages.Texts.empty(), row.Message.empty()) << &row - rows;
      EXPECT_EQ(Desktop.Prompts.size(), row.Prompts) << &row - rows;
      EXPECT_EQ(Desktop.Pages.size(), row.Uploaded > 0 ? 1U : 0U) << &row - rows;
      EXPECT_THAT(Desktop.Pages, Each(HasSubstr(orderPrints ? "&Cart=Y" : "&Album=")));
    }
  }
}

TEST_F(UploadRunTest, EachPhotoIsSaidToTheService) {
  Begin({Taken});
  RunUpload(Queue, Desktop, true);
  std::tm today{};
  platform::ToLocalTime(std::time(nullptr), today);
  EXPECT_THAT(Server->GetRequests()[3],
              HasSubstr(MakeParts({{"AlbumName", platform::FormatTime(today, "%B %#d, %Y")},
                                   {"WatermarkSize", "0"},
                                   {"Quantity", "1"},
                                   {"ProductID", "2"},
                                   {"DirectPrint", "N"},
                                   {"Caption", "b"},
                                   {"Description", "a note"}})));
}

TEST(TransferPercentTest, ThePercentageFollowsTheRequest) {
  const std::pair<TransferState, int> rows[] = {
      {{false, 50, 100, 200, 10, 5, 0}, 0},      {{true, 45, 100, 0, 0, 0, 0}, 5},
      {{true, 1000, 1000, 0, 0, 0, 499}, 52},    {{true, 1000, 1000, 200, kNoContentLength, 70, 99999}, 95},
      {{true, 1000, 1000, 200, 100, 50, 5}, 98}, {{true, 3000000000, 3000000000, 0, 0, 0, 1500000000}, 52},
  };
  for (const auto& [state, percent] : rows) EXPECT_EQ(GetTransferPercent(state), percent) << percent;
}

class UploadStatusTest : public CCatalogFixture {};

TEST_F(UploadStatusTest, TheWindowShowsWhatIsKnownOfThePhoto) {
  CAssetRecord record = AddRow(Scratch.Write("My photo.jpg", MakeJpeg(160, 120, 200, 100, 50)));
  PhotoToUpload photo = DescribePhotoToUpload(record);
  EXPECT_EQ(photo.Caption + "|" + photo.Description, "My photo|");
  record.GetStamps(StampId::Note).SetText("by the sea", 0);
  EXPECT_EQ(DescribePhotoToUpload(record).Description, "by the sea");

  UploadStatus status;
  status.SetTotal(3);
  status.SetPhoto(1, photo);
  EXPECT_EQ(status.TopLine + "|" + status.Title, "Photo 2 of 3|My photo");
  EXPECT_EQ(status.InfoLine, Format("160 x 120, %dK", std::filesystem::file_size(photo.Path) / 1000));
  status.SetPercent(50);
  EXPECT_EQ(status.OverallPercent, 50);
  photo.Path = Scratch.Write("odd.jpg", std::string(2999, 'x'));
  status.SetPhoto(2, photo);
  EXPECT_EQ(status.InfoLine, "2K");
}

}  // namespace
