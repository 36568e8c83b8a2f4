#include "platform/EventLoop.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include <QAbstractEventDispatcher>
#include <QObject>
#include <QSocketNotifier>
#include <QTimer>
#include <atomic>
#include <system_error>
#include <thread>
#include <utility>

#include "platform/Descriptor.h"

namespace platform {

void HandleEvents(int milliseconds) {
  QAbstractEventDispatcher* dispatcher = QAbstractEventDispatcher::instance();
  if (dispatcher->processEvents(QEventLoop::AllEvents)) return;
  QTimer alarm;
  alarm.setSingleShot(true);
  alarm.start(milliseconds);
  dispatcher->processEvents(QEventLoop::WaitForMoreEvents);
}

class Timer::Core : public QTimer {
 public:
  explicit Core(std::function<void()> call) : Call(std::move(call)) {
    setSingleShot(true);
    setTimerType(Qt::PreciseTimer);
    QObject::connect(this, &QTimer::timeout, this, [this] {
      const std::function<void()> copy = Call;
      copy();
    });
  }

 private:
  const std::function<void()> Call;
};

Timer::Timer(std::function<void()> call) : TheCore(std::make_unique<Core>(std::move(call))) {}

Timer::~Timer() = default;

void Timer::Start(int milliseconds) { TheCore->start(milliseconds); }

void Timer::Stop() { TheCore->stop(); }

/// What both threads own. The event stands in the descriptor, so that a loop which comes too late finds it.
class SideTask::Core {
 public:
  struct Shared {
    std::atomic<bool> Done = false;
    Descriptor Wake;
  };

  explicit Core(const std::function<void()>& work) {
    State->Wake = Descriptor(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK));
    if (State->Wake.Get() >= 0) {
      Notifier = std::make_unique<QSocketNotifier>(State->Wake.Get(), QSocketNotifier::Read);
      QObject::connect(Notifier.get(), &QSocketNotifier::activated, Notifier.get(),
                       [this] { Notifier->setEnabled(false); });
      try {
        std::thread([state = State, work] { Run(*state, work); }).detach();
        return;
      } catch (const std::system_error&) {
        // The system has no thread left: the caller has to wait.
      }
    }
    Run(*State, work);
  }

  const std::shared_ptr<Shared> State = std::make_shared<Shared>();

 private:
  static void Run(Shared& state, const std::function<void()>& work) {
    work();
    state.Done = true;
    const std::uint64_t one = 1;
    [[maybe_unused]] const ssize_t written = ::write(state.Wake.Get(), &one, sizeof one);
  }

  std::unique_ptr<QSocketNotifier> Notifier;
};

SideTask::SideTask(const std::function<void()>& work) : TheCore(std::make_unique<Core>(work)) {}

SideTask::~SideTask() = default;

bool SideTask::IsDone() const { return TheCore->State->Done; }

}  // namespace platform
