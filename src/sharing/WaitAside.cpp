#include "sharing/WaitAside.h"

#include <algorithm>
#include <chrono>
#include <memory>

#include "platform/EventLoop.h"

bool RunAside(CServiceDesktop& desktop, const CUploadProgress* progress, int limit,
              const std::function<void()>& work) {
  using std::chrono::milliseconds;
  const auto start = std::chrono::steady_clock::now();
  const platform::SideTask task(work);
  int step = kWaitStep;
  while (!task.IsDone()) {
    if (limit > 0) {
      const auto spent = std::chrono::duration_cast<milliseconds>(std::chrono::steady_clock::now() - start);
      if (spent >= milliseconds(limit)) return false;
      step = std::min(kWaitStep, static_cast<int>(limit - spent.count()));
    }
    desktop.HandleEvents(step);
    if (desktop.IsEnding() || (progress != nullptr && progress->IsStopped())) return false;
  }
  return true;
}

std::optional<platform::Ipv4Address> LookUpHostAside(CServiceDesktop& desktop,
                                                     const CUploadProgress* progress, int limit,
                                                     const std::string& host) {
  const auto found = std::make_shared<std::optional<platform::Ipv4Address>>();
  const bool isDone =
      RunAside(desktop, progress, limit, [found, host] { *found = platform::LookUpHost(host); });
  return isDone ? *found : std::nullopt;
}
