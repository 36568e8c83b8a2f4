#include "storage/StorageFile.h"

#include <sqlite3.h>

#include "platform/Files.h"
#include "storage/DatabaseCopy.h"
#include "storage/NewStorageFile.h"

namespace {

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
    // Where this works no journal is left to move.
    Recover(Connect(from, SQLITE_OPEN_READWRITE).get());
  } catch (const CDatabaseError&) {
    // The file is set aside because it is damaged, as a rule.
  }
  if (const auto error = RemoveIfThere(GetJournalPath(to))) return error;
  // The file goes first: a kill in between must not leave it under its name without its journal.
  if (const auto error = platform::RenameToNewName(from, to)) return error;
  const std::error_code error = platform::RenameToNewName(GetJournalPath(from), GetJournalPath(to));
  return error == std::errc::no_such_file_or_directory ? std::error_code() : error;
}
