#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "sharing/HttpRequest.h"
#include "sharing/ServiceDesktop.h"

/// Time-outs of the conversation with the service, in milliseconds.
struct ServiceTimes {
  int Connect = CHttpRequest::kConnectTimeout;  // and to find the host
  int Response = CHttpRequest::kResponseTimeout;
  int UploadResponse = 300000;
};

/// Makes one blocking call of a request: collects the response and waits for it while the desktop goes on.
class CResponseCollector : public CHttpListener {
 public:
  /// The desktop isn't owned.
  CResponseCollector(CServiceDesktop& desktop, const ServiceTimes& times);

  void OnConnect(bool connected, int error) override;
  void OnResponse(int status, std::uint32_t contentLength) override;
  void OnData(const char* data, std::uint32_t length) override;

  /// Not owned; null for none.
  void SetProgress(CUploadProgress* progress) { Progress = progress; }

  /// Runs until the response is complete or has failed, and reports to the progress sink. A stop by the user,
  /// or because the program ends, resets the request: status 0, no text. So does, for what the user can't
  /// stop, the end of `limit` milliseconds; 0 is no limit.
  void WaitForResponse(int limit = 0);

  /// A number of platform::socket_errors.
  int GetLastError() const { return LastError; }

 protected:
  /// The service's answers are a few lines. What is larger would only fill the memory.
  static constexpr std::size_t kLargestResponse = std::size_t{16} << 20;

  /// By the user, or because the program ends: then nothing is tried again, and no message shown.
  bool IsStopWanted() const { return Desktop.IsEnding() || (Progress != nullptr && Progress->IsStopped()); }

  /// One turn of the wait.
  void HandleEvents(int milliseconds);

  /// Before each attempt.
  void ClearResponse();

  CServiceDesktop& Desktop;
  const ServiceTimes Times;
  CUploadProgress* Progress = nullptr;
  CHttpRequest Request;
  int LastError = 0;
  int Status = 0;
  std::uint32_t ResponseLength = 0;
  std::string ResponseText;
  bool Busy = false;
  bool Done = false;
  bool Connected = false;

 private:
  void Stop();
  void ReportProgress();

  std::optional<std::int64_t> QueuedAt;  // milliseconds of the steady clock
};
