#include "discovery/PrepareAhead.h"

#include <algorithm>
#include <system_error>
#include <utility>

#include "platform/Files.h"

namespace {

// Enough for the other threads to go on while one decodes a large photo.
constexpr std::size_t kResultsPerThread = 8;

}  // namespace

CPrepareAhead::CPrepareAhead(std::vector<std::string> paths, unsigned threadCount)
    : Paths(std::move(paths)), FilesAhead(std::max(threadCount, 1U)), Ring(kResultsPerThread * FilesAhead) {
  const std::size_t threads = std::min(FilesAhead, Paths.size());
  try {
    for (std::size_t i = 0; i < threads; ++i) Threads.emplace_back([this] { Work(); });
  } catch (const std::system_error&) {
    // No more threads can be started. Those that run do the work; without any, TakeNext() does it.
  }
}

CPrepareAhead::~CPrepareAhead() {
  {
    const std::lock_guard lock(Mutex);
    Stopping = true;
  }
  RoomMade.notify_all();
  Threads.clear();  // joins them, before the members that they use are destroyed
}

PreparedPhoto CPrepareAhead::TakeNext() {
  if (Threads.empty()) return PreparePhoto(Paths[NextToTake++]);
  std::unique_lock lock(Mutex);
  std::optional<PreparedPhoto>& slot = Ring[NextToTake % Ring.size()];
  ResultReady.wait(lock, [&slot] { return slot.has_value(); });
  PreparedPhoto result = std::move(*slot);
  slot.reset();
  ++NextToTake;
  lock.unlock();
  RoomMade.notify_one();
  return result;
}

void CPrepareAhead::Work() {
  std::unique_lock lock(Mutex);
  for (;;) {
    RoomMade.wait(lock, [this] {
      return Stopping || NextToStart == Paths.size() || NextToStart < NextToTake + Ring.size();
    });
    if (Stopping || NextToStart == Paths.size()) return;
    const std::size_t index = NextToStart++;
    lock.unlock();
    // A thread decodes about as fast as a disk reads, so one mustn't wait for the other.
    if (index + FilesAhead < Paths.size()) platform::ReadAhead(Paths[index + FilesAhead]);
    PreparedPhoto photo = PreparePhoto(Paths[index]);
    lock.lock();
    Ring[index % Ring.size()] = std::move(photo);
    ResultReady.notify_one();
  }
}
