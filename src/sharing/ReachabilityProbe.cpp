#include "sharing/ReachabilityProbe.h"

#include "sharing/WaitAside.h"

void CReachabilityProbe::OnConnect(bool connected, int) {
  Connected = connected;
  Finished = true;
  Request.Reset();  // the connection tells enough: nothing is sent
}

bool CReachabilityProbe::IsReachable(CServiceDesktop& desktop, const std::string& host, int limit) {
  CReachabilityProbe probe;
  CHttpRequest& request = probe.Request;
  request.Create(&probe);
  request.SetConnectTimeout(limit);
  request.SetHostLookup(
      [&](const std::string& name) { return LookUpHostAside(desktop, nullptr, limit, name); });
  if (!request.Get(host) || !request.Send(nullptr, 0)) return false;
  while (!probe.Finished && !desktop.IsEnding()) desktop.HandleEvents(kWaitStep);
  return probe.Connected;
}
