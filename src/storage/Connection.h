#pragma once

#include <memory>
#include <string>

#include "storage/Statement.h"

struct ConnectionCloser {
  void operator()(sqlite3* connection) const;
};

using CConnection = std::unique_ptr<sqlite3, ConnectionCloser>;

/// Connects to a file with the settings of all storages: locks are waited for, what is committed is on
/// disk, a file made by others runs no code of its own. `flags` are those of sqlite3_open_v2.
/// CDatabaseError.
CConnection Connect(const std::string& path, int flags);

/// No SQLite file is smaller than this many bytes, its smallest page; SQLite itself takes such files for
/// empty ones.
inline constexpr std::uint64_t kSmallestFile = 512;

/// The path as SQLite takes it: never one of the names that have a meaning of their own.
std::string ToDatabaseName(const std::string& path);

std::int64_t QueryInteger(sqlite3* connection, std::string_view sql);

/// CDatabaseError if the end of the file is missing: SQLite takes a last page that is cut short for one that
/// ends in zeros.
void CheckFileSize(sqlite3* connection, const std::string& path);

/// What the header of a file of this program holds as its application: "VLMR".
inline constexpr std::int64_t kApplicationId = 0x564C4D52;

/// Writes that into the file.
void MarkAsOurs(sqlite3* connection);
