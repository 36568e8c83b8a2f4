#include "storage/Sqlite.h"

#include <sqlite3.h>

#include <cerrno>
#include <cstring>
#include <limits>

#include "platform/Files.h"
#include "platform/WholeFiles.h"

namespace {

constexpr int kLockWait = 5000;  // milliseconds

std::string DescribeIoError(sqlite3* connection) {
  const int system = connection != nullptr ? sqlite3_system_errno(connection) : 0;
  std::string text = "the disk reported an error";
  if (system != 0) text += std::string(" (") + std::strerror(system) + ")";
  return text;
}

std::string GetPath(sqlite3* connection) {
  const char* path = connection != nullptr ? sqlite3_db_filename(connection, "main") : nullptr;
  return path != nullptr ? path : "";
}

std::string DescribeReadOnly(int code, sqlite3* connection) {
  if (code == SQLITE_READONLY_ROLLBACK) return "an interrupted change of it can't be undone";
  if (code == SQLITE_READONLY_DIRECTORY) return "its folder may not be written";
  if (code == SQLITE_READONLY_DBMOVED) return "it was moved, removed or replaced while it was open";
  const std::error_code error = platform::CheckWritable(GetPath(connection));
  return error ? error.message() : "it may not be written";
}

std::string DescribeFull() { return "the disk is full"; }

/// When SQLite can't create a file it tries to open it for reading, and reports the error of that. So the
/// cause is found by creating a file in the same folder.
std::string DescribeCannotOpen(sqlite3* connection) {
  const std::string path = GetPath(connection);
  const int system = connection != nullptr ? sqlite3_system_errno(connection) : 0;
  platform::FileStatus status;
  if (system == ENOENT && !path.empty() && !platform::GetStatus(path, status)) {
    std::string made;
    const std::error_code error = platform::CreateTemporaryFile(path, platform::kUnfinishedPrefix, made);
    if (error == std::errc::no_space_on_device) return DescribeFull();
    if (error) return "no journal can be made beside it (" + error.message() + ")";
    static_cast<void>(platform::RemoveFile(made));
  } else if (system != 0) {
    return std::strerror(system);
  }
  return "it or its journal can't be opened";
}

/// What is wrong, as the end of a sentence about the file.
std::string Describe(int code, sqlite3* connection) {
  switch (code & 0xff) {
    case SQLITE_NOTADB:
    case SQLITE_CORRUPT:
      return "it is damaged";
    case SQLITE_FULL:
      return DescribeFull();
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
    case SQLITE_PROTOCOL:
      return "another program is using it";
    case SQLITE_READONLY:
      return DescribeReadOnly(code, connection);
    case SQLITE_IOERR:
      return DescribeIoError(connection);
    case SQLITE_NOMEM:
      return "memory ran out";
    case SQLITE_CANTOPEN:
      return DescribeCannotOpen(connection);
    default:
      return connection != nullptr ? sqlite3_errmsg(connection) : sqlite3_errstr(code);
  }
}

struct BackupFinisher {
  void operator()(sqlite3_backup* backup) const {
    // Reached only after a failure of a step, which is what gets reported.
    static_cast<void>(sqlite3_backup_finish(backup));
  }
};

}  // namespace

CDatabaseError::CDatabaseError(int code, sqlite3* connection)
    : CException(Describe(code, connection)), Code(code) {}

CDatabaseError::CDatabaseError(int code, std::string reason) : CException(std::move(reason)), Code(code) {}

bool CDatabaseError::IsDamage() const {
  return GetPrimaryCode() == SQLITE_CORRUPT || GetPrimaryCode() == SQLITE_NOTADB;
}

void CStatement::Finalizer::operator()(sqlite3_stmt* statement) const {
  // The result repeats the statement's last failure, which was seen when it happened.
  static_cast<void>(sqlite3_finalize(statement));
}

CStatement::CStatement(sqlite3* connection, std::string_view sql) {
  sqlite3_stmt* handle = nullptr;
  const int code = sqlite3_prepare_v3(connection, sql.data(), static_cast<int>(sql.size()),
                                      SQLITE_PREPARE_PERSISTENT, &handle, nullptr);
  Handle.reset(handle);
  if (code != SQLITE_OK) throw CDatabaseError(code, connection);
}

void CStatement::Check(int code) const {
  if (code != SQLITE_OK) throw CDatabaseError(code, sqlite3_db_handle(Handle.get()));
}

void CStatement::Bind(int parameter, std::int64_t value) {
  Check(sqlite3_bind_int64(Handle.get(), parameter, value));
}

void CStatement::Bind(int parameter, std::string_view text) {
  const char* bytes = text.empty() ? "" : text.data();  // a null pointer would bind NULL
  Check(sqlite3_bind_text64(Handle.get(), parameter, bytes, text.size(), SQLITE_STATIC, SQLITE_UTF8));
}

void CStatement::Bind(int parameter, std::span<const std::uint8_t> bytes) {
  if (bytes.empty()) {
    Check(sqlite3_bind_zeroblob(Handle.get(), parameter, 0));
  } else {
    Check(sqlite3_bind_blob64(Handle.get(), parameter, bytes.data(), bytes.size(), SQLITE_STATIC));
  }
}

bool CStatement::Step() {
  const int code = sqlite3_step(Handle.get());
  if (code == SQLITE_ROW) return true;
  if (code == SQLITE_DONE) return false;
  throw CDatabaseError(code, sqlite3_db_handle(Handle.get()));
}

void CStatement::Run() {
  const CStatementUse use(*this);
  use->Step();
}

void CStatement::Reset() noexcept {
  // The result repeats the failure of the last step.
  if (Handle) static_cast<void>(sqlite3_reset(Handle.get()));
}

std::int64_t CStatement::GetInteger(int column) const { return sqlite3_column_int64(Handle.get(), column); }

bool CStatement::HoldsInteger32(int column) const {
  if (sqlite3_column_type(Handle.get(), column) != SQLITE_INTEGER) return false;
  const std::int64_t value = GetInteger(column);
  return value >= std::numeric_limits<std::int32_t>::min() &&
         value <= std::numeric_limits<std::int32_t>::max();
}

std::int32_t CStatement::GetInteger32(int column) const {
  return HoldsInteger32(column) ? static_cast<std::int32_t>(GetInteger(column)) : 0;
}

std::string_view CStatement::GetText(int column) const {
  if (sqlite3_column_type(Handle.get(), column) != SQLITE_TEXT) return {};
  const unsigned char* text = sqlite3_column_text(Handle.get(), column);
  if (text == nullptr) throw CDatabaseError(SQLITE_NOMEM, nullptr);
  return {reinterpret_cast<const char*>(text),
          static_cast<std::size_t>(sqlite3_column_bytes(Handle.get(), column))};
}

std::span<const std::uint8_t> CStatement::GetBytes(int column) const {
  if (sqlite3_column_type(Handle.get(), column) != SQLITE_BLOB) return {};
  const void* bytes = sqlite3_column_blob(Handle.get(), column);  // null for an empty block
  if (bytes == nullptr) {
    if (sqlite3_errcode(sqlite3_db_handle(Handle.get())) == SQLITE_NOMEM) {
      throw CDatabaseError(SQLITE_NOMEM, nullptr);
    }
    return {};
  }
  return {static_cast<const std::uint8_t*>(bytes),
          static_cast<std::size_t>(sqlite3_column_bytes(Handle.get(), column))};
}

void ConnectionCloser::operator()(sqlite3* connection) const {
  // Fails only while there are statements; they are destroyed before their connection.
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

void CopyDatabase(sqlite3* from, sqlite3* to) {
  std::unique_ptr<sqlite3_backup, BackupFinisher> backup(sqlite3_backup_init(to, "main", from, "main"));
  if (!backup) throw CDatabaseError(sqlite3_extended_errcode(to), to);
  const int stepped = sqlite3_backup_step(backup.get(), -1);
  const int finished = sqlite3_backup_finish(backup.release());
  if (stepped != SQLITE_DONE) throw CDatabaseError(stepped, nullptr);
  if (finished != SQLITE_OK) throw CDatabaseError(finished, to);
}

void MarkAsOurs(sqlite3* connection) {
  CStatement(connection, "PRAGMA application_id=" + std::to_string(kApplicationId)).Run();
}
