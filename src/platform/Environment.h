#pragma once

#include <string>

namespace platform {

/// What the desktop has given this process for its first window to come to the front, on Wayland or X11;
/// empty if nothing. The toolkit takes it away when it shows windows.
std::string GetActivationToken();

/// Makes room for one more variable at the end of the environment. Called once, before any other thread runs.
void ReserveVariable();

/// Sets the variable for which ReserveVariable has made room. Other threads may be reading the environment,
/// as system libraries do at any time: nothing that they may look at is moved or freed. A variable at the end
/// can also be removed without another one being missed for a moment. False, with nothing changed, if someone
/// else has changed the environment since, or there is no room.
bool SetReservedVariable(const std::string& name, const std::string& value);

}  // namespace platform
