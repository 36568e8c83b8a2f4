#pragma once

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <string>
#include <vector>

/// Runs SQL on a file as another program would. Rows come back as their columns joined with "|".
inline std::vector<std::string> RunSql(const std::string& path, const std::string& statements) {
  sqlite3* database = nullptr;
  EXPECT_EQ(sqlite3_open(path.c_str(), &database), SQLITE_OK);
  sqlite3_busy_timeout(database, 5000);
  std::vector<std::string> rows;
  const auto collect = [](void* out, int columns, char** values, char**) {
    std::string row;
    for (int i = 0; i < columns; ++i) row += (i > 0 ? "|" : "") + std::string(values[i] ? values[i] : "NULL");
    static_cast<std::vector<std::string>*>(out)->push_back(row);
    return 0;
  };
  EXPECT_EQ(sqlite3_exec(database, statements.c_str(), collect, &rows, nullptr), SQLITE_OK)
      << sqlite3_errmsg(database);
  sqlite3_close(database);
  return rows;
}

/// The result of a query that gives one row.
inline std::string RunSqlForOne(const std::string& path, const std::string& query) {
  const std::vector<std::string> rows = RunSql(path, query);
  return rows.size() == 1 ? rows.front() : "not one row";
}
