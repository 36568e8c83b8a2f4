#pragma once

#include <QProgressDialog>
#include <atomic>
#include <chrono>

#include "resources/StringIds.h"

class QWidget;

/// A window with a bar and a button for a job that does so many things one after the other. It shows itself
/// when the job has gone on for a second. Made and destroyed on the window thread.
class CJobProgress {
 public:
  struct Texts {
    StringId Title;
    StringId Text;
    StringId StopButton;
  };

  CJobProgress(QWidget& mainWindow, const Texts& texts, int count);

  void Stop() { Stopped = true; }

  /// From the job: so many are done. Waits until the window has taken it; what comes too fast is passed over.
  /// False if the user has asked to stop.
  bool Report(int done);

  /// From the job: hides the window, so that a message that follows stands alone.
  void End();

  /// Any thread.
  bool IsStopped() const { return Stopped; }

 private:
  QProgressDialog Dialog;
  std::chrono::steady_clock::time_point Next{};  // when a report is shown again
  std::atomic<bool> Stopped = false;
};
