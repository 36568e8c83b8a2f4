#include "ui/sharing/EmailSending.h"

#include <QProgressDialog>
#include <atomic>

#include "sharing/MailClient.h"
#include "ui/kit/InputBlock.h"
#include "ui/kit/Job.h"
#include "ui/kit/SmallWindow.h"

namespace {

/// Shows itself when the work has gone on for a while. The reports come from the job.
class CWindowedEmailProgress : public CEmailProgress {
 public:
  CWindowedEmailProgress(QWidget& mainWindow, int count)
      : Dialog(LoadWindowText(StringId::EmailingCopies), LoadWindowText(StringId::Cancel), 0, count,
               &mainWindow) {
    Dialog.setObjectName(window_names::kEmailProgress);
    Dialog.setWindowTitle(LoadWindowText(StringId::EmailingTitle));
    Dialog.setAutoReset(false);
    Dialog.setAutoClose(false);
    Dialog.setMinimumDuration(kPause);
    Dialog.setValue(0);  // the pause begins
    QObject::connect(&Dialog, &QProgressDialog::canceled, &Dialog, [this] { Stop(); });
  }

  void Stop() { Stopped = true; }

  void Progress(std::size_t done, std::size_t) override {
    RunOnWindowThread([&] {
      if (!Stopped) Dialog.setValue(static_cast<int>(done));
    });
  }
  bool IsStopped() const override { return Stopped; }

 private:
  static constexpr int kPause = 1000;  // ms

  QProgressDialog Dialog;
  std::atomic<bool> Stopped = false;
};

}  // namespace

void SendByEmail(QWidget& mainWindow, const std::vector<std::string>& paths,
                 const std::optional<std::string>& subject) {
  CWindowedEmailProgress progress(mainWindow, static_cast<int>(paths.size()));
  RunJob([&] { CMailClient().Send(paths, subject, &progress); }, [&progress] { progress.Stop(); });
}
