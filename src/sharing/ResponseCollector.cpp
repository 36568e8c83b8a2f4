#include "sharing/ResponseCollector.h"

#include <chrono>

#include "platform/SocketErrors.h"
#include "sharing/WaitAside.h"

namespace {

std::int64_t GetTickCount() {
  using namespace std::chrono;
  return duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count();
}

}  // namespace

CResponseCollector::CResponseCollector(CServiceDesktop& desktop, const ServiceTimes& times)
    : Desktop(desktop), Times(times) {
  Request.Create(this);
  Request.SetConnectTimeout(Times.Connect);
  Request.SetHostLookup(
      [this](const std::string& host) { return LookUpHostAside(Desktop, Progress, Times.Connect, host); });
}

void CResponseCollector::OnConnect(bool connected, int error) {
  if (connected) {
    Connected = true;
    return;
  }
  LastError = error;
  if (error != platform::socket_errors::kNone) {
    Status = 0;
    ResponseText.clear();
  }
  Done = true;
}

void CResponseCollector::OnResponse(int status, std::uint32_t contentLength) {
  Status = status;
  ResponseLength = contentLength;
  if (contentLength == 0) Done = true;
}

void CResponseCollector::OnData(const char* data, std::uint32_t length) {
  if (length > kLargestResponse - ResponseText.size()) {
    Request.Reset();
    OnConnect(false, platform::socket_errors::kNoBuffers);
    return;
  }
  ResponseText.append(data, length);
  if (ResponseLength != kNoContentLength && ResponseText.size() == ResponseLength) Done = true;
}

void CResponseCollector::ClearResponse() {
  Done = Connected = false;
  LastError = Status = 0;
  ResponseLength = 0;
  ResponseText.clear();
  QueuedAt.reset();
}

void CResponseCollector::WaitForResponse(int limit) {
  const std::int64_t begin = GetTickCount();
  while (!Done) {
    HandleEvents(kWaitStep);
    if (Done || limit == 0 || GetTickCount() - begin < limit) continue;
    Request.Reset();
    OnConnect(false, platform::socket_errors::kTimedOut);
  }
}

void CResponseCollector::HandleEvents(int milliseconds) {
  Desktop.HandleEvents(milliseconds);
  if (Done) return;
  ReportProgress();
  if (IsStopWanted()) Stop();
}

void CResponseCollector::ReportProgress() {
  if (Progress == nullptr) return;
  TransferState state{Connected, Request.GetQueued(), Request.GetTotal(),
                      Status,    ResponseLength,      ResponseText.size()};
  if (IsEstimated(state)) {
    const std::int64_t now = GetTickCount();
    if (!QueuedAt) QueuedAt = now;
    state.SinceQueued = now - *QueuedAt;
  }
  Progress->SetPercent(GetTransferPercent(state));
}

void CResponseCollector::Stop() {
  Request.Reset();
  Done = true;
  Status = 0;
  ResponseText.clear();
}
