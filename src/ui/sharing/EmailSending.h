#pragma once

#include <optional>
#include <string>
#include <vector>

class QWidget;

/// Opens a mail with the photos of these paths in the user's mail program, as CMailClient does. If the copies
/// take a while a window shows how far they are, and lets the user stop. Raises CStorageException. The data
/// is lent to a job meanwhile.
void SendByEmail(QWidget& mainWindow, const std::vector<std::string>& paths,
                 const std::optional<std::string>& subject);
