#include "ui/sharing/EmailSending.h"

#include "sharing/MailClient.h"
#include "ui/kit/Job.h"
#include "ui/kit/JobProgress.h"

namespace {

class CWindowedEmailProgress : public CEmailProgress {
 public:
  CWindowedEmailProgress(QWidget& mainWindow, int count)
      : Window(mainWindow, {StringId::EmailingTitle, StringId::EmailingCopies, StringId::Cancel}, count) {}

  void Stop() { Window.Stop(); }

  void Progress(std::size_t done, std::size_t) override { Window.Report(static_cast<int>(done)); }
  bool IsStopped() const override { return Window.IsStopped(); }
  void End() override { Window.End(); }

 private:
  CJobProgress Window;
};

}  // namespace

void SendByEmail(QWidget& mainWindow, const std::vector<std::string>& paths,
                 const std::optional<std::string>& subject) {
  CWindowedEmailProgress progress(mainWindow, static_cast<int>(paths.size()));
  RunJob([&] { CMailClient().Send(paths, subject, &progress); }, [&progress] { progress.Stop(); });
}
