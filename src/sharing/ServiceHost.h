#pragma once

#include <string>
#include <string_view>

/// The web host of the service, "host" or "host:port": as the environment variable VELLUMAR_SERVICE_HOST
/// says, else the setting ServiceHost, else the string table. Empty if none is configured, or what is
/// configured can't be a host.
std::string GetServiceHost();

/// A page of the service: `path` begins with "/". Empty if there is no host, or the path holds control
/// characters. The result begins with "http://" and the host, whatever the path holds.
std::string MakeServiceAddress(std::string_view host, std::string_view path);
