#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "storage/Sqlite.h"

/// A connection to one storage file, opened by the rules that c4_Storage promises. All operations but the
/// constructor raise CDatabaseError.
class CDatabase {
 public:
  /// Raises CError as the constructor of c4_Storage does.
  CDatabase(const std::string& path, bool readOnly);
  CDatabase(const CDatabase&) = delete;
  CDatabase& operator=(const CDatabase&) = delete;

  /// The absolute path; of a link, that of its target.
  const std::string& GetPath() const { return Path; }
  bool IsReadOnly() const { return ReadOnly; }
  /// Whether the file was made by this program. Any other SQLite file is accepted if it has the views.
  bool IsOurs() const { return Ours; }

  CStatement Prepare(std::string_view sql) const { return {Connection.get(), sql}; }
  void Execute(const std::string& sql) const;
  std::int64_t QueryInteger(std::string_view sql) const;
  bool IsInTransaction() const;

  /// A number that changes when another connection has changed the file.
  std::int64_t GetDataVersion();
  std::int64_t GetFirstDataVersion() const { return FirstDataVersion; }

  /// CDatabaseError if another process has moved the file, cut it short or put something else into it.
  void CheckAgain();

  /// Rewrites the file in its place without its free space, and marks it as ours; there must be no open
  /// transaction. CDatabaseError.
  void Compact();

  /// "The file "/x/y" can't be <done>: <reason>."
  std::string Describe(std::string_view done, const CThrowable& reason) const;

 private:
  void MakeIfMissing() const;
  void CheckIsFile() const;
  void Open();
  void OpenForReading();
  void OpenForWriting();
  void ConnectAndCheck(int flags);
  void RecoverFromJournal() const;
  void CheckContent();
  void ReadMark();
  [[noreturn]] void Fail(const CDatabaseError& error) const;

  std::string Path;
  bool ReadOnly;
  bool Ours = false;
  CConnection Connection;
  CStatement DataVersion;
  std::int64_t FirstDataVersion = 0;
};
