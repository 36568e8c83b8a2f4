#include "platform/StopSignals.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>

namespace platform {
namespace {

constexpr int kSignals[] = {SIGTERM, SIGINT, SIGHUP};

volatile std::sig_atomic_t TheWriteEnd = -1;

/// A signal may come between any two instructions, so all that happens here is one write.
void OnSignal(int) {
  const int error = errno;
  const char byte = 1;
  [[maybe_unused]] const ssize_t written = ::write(TheWriteEnd, &byte, 1);  // a full pipe tells as much
  errno = error;
}

bool SetHandler(void (*handler)(int)) {
  struct sigaction action = {};
  action.sa_handler = handler;
  action.sa_flags = SA_RESTART;
  ::sigemptyset(&action.sa_mask);
  bool done = true;
  for (const int signal : kSignals) done &= ::sigaction(signal, &action, nullptr) == 0;
  return done;
}

}  // namespace

StopSignals::StopSignals() {
  int ends[2];
  if (::pipe2(ends, O_CLOEXEC | O_NONBLOCK) != 0) return;
  ReadEnd = ends[0];
  WriteEnd = ends[1];
  TheWriteEnd = WriteEnd;
  if (!SetHandler(OnSignal)) SetHandler(SIG_DFL);
}

StopSignals::~StopSignals() {
  if (ReadEnd < 0) return;
  SetHandler(SIG_DFL);
  TheWriteEnd = -1;
  ::close(ReadEnd);
  ::close(WriteEnd);
}

void StopSignals::Acknowledge() {
  std::array<char, 64> bytes{};
  while (::read(ReadEnd, bytes.data(), bytes.size()) > 0) {
  }
}

}  // namespace platform
