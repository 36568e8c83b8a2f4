#include "storage/Connection.h"

#include <sqlite3.h>

#include <algorithm>

#include "platform/Files.h"
#include "storage/NewStorageFile.h"

namespace {

constexpr int kLockWait = 5000;  // milliseconds

/// Another tool may have switched the file to a log, in which its last pages can stand.
bool HasLog(const std::string& path) {
  platform::FileStatus status;
  return !platform::GetStatus(GetLogPath(path), status) && status.Size > 0;
}

}  // namespace

void ConnectionCloser::operator()(sqlite3* connection) const {
  // Fails only while statements stand; they are gone before their connection.
  static_cast<void>(sqlite3_close(connection));
}

std::string ToDatabaseName(const std::string& path) { return path.starts_with('/') ? path : "./" + path; }

CConnection Connect(const std::string& path, int flags) {
  sqlite3* raw = nullptr;
  const int code = sqlite3_open_v2(ToDatabaseName(path).c_str(), &raw,
                                   flags | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_EXRESCODE, nullptr);
  CConnection connection(raw);
  if (code != SQLITE_OK) throw CDatabaseError(code, raw);
  for (const int setting : {SQLITE_DBCONFIG_TRUSTED_SCHEMA, SQLITE_DBCONFIG_ENABLE_TRIGGER}) {
    if (const int result = sqlite3_db_config(raw, setting, 0, nullptr)) throw CDatabaseError(result, raw);
  }
  if (const int result = sqlite3_busy_timeout(raw, kLockWait)) throw CDatabaseError(result, raw);
  for (const char* setting : {"PRAGMA synchronous=EXTRA", "PRAGMA temp_store=MEMORY",
                              "PRAGMA cache_size=-16000", "PRAGMA secure_delete=FAST"}) {
    CStatement(raw, setting).Run();
  }
  return connection;
}

std::int64_t QueryInteger(sqlite3* connection, std::string_view sql) {
  CStatement statement(connection, sql);
  return statement.Step() ? statement.GetInteger(0) : 0;
}

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

void MarkAsOurs(sqlite3* connection) {
  CStatement(connection, "PRAGMA application_id=" + std::to_string(kApplicationId)).Run();
}
