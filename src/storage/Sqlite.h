#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "base/Exceptions.h"

struct sqlite3;
struct sqlite3_stmt;

/// A call into SQLite failed. Stays inside the storage: what leaves it is CError or CStorageException.
class CDatabaseError : public CException {
 public:
  /// The last failure of the connection.
  CDatabaseError(int code, sqlite3* connection);
  CDatabaseError(int code, std::string reason);

  int GetPrimaryCode() const { return Code & 0xff; }
  int GetExtendedCode() const { return Code; }

  /// Whether the bytes of the file are to blame, so that trying again can't help.
  bool IsDamage() const;

 private:
  int Code;
};

/// A prepared statement, to be used many times. Parameters and columns are numbered as SQLite does: from 1
/// and from 0. Texts and bytes that are bound must stay until the next Reset.
class CStatement {
 public:
  CStatement() = default;
  CStatement(sqlite3* connection, std::string_view sql);

  explicit operator bool() const { return Handle != nullptr; }

  void Bind(int parameter, std::int64_t value);
  void Bind(int parameter, std::string_view text);
  void Bind(int parameter, std::span<const std::uint8_t> bytes);

  /// False if there is no further row.
  bool Step();
  /// Steps once and resets; for statements whose row, if there is one, isn't needed.
  void Run();
  void Reset() noexcept;

  std::int64_t GetInteger(int column) const;
  bool HoldsInteger32(int column) const;
  /// A value that is no integer, or doesn't fit, is 0.
  std::int32_t GetInteger32(int column) const;
  /// A value that is no text is empty. Valid until the next step.
  std::string_view GetText(int column) const;
  /// A value that is no block of bytes is empty. Valid until the next step.
  std::span<const std::uint8_t> GetBytes(int column) const;

 private:
  struct Finalizer {
    void operator()(sqlite3_stmt* statement) const;
  };
  void Check(int code) const;

  std::unique_ptr<sqlite3_stmt, Finalizer> Handle;
};

/// Resets a statement at the end of its use, so that it holds no lock on the file.
class CStatementUse {
 public:
  explicit CStatementUse(CStatement& statement) : Statement(statement) {}
  ~CStatementUse() { Statement.Reset(); }
  CStatementUse(const CStatementUse&) = delete;
  CStatementUse& operator=(const CStatementUse&) = delete;
  CStatement* operator->() const { return &Statement; }

 private:
  CStatement& Statement;
};

struct ConnectionCloser {
  void operator()(sqlite3* connection) const;
};

using CConnection = std::unique_ptr<sqlite3, ConnectionCloser>;

/// Connects to a file with the settings of all storages: it waits for locks, commits durably, and runs no
/// code that a file made by others contains. `flags` are those of sqlite3_open_v2. CDatabaseError.
CConnection Connect(const std::string& path, int flags);

/// The path in a form that SQLite never takes for a special name, such as ":memory:".
std::string ToDatabaseName(const std::string& path);

std::int64_t QueryInteger(sqlite3* connection, std::string_view sql);

/// Replaces everything in `to` by what `from` holds, durably. CDatabaseError; `to` is then as it was.
void CopyDatabase(sqlite3* from, sqlite3* to);

/// What the header of a file of this program holds as its application: "VLMR".
inline constexpr std::int64_t kApplicationId = 0x564C4D52;

/// Writes kApplicationId into the header of the file.
void MarkAsOurs(sqlite3* connection);
