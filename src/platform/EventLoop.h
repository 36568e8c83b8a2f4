#pragma once

#include <functional>
#include <memory>

/// What code without windows needs of the event loop of its thread.
namespace platform {

/// Handles the events that are queued. If there are none it waits for one, for at most `milliseconds`.
void HandleEvents(int milliseconds);

/// Calls once after a time, through the event loop of the thread that made it; that thread alone uses it.
class Timer {
 public:
  /// May be called with a timer that is destroyed during the call.
  explicit Timer(std::function<void()> call);
  ~Timer();
  Timer(const Timer&) = delete;
  Timer& operator=(const Timer&) = delete;

  /// Counts anew, also if it runs already.
  void Start(int milliseconds);
  void Stop();

 private:
  class Core;
  std::unique_ptr<Core> TheCore;
};

/// Work that may take long and can't be stopped, such as asking for a host, on a thread of its own. An owner
/// that no longer waits destroys the object; the work then ends by itself, with nobody told.
class SideTask {
 public:
  /// `work` raises nothing, and shares the ownership of what it uses.
  explicit SideTask(const std::function<void()>& work);
  ~SideTask();
  SideTask(const SideTask&) = delete;
  SideTask& operator=(const SideTask&) = delete;

  /// Becomes true together with an event, which ends a HandleEvents on the thread that made this object.
  bool IsDone() const;

 private:
  class Core;
  std::unique_ptr<Core> TheCore;
};

}  // namespace platform
