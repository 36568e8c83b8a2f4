#pragma once

#include <chrono>

#include "discovery/SearchProgress.h"
#include "ui/search/SearchProgressWindow.h"

/// Says which of a fast sequence of reports are shown: no more than 30 a second. More would look no smoother
/// and take time from the decoding.
class CReportThrottle {
 public:
  using Time = std::chrono::steady_clock::time_point;

  /// True if a report made at `now` is to be shown.
  bool IsDue(Time now) {
    if (now < Next) return false;
    Next = now + kPause;
    return true;
  }

 private:
  static constexpr std::chrono::nanoseconds kPause{1'000'000'000 / 30};
  Time Next{};
};

/// Reports a search to the progress window. Made and destroyed on the window thread. The reports come from
/// the job that searches: each waits until the window has taken it, so that the worker never runs ahead of
/// what is seen, but those that come too fast are passed over.
class CWindowedSearchProgress : public CSearchProgress {
 public:
  /// `showSplash`: the large form with the product lines. `showAtStart`: the window shows at once, else
  /// with the first report. `parent` is what it is centered on; null for the screen.
  CWindowedSearchProgress(bool showSplash, bool showAtStart, QWidget* parent = nullptr);

  bool SetTotal(int count) override;
  bool Progress(const PhotoProgress& photo) override;
  bool IsStopped() const override { return Window.IsStopRequested(); }

  void Stop() { Window.End(); }
  CSearchProgressWindow& GetWindow() { return Window; }

 private:
  CSearchProgressWindow Window;
  CReportThrottle Throttle;
  int Total = -1;
  double PixelRatio = 1;  // of the window's screen; written while the worker waits
};
