#pragma once

namespace platform {

/// The signals that ask a program to end (TERM, INT and HUP), for an event loop to wait on. While this
/// object lives they no longer end the process. One object at a time.
class StopSignals {
 public:
  StopSignals();
  ~StopSignals();
  StopSignals(const StopSignals&) = delete;
  StopSignals& operator=(const StopSignals&) = delete;

  /// Becomes readable when a signal has come; -1 if the system refused, and the signals end the process.
  int GetDescriptor() const { return ReadEnd; }

  /// Makes the descriptor unreadable until the next signal.
  void Acknowledge();

 private:
  int ReadEnd = -1;
  int WriteEnd = -1;
};

}  // namespace platform
