#include "ui/kit/JobProgress.h"

#include <QProgressBar>

#include "base/Texts.h"
#include "ui/kit/InputBlock.h"
#include "ui/kit/Job.h"
#include "ui/kit/QtText.h"

namespace {

constexpr int kPause = 1000;  // ms before the window shows
constexpr std::chrono::milliseconds kBetweenReports{30};

QString Load(StringId id) { return ToQString(LoadExpandedString(id)); }

}  // namespace

CJobProgress::CJobProgress(QWidget& mainWindow, const Texts& texts, int count)
    : Dialog(Load(texts.Text), Load(texts.StopButton), 0, count, &mainWindow) {
  Dialog.setObjectName(window_names::kJobProgress);
  Dialog.setWindowTitle(Load(texts.Title));
  Dialog.findChild<QProgressBar*>()->setAccessibleName(Load(texts.Title));
  Dialog.setAutoReset(false);
  Dialog.setAutoClose(false);
  Dialog.setMinimumDuration(kPause);
  Dialog.setValue(0);  // the pause begins
  QObject::connect(&Dialog, &QProgressDialog::canceled, &Dialog, [this] { Stop(); });
}

bool CJobProgress::Report(int done) {
  const auto now = std::chrono::steady_clock::now();
  if (now < Next || Stopped) return !Stopped;
  Next = now + kBetweenReports;
  RunOnWindowThread([&] {
    if (!Stopped) Dialog.setValue(done);
  });
  return !Stopped;
}

void CJobProgress::End() {
  RunOnWindowThread([this] {
    Dialog.reset();  // it isn't to show itself any more
    Dialog.hide();
  });
}
