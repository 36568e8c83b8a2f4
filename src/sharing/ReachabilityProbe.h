#pragma once

#include "sharing/HttpRequest.h"
#include "sharing/ServiceDesktop.h"

/// Finds out whether a connection to a web host can be opened.
class CReachabilityProbe : public CHttpListener {
 public:
  void OnConnect(bool connected, int error) override;
  void OnResponse(int, std::uint32_t) override {}
  void OnData(const char*, std::uint32_t) override {}

  /// Tries for at most `limit` milliseconds to find the host, and as long to connect. The windows go on
  /// painting meanwhile. `host` is "host" or "host:port"; an empty one can't be reached.
  static bool IsReachable(CServiceDesktop& desktop, const std::string& host, int limit);

 private:
  CHttpRequest Request;
  bool Connected = false;
  bool Finished = false;
};
