#pragma once

#include <chrono>
#include <thread>

namespace platform {

/// Ends the process if its own end takes too long, as when a thread reads from a disk that doesn't answer any
/// more. For a time when nothing is left to be saved.
class EndGuard {
 public:
  explicit EndGuard(std::chrono::milliseconds limit) : Limit(limit) {}
  EndGuard(const EndGuard&) = delete;
  EndGuard& operator=(const EndGuard&) = delete;

  /// From now on this object has to go within the limit; otherwise the process ends with that code.
  void Begin(int exitCode);

 private:
  const std::chrono::milliseconds Limit;
  std::jthread Watch;
};

}  // namespace platform
