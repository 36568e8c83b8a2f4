#pragma once

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <string>
#include <vector>

#include "catalog/Catalog.h"
#include "catalog/StampList.h"
#include "catalog/ThumbnailCache.h"
#include "support/ScratchFolder.h"

/// A catalog and its thumbnail cache in a scratch folder, and a look at the file from outside.
class CCatalogFixture : public testing::Test {
 protected:
  CCatalogFixture() : Path(Scratch.File("vellumar.db")) {}

  void Open() {
    ASSERT_TRUE(Catalog.Open(Path));
    Cache.Open(Scratch.File("vellumar.thumbs"), Catalog.GetDBGUID());
  }

  /// Runs SQL on the file as another program would; rows come back as their columns joined with "|".
  std::vector<std::string> Sql(const std::string& statements) const {
    sqlite3* database = nullptr;
    EXPECT_EQ(SQLITE_OK, sqlite3_open(Path.c_str(), &database));
    std::vector<std::string> rows;
    const auto collect = [](void* out, int columns, char** values, char**) {
      std::string row;
      for (int i = 0; i < columns; ++i) row += (i ? "|" : "") + std::string(values[i] ? values[i] : "NULL");
      static_cast<std::vector<std::string>*>(out)->push_back(row);
      return 0;
    };
    char* message = nullptr;
    EXPECT_EQ(SQLITE_OK, sqlite3_exec(database, statements.c_str(), collect, &rows, &message)) << message;
    sqlite3_free(message);
    sqlite3_close(database);
    return rows;
  }

  std::string SqlOne(const std::string& query) const {
    const std::vector<std::string> rows = Sql(query);
    return rows.size() == 1 ? rows.front() : "not one row";
  }

  CScratchFolder Scratch;
  const std::string Path;
  CCatalog Catalog;
  CThumbnailCache Cache;
};
