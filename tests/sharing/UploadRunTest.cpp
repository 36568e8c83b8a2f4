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
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

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
    Queue.Photos.clear();
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
  struct Row {
    std::vector<Reply> Replies;
    bool OrderPrints;
    const char* StopAt;
    int Uploaded;
    bool IsTold;
  };
  const Row rows[] = {
      {{Taken}, false, "", 3, false},         {{Taken}, true, "", 3, false},
      {{Taken, refused}, false, "", 1, true}, {{refused}, true, "", 0, true},
      {{Reply{}}, false, "10%", 0, false},    {{Taken, Reply{}}, true, "1 b", 1, false},
      {{Taken}, false, "total 3", 0, false},
  };
  for (const Row& row : rows) {
    Begin(row.Replies);
    Desktop.StopAt = row.StopAt;
    EXPECT_EQ(RunUpload(Queue, Desktop, row.OrderPrints), row.Uploaded) << row.StopAt;
    EXPECT_EQ(Queue.GetCount(), 3 - row.Uploaded) << row.StopAt;
    EXPECT_EQ(Messages.Texts.size(), row.IsTold ? 1U : 0U) << row.StopAt;
    EXPECT_EQ(Desktop.Pages.size(), row.Uploaded > 0 ? 1U : 0U) << row.StopAt;
    EXPECT_THAT(Desktop.Pages, Each(HasSubstr(row.OrderPrints ? "&Cart=Y" : "&Album=")));
  }
}

TEST_F(UploadRunTest, EachPhotoIsSaidToTheService) {
  Begin({Taken});
  RunUpload(Queue, Desktop, true);
  std::tm today{};
  platform::ToLocalTime(std::time(nullptr), today);
  const std::string request = Server->GetRequests()[3];
  const std::string values[] = {platform::FormatTime(today, "AlbumName\"\r\n\r\n%B %#d, %Y\r\n"),
                                "WatermarkSize\"\r\n\r\n0\r\n",
                                "ProductID\"\r\n\r\n2\r\n",
                                "Quantity\"\r\n\r\n1\r\n",
                                "DirectPrint\"\r\n\r\nN\r\n",
                                "Caption\"\r\n\r\nb\r\n",
                                "Description\"\r\n\r\na note\r\n"};
  for (const std::string& value : values) EXPECT_THAT(request, HasSubstr("name=\"" + value));
}

TEST_F(UploadRunTest, WhatEndsARunBeforeItBegins) {
  EXPECT_EQ(RunUpload(Queue, Desktop, true), 0);  // nothing to send, so nothing is asked
  EXPECT_THAT(Messages.Texts, IsEmpty());
  Begin({});
  CSettingsRef().SetString("ServiceHost", "");
  EXPECT_EQ(RunUpload(Queue, Desktop, true), 0);
  EXPECT_THAT(Messages.Texts, ElementsAre(LoadText(StringId::ServiceNotReachable)));
  EXPECT_THAT(Desktop.Prompts, IsEmpty());

  Begin({});
  Desktop.Entries.clear();  // the user cancels
  EXPECT_EQ(RunUpload(Queue, Desktop, true), 0);
  EXPECT_THAT(Desktop.Prompts, ElementsAre(""));
  Desktop.Ending = true;  // no message waits for an answer when the program is closed
  EXPECT_EQ(RunUpload(Queue, Desktop, true), 0);
  EXPECT_THAT(Messages.Texts, IsEmpty());
}

TEST_F(UploadRunTest, APhotoThatIsGoneOrCannotBeTakenOutEndsTheRun) {
  Begin({Taken});
  std::filesystem::remove(Queue.Photos[1].Path);
  EXPECT_EQ(RunUpload(Queue, Desktop, false), 1);
  EXPECT_THAT(Messages.Texts, ElementsAre(LoadText(StringId::PhotosNotProcessed)));

  Begin({Taken});
  Queue.Refuses = true;
  EXPECT_EQ(RunUpload(Queue, Desktop, false), 1);
  EXPECT_THAT(Messages.Texts, ElementsAre("disk full"));
  EXPECT_EQ(Desktop.Pages.size(), 1U);
  EXPECT_EQ(Server->GetRequests().size(), 3U);
}

TEST(TransferPercentTest, ThePercentageFollowsTheRequest) {
  const std::pair<TransferState, int> rows[] = {
      {{false, 50, 100, 200, 10, 5, 0}, 0},      {{true, 45, 100, 0, 0, 0, 0}, 5},
      {{true, 1000, 1000, 0, 0, 0, 499}, 52},    {{true, 1000, 1000, 200, kNoContentLength, 70, 99999}, 95},
      {{true, 1000, 1000, 200, 100, 50, 5}, 98}, {{true, 3000000000, 3000000000, 0, 0, 0, 1500000000}, 52},
  };
  for (const auto& [state, percent] : rows)
    EXPECT_EQ(GetTransferPercent(state), percent) << state.SinceQueued;
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
