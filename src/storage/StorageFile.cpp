#include "storage/StorageFile.h"

#include <sqlite3.h>

#include "platform/Files.h"
#include "platform/WholeFiles.h"
#include "storage/Sqlite.h"

namespace {

std::string GetJournalPath(const std::string& path) { return path + "-journal"; }

/// The write-ahead log that some tools let SQLite write instead of a journal.
std::string GetLogPath(const std::string& path) { return path + "-wal"; }

/// Removes a file; it is no error if there is none.
std::error_code RemoveIfThere(const std::string& path) {
  const std::error_code error = platform::RemoveFile(path);
  return error == std::errc::no_such_file_or_directory ? std::error_code() : error;
}

/// Another tool may have switched the file to a log, in which its last pages can stand.
bool HasLog(const std::string& path) {
  platform::FileStatus status;
  return !platform::GetStatus(GetLogPath(path), status) && status.Size > 0;
}

std::error_code ToErrorCode(const CDatabaseError& error) {
  switch (error.GetPrimaryCode()) {
    case SQLITE_FULL:
      return make_error_code(std::errc::no_space_on_device);
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
      return make_error_code(std::errc::device_or_resource_busy);
    case SQLITE_READONLY:
    case SQLITE_PERM:
    case SQLITE_CANTOPEN:
      return make_error_code(std::errc::permission_denied);
    case SQLITE_NOTADB:
    case SQLITE_CORRUPT:
      return make_error_code(std::errc::bad_message);
    case SQLITE_NOMEM:
      return make_error_code(std::errc::not_enough_memory);
    default:
      return make_error_code(std::errc::io_error);
  }
}

/// Reading undoes an interrupted transaction first, if the file may be written.
void Recover(sqlite3* connection) { CStatement(connection, "SELECT count(*) FROM sqlite_schema").Run(); }

std::error_code CheckIsFile(const std::string& path) {
  platform::FileStatus status;
  if (const auto error = platform::GetStatus(path, status)) return error;
  if (status.IsFolder) return make_error_code(std::errc::is_a_directory);
  if (!status.IsRegular) return make_error_code(std::errc::not_supported);
  return status.Size < kSmallestFile ? make_error_code(std::errc::bad_message) : std::error_code();
}

std::error_code CopyContent(const std::string& from, const std::string& to) {
  try {
    const CConnection source = Connect(from, SQLITE_OPEN_READWRITE);
    Recover(source.get());
    CheckFileSize(source.get(), from);
    const CConnection target = Connect(to, SQLITE_OPEN_READWRITE);
    CopyDatabase(source.get(), target.get());
    return {};
  } catch (const CDatabaseError& error) {
    return ToErrorCode(error);
  }
}

}  // namespace

void CheckFileSize(sqlite3* connection, const std::string& path) {
  const std::int64_t pages = QueryInteger(connection, "PRAGMA page_count");
  const std::int64_t size = pages * QueryInteger(connection, "PRAGMA page_size");
  platform::FileStatus status;
  if (const auto error = platform::GetStatus(path, status)) {
    throw CDatabaseError(SQLITE_IOERR, error.message());
  }
  const bool isWhole = status.Size >= static_cast<std::uint64_t>(size) || HasLog(path);
  if (!isWhole || status.Size < kSmallestFile) {
    throw CDatabaseError(SQLITE_CORRUPT, "it is damaged (its end is missing)");
  }
}

CNewStorageFile::~CNewStorageFile() {
  if (Path.empty()) return;
  // The caller reports why the file was not finished, so a failed removal is passed over.
  static_cast<void>(RemoveIfThere(GetJournalPath(Path)));
  static_cast<void>(RemoveIfThere(Path));
}

std::error_code CNewStorageFile::Create() {
  // Not a name that the search for photos takes for an abandoned file: nothing is locked while SQLite writes.
  return platform::CreateTemporaryFile(Target, std::string(platform::kUnfinishedPrefix) + "db-", Path);
}

std::error_code CNewStorageFile::GiveName() {
  // A journal or a log without its file would be taken for the new file's own and played into it.
  platform::FileStatus taken;
  if (!platform::GetStatus(Target, taken)) return make_error_code(std::errc::file_exists);
  if (const auto error = RemoveIfThere(GetJournalPath(Target))) return error;
  if (const auto error = RemoveIfThere(GetLogPath(Target))) return error;
  return platform::RenameToNewName(Path, Target);
}

std::error_code CopyStorageFile(const std::string& from, const std::string& to) {
  if (const auto error = CheckIsFile(from)) return error;
  platform::FileStatus taken;
  if (!platform::GetStatus(to, taken)) return make_error_code(std::errc::file_exists);
  CNewStorageFile copy(to);
  if (const auto error = copy.Create()) return error;
  if (const auto error = CopyContent(from, copy.GetPath())) return error;
  return copy.GiveName();
}

std::error_code SetStorageFileAside(const std::string& from, const std::string& to) {
  platform::FileStatus status;
  if (!platform::GetStatus(to, status)) return make_error_code(std::errc::file_exists);
  try {
    // If this works no journal is left to move.
    Recover(Connect(from, SQLITE_OPEN_READWRITE).get());
  } catch (const CDatabaseError&) {
    // As a rule the file is set aside because it is damaged.
  }
  if (const auto error = RemoveIfThere(GetJournalPath(to))) return error;
  // The file is renamed first: after a kill in between it must not stand under its old name without its
  // journal.
  if (const auto error = platform::RenameToNewName(from, to)) return error;
  const std::error_code error = platform::RenameToNewName(GetJournalPath(from), GetJournalPath(to));
  return error == std::errc::no_such_file_or_directory ? std::error_code() : error;
}
