#pragma once

#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdint>
#include <functional>
#include <stdexcept>
#include <thread>

/// Tells the parent of a killed child what had been done before the kill.
class CReport {
 public:
  explicit CReport(int descriptor) : Descriptor(descriptor) {}
  void Send(std::int32_t value) const {
    if (::write(Descriptor, &value, sizeof value) != sizeof value) ::_exit(3);
  }

 private:
  const int Descriptor;
};

/// Runs `work` in a child process and kills it, unless it has ended by then, `delay` after its first report.
/// Returns the last value that it sent. Call it before the test makes threads.
inline std::int32_t RunAndKill(const std::function<void(const CReport&)>& work,
                               std::chrono::microseconds delay) {
  int ends[2];
  if (::pipe(ends) != 0) throw std::runtime_error("no pipe");
  const pid_t child = ::fork();
  if (child < 0) throw std::runtime_error("no child");
  if (child == 0) {
    ::close(ends[0]);
    work(CReport(ends[1]));
    ::_exit(0);
  }
  ::close(ends[1]);
  std::int32_t last = 0;
  if (::read(ends[0], &last, sizeof last) != sizeof last) throw std::runtime_error("no report");
  std::this_thread::sleep_for(delay);
  ::kill(child, SIGKILL);
  for (std::int32_t value = 0; ::read(ends[0], &value, sizeof value) == sizeof value;) last = value;
  ::close(ends[0]);
  ::waitpid(child, nullptr, 0);
  return last;
}
