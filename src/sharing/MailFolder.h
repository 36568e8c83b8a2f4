#pragma once

#include <string>

/// A private folder for what is attached to one mail. It goes with the object unless it is kept.
///
/// No mail program says when it has read the attachments, and some read them only when the mail is sent. So
/// the folders stand in the user's cache until RemoveOldMailFolders finds them old.
class CMailFolder {
 public:
  /// Makes the folder. CStorageException if it can't be made.
  CMailFolder();
  ~CMailFolder();
  CMailFolder(const CMailFolder&) = delete;
  CMailFolder& operator=(const CMailFolder&) = delete;

  const std::string& GetPath() const { return Path; }
  void Keep() { IsKept = true; }

 private:
  std::string Path;
  bool IsKept = false;
};

/// Removes what was made for mails more than seven days ago. What can't be removed stays. To be called at the
/// start of the program; it takes no notice of errors.
void RemoveOldMailFolders();
