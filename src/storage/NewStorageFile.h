#pragma once

#include <string>
#include <system_error>

/// A storage file in the making: it stands beside the place it is meant for, under a name of its own, and
/// goes with this object, its journal too, unless it got its real name.
class CNewStorageFile {
 public:
  explicit CNewStorageFile(std::string target) : Target(std::move(target)) {}
  ~CNewStorageFile();
  CNewStorageFile(const CNewStorageFile&) = delete;
  CNewStorageFile& operator=(const CNewStorageFile&) = delete;

  std::error_code Create();
  const std::string& GetPath() const { return Path; }
  /// Names the whole file; std::errc::file_exists if the name is taken.
  std::error_code GiveName();

 private:
  std::string Target;
  std::string Path;  // empty while there is none
};

std::string GetJournalPath(const std::string& path);
/// Of the log that some tools have SQLite write instead of a journal.
std::string GetLogPath(const std::string& path);

/// Removes a file; none there is no error.
std::error_code RemoveIfThere(const std::string& path);
