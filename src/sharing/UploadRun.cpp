#include "sharing/UploadRun.h"

#include <ctime>
#include <memory>

#include "base/Exceptions.h"
#include "base/Messages.h"
#include "base/Texts.h"
#include "platform/LocalTime.h"
#include "sharing/WaitAside.h"

namespace {

constexpr int kProductID = 2;

/// The album is named after the day of the upload.
std::string MakeAlbumName() {
  std::tm today{};
  platform::ToLocalTime(std::time(nullptr), today);
  return platform::FormatTime(today, LoadText(StringId::AlbumNameFormat));
}

UploadForm MakeForm(const PhotoToUpload& photo, const std::string& albumName, bool orderPrints) {
  UploadForm form;
  form.Path = photo.Path;
  form.AlbumName = albumName;
  form.ProductID = kProductID;
  form.Quantity = orderPrints ? 1 : 0;
  form.Caption = photo.Caption;
  form.Description = photo.Description;
  return form;
}

/// False if the photo is still in the queue. The disk's refusal is told: the photo is uploaded all the same.
bool RemoveFrom(CUploadQueue& queue, const PhotoToUpload& photo, const CServiceDesktop& desktop) {
  const int count = queue.GetCount();
  try {
    queue.Remove(photo);
  } catch (const CStorageException& refusal) {
    if (!desktop.IsEnding()) ShowMessage(refusal.GetMessage(), false, MessageParent::ProgressWindow);
    return false;
  }
  return queue.GetCount() < count;
}

/// The progress window of a run, told to the session while it lives.
class CProgressScope {
 public:
  CProgressScope(CServiceSession& session, CServiceDesktop& desktop)
      : Session(session), Progress(desktop.ShowUploadProgress()) {
    Session.SetProgress(Progress.get());
  }
  ~CProgressScope() { Session.SetProgress(nullptr); }
  CProgressScope(const CProgressScope&) = delete;
  CProgressScope& operator=(const CProgressScope&) = delete;

  CUploadProgress& Get() const { return *Progress; }

 private:
  CServiceSession& Session;
  const std::unique_ptr<CUploadProgress> Progress;
};

/// Empty if the user has asked to stop.
std::string ReadInfoAside(const std::string& path, CServiceDesktop& desktop,
                          const CUploadProgress& progress) {
  const auto info = std::make_shared<std::string>();
  const bool isDone = RunAside(desktop, &progress, 0, [info, path] { *info = ReadInfo(path); });
  return isDone ? *info : std::string();
}

/// Returns the number of photos uploaded.
int UploadAll(CUploadQueue& queue, CServiceDesktop& desktop, CServiceSession& session,
              const std::string& albumName, bool orderPrints) {
  const CProgressScope scope(session, desktop);
  CUploadProgress& progress = scope.Get();
  progress.SetTotal(queue.GetCount());
  int uploaded = 0;
  while (queue.GetCount() > 0 && !progress.IsStopped()) {
    PhotoToUpload photo = queue.GetFirst();
    photo.Info = ReadInfoAside(photo.Path, desktop, progress);
    progress.SetPhoto(uploaded, photo);
    if (!session.UploadPhoto(MakeForm(photo, albumName, orderPrints))) {
      if (!progress.IsStopped() && !desktop.IsEnding()) {
        ShowMessageId(StringId::PhotosNotProcessed, false, MessageParent::ProgressWindow);
      }
      break;
    }
    ++uploaded;
    // A photo that stays would be sent again and again.
    if (!RemoveFrom(queue, photo, desktop)) break;
  }
  return uploaded;
}

}  // namespace

int RunUpload(CUploadQueue& queue, CServiceDesktop& desktop, bool orderPrints, const ServiceTimes& times) {
  if (queue.GetCount() == 0) return 0;
  CServiceSession session(desktop, times);
  if (!CServiceSession::IsServiceReachable(desktop, times)) {
    if (!desktop.IsEnding()) ShowMessageId(StringId::ServiceNotReachable);
    return 0;
  }
  if (!CServiceSession::ShowLoginDialog(session)) return 0;
  const std::string albumName = MakeAlbumName();
  const int uploaded = UploadAll(queue, desktop, session, albumName, orderPrints);
  if (uploaded > 0 && !desktop.IsEnding()) {
    orderPrints ? session.OpenCart() : session.OpenAlbum(albumName);
  }
  return uploaded;
}
