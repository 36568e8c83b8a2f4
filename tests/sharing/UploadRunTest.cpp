#include <gmock/gmock.h>

#include "base/Exceptions.h"
#include "base/Texts.h"
#include "sharing/ServiceFixture.h"
#include "sharing/UploadRun.h"

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
      Queue.Photos.push_back({1, Scratch.Write(name + ".jpg", name), name, "", ""});
    }
    Desktop = {};
    Messages.Texts.clear();
    replies.insert(replies.begin(), {Reply{}, kMember});
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
      {{kTaken}, [] {}, 3, "", 1},
      {{kTaken, refused}, [] {}, 1, failed, 1},
      {{refused}, [] {}, 0, failed, 1},
      {{Reply{}}, [&] { Desktop.StopAt = "10%"; }, 0, "", 1},
      {{kTaken, Reply{}}, [&] { Desktop.StopAt = "b1"; }, 1, "", 1},
      {{kTaken}, [&] { Desktop.StopAt = "total 3"; }, 0, "", 1},
      {{kTaken}, [&] { std::filesystem::remove(Queue.Photos[1].Path); }, 1, failed, 1},
      {{kTaken}, [&] { Queue.Refuses = true; }, 1, "disk full", 1},
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
      if (uploaded == 0) continue;
      EXPECT_EQ(Server->GetRequests()[0], "") << "the probe sends nothing";
      EXPECT_THAT(Server->GetRequests()[2],
                  HasSubstr(MakeParts(orderPrints ? "Quantity=1;" : "Quantity=0;")));
    }
  }
}

}  // namespace
