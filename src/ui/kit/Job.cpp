#include "ui/kit/Job.h"

#include <QAbstractEventDispatcher>
#include <QApplication>
#include <QThread>
#include <atomic>
#include <exception>
#include <thread>
#include <utility>
#include <vector>

#include "storage/DataThread.h"
#include "ui/kit/Application.h"
#include "ui/kit/InputBlock.h"

namespace {

class CRunningJob;
std::atomic<CRunningJob*> TheJob = nullptr;  // changed and used by the window thread alone

/// The job that runs while this object lives. What was put off meanwhile is posted at its end.
class CRunningJob {
 public:
  explicit CRunningJob(const std::function<void()>& stop) : OnStop(stop) {
    TheJob = this;
    if (CApplication* application = CApplication::GetInstance()) application->OnFailure = &StopJob;
  }
  ~CRunningJob() {
    if (CApplication* application = CApplication::GetInstance()) application->OnFailure = nullptr;
    TheJob = nullptr;
    for (auto& next : Afterwards) QMetaObject::invokeMethod(qApp, std::move(next), Qt::QueuedConnection);
  }
  CRunningJob(const CRunningJob&) = delete;
  CRunningJob& operator=(const CRunningJob&) = delete;

  const std::function<void()>& OnStop;
  std::vector<std::function<void()>> Afterwards;
};

/// Waits for a worker thread while the window thread's events are handled, and joins it.
void WaitFor(std::thread& worker, const std::atomic<bool>& done) {
  // A loop object would return early once the application is told to exit; this doesn't.
  QAbstractEventDispatcher* dispatcher = QThread::currentThread()->eventDispatcher();
  while (!done) dispatcher->processEvents(QEventLoop::WaitForMoreEvents);
  worker.join();
}

}  // namespace

void RunJob(const std::function<void()>& work, const std::function<void()>& stop) {
  Q_ASSERT(QThread::currentThread() == qApp->thread() && TheJob == nullptr);
  std::exception_ptr failure;
  {
    const CRunningJob job(stop);
    const CInputBlock inputBlock(ArrowPlace::OverOpenWindows);
    std::atomic<bool> done = false;
    QAbstractEventDispatcher* dispatcher = QThread::currentThread()->eventDispatcher();
    std::thread worker([&] {
      try {
        const CDataThreadScope scope;
        work();
      } catch (...) {
        failure = std::current_exception();
      }
      done = true;
      dispatcher->wakeUp();
    });
    WaitFor(worker, done);
  }
  if (failure) std::rethrow_exception(failure);
  if (CApplication* application = CApplication::GetInstance()) application->RethrowFailure();
}

bool IsJobRunning() { return TheJob != nullptr; }

void StopJob() {
  const CRunningJob* const job = TheJob;
  if (job != nullptr && job->OnStop) job->OnStop();
}

void RunAfterJob(std::function<void()> work) {
  if (CRunningJob* const job = TheJob) {
    job->Afterwards.push_back(std::move(work));
  } else {
    work();
  }
}

void RunOnWindowThread(const std::function<void()>& work) {
  if (QThread::currentThread() == qApp->thread()) {
    work();
    return;
  }
  std::exception_ptr failure;
  QMetaObject::invokeMethod(
      qApp,
      [&] {
        try {
          work();
        } catch (...) {
          failure = std::current_exception();
        }
      },
      Qt::BlockingQueuedConnection);
  if (failure) std::rethrow_exception(failure);
}
