#pragma once

#include <string>
#include <vector>

/// The desktop's service that opens a new mail in the user's mail program. Any thread; each call is bounded
/// in time and makes a connection to the session's bus of its own.
namespace platform {

/// Whether a service answers.
bool HasEmailPortal();

/// Asks for a window with this mail, whose attachments are paths of files. False if the service can't be
/// reached, or says that it has shown none. A window that the user has closed counts as shown.
bool ComposeByEmailPortal(const std::string& subject, const std::string& text,
                          const std::vector<std::string>& attachments);

}  // namespace platform
