#pragma once

#include <optional>
#include <string>
#include <vector>

#include "sharing/EmailCopies.h"

/// Hands photos to the user's own mail program, which opens a new mail with a subject, a short footer and a
/// reduced copy of each photo. The user chooses the recipients and sends it, or not.
class CMailClient {
 public:
  /// Opens a mail with the photos of these paths, in their order. Without a subject one is formed. A photo
  /// that can't be decoded is left out. The user is told if none can be, or if there is no mail program, in
  /// which case no copies are made. When this returns the mail program may still be starting.
  ///
  /// Thread: any, and for more than a few photos a job's; it touches neither catalog nor cache. `progress`
  /// may be null; if it stops the work no mail is opened. CStorageException if a copy can't be written; then,
  /// as whenever no mail is opened, nothing stays behind.
  void Send(const std::vector<std::string>& paths, const std::optional<std::string>& subject,
            CEmailProgress* progress = nullptr);
};
