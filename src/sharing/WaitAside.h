#pragma once

#include <functional>
#include <optional>

#include "sharing/HttpRequest.h"
#include "sharing/ServiceDesktop.h"

/// The longest time between two looks at what a wait is for, in milliseconds.
inline constexpr int kWaitStep = 1000;

/// Does slow work on a thread of its own while the desktop handles events. `work` raises nothing, and shares
/// the ownership of what it uses, since nobody stops it: false means that it goes on unheeded, because the
/// user has asked to stop (`progress` may be null), the program is about to end, or `limit` milliseconds are
/// over (0 for no limit).
bool RunAside(CServiceDesktop& desktop, const CUploadProgress* progress, int limit,
              const std::function<void()>& work);

/// Asks the system for a host in the same way.
std::optional<platform::Ipv4Address> LookUpHostAside(CServiceDesktop& desktop,
                                                     const CUploadProgress* progress, int limit,
                                                     const std::string& host);
