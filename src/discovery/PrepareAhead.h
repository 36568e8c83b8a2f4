#pragma once

#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "imaging/PreparedPhoto.h"

/// Reads and decodes the files of a list on all cores, some way ahead of the import that takes the results
/// in order. What is held is bounded by the number of threads, not by the number of files. The decoders
/// touch neither catalog nor cache.
class CPrepareAhead {
 public:
  CPrepareAhead(std::vector<std::string> paths, unsigned threadCount);
  /// Stops after the files that are being decoded.
  ~CPrepareAhead();
  CPrepareAhead(const CPrepareAhead&) = delete;
  CPrepareAhead& operator=(const CPrepareAhead&) = delete;

  /// The next file's result, in the order of the list; waits for it. At most once per file.
  PreparedPhoto TakeNext();

 private:
  void Work();

  const std::vector<std::string> Paths;
  const std::size_t FilesAhead;  // how many the system is asked to read ahead of those that are decoded
  std::mutex Mutex;
  std::condition_variable ResultReady, RoomMade;
  std::size_t NextToStart = 0;
  std::size_t NextToTake = 0;
  bool Stopping = false;
  std::vector<std::optional<PreparedPhoto>> Ring;  // result of file i stands at i modulo size
  std::vector<std::jthread> Threads;
};
