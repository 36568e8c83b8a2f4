#include "platform/EndGuard.h"

#include <condition_variable>
#include <cstdlib>
#include <mutex>
#include <system_error>

namespace platform {

void EndGuard::Begin(int exitCode) {
  try {
    Watch = std::jthread([limit = Limit, exitCode](const std::stop_token& stop) {
      std::mutex mutex;
      std::condition_variable_any never;
      std::unique_lock lock(mutex);
      const auto hasEnded = [&stop] { return stop.stop_requested(); };
      if (!never.wait_for(lock, stop, limit, hasEnded)) std::_Exit(exitCode);
    });
  } catch (const std::system_error&) {
    // Without a thread the end takes as long as it takes.
  }
}

}  // namespace platform
