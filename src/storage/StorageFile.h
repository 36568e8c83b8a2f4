#pragma once

#include <cstdint>
#include <string>
#include <system_error>

struct sqlite3;

// Operations on a storage's file as a whole. A killed run may have left a journal beside the file; unlike a
// plain copy or rename these take it into account.

/// Copies the storage at `from` to a name that is not taken (std::errc::file_exists if it is). The copy is
/// whole, and flushed, when its name appears. An interrupted transaction of `from` is undone first. No
/// storage may be open on it.
std::error_code CopyStorageFile(const std::string& from, const std::string& to);

/// Gives a storage's file another, free name, and its journal too. No storage may be open on it.
std::error_code SetStorageFileAside(const std::string& from, const std::string& to);

/// No SQLite file is smaller than this many bytes, its smallest page; SQLite itself takes such files for
/// empty ones.
inline constexpr std::uint64_t kSmallestFile = 512;

/// CDatabaseError if the end of the file is missing: SQLite takes a last page that is cut short for one that
/// ends in zeros.
void CheckFileSize(sqlite3* connection, const std::string& path);

/// A new storage file, made beside its target under another name. The destructor removes it and its journal
/// unless GiveName() succeeded.
class CNewStorageFile {
 public:
  explicit CNewStorageFile(std::string target) : Target(std::move(target)) {}
  ~CNewStorageFile();
  CNewStorageFile(const CNewStorageFile&) = delete;
  CNewStorageFile& operator=(const CNewStorageFile&) = delete;

  std::error_code Create();
  const std::string& GetPath() const { return Path; }
  /// Gives the file the name of its target; std::errc::file_exists if that is taken.
  std::error_code GiveName();

 private:
  std::string Target;
  std::string Path;  // empty while there is none
};
