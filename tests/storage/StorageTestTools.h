#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sqlite3.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>
#include <vector>

#include "storage/Storage.h"

/// In memory where the system has such a folder: thousands of commits wait for no disk there.
inline std::filesystem::path GetFastFolder() {
  const std::filesystem::path memory = "/dev/shm";
  return std::filesystem::is_directory(memory) ? memory : std::filesystem::temp_directory_path();
}

/// A folder of its own for each test, and plain SQLite to look at what the storage left in it.
class CStorageTest : public testing::Test {
 protected:
  CStorageTest() {
    std::string pattern = (GetFastFolder() / "storage-test-XXXXXX").string();
    Folder = mkdtemp(pattern.data());
    Path = Folder + "/test.db";
  }
  ~CStorageTest() override {
    std::error_code ignored;
    std::filesystem::remove_all(Folder, ignored);
  }

  std::string Folder;
  std::string Path;
};

inline std::string ReadBytes(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

inline void WriteBytes(const std::string& path, const std::string& bytes) {
  std::ofstream file(path, std::ios::binary | std::ios::trunc);
  file << bytes;
  ASSERT_TRUE(file.good());
}

/// All files of a folder with their bytes.
inline std::map<std::string, std::string> ReadFolder(const std::string& folder) {
  std::map<std::string, std::string> files;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    files[entry.path().filename()] = entry.is_directory() ? "(folder)" : ReadBytes(entry.path());
  }
  return files;
}

/// Runs statements through SQLite alone; the rows that come out are joined by "|" and line feeds.
inline std::string RunSql(const std::string& path, const std::string& sql) {
  sqlite3* connection = nullptr;
  EXPECT_EQ(sqlite3_open(path.c_str(), &connection), SQLITE_OK);
  std::string result;
  const auto collect = [](void* target, int count, char** values, char**) {
    auto& text = *static_cast<std::string*>(target);
    if (!text.empty()) text += '\n';
    for (int i = 0; i < count; ++i) {
      text += (i > 0 ? "|" : "") + std::string(values[i] != nullptr ? values[i] : "NULL");
    }
    return 0;
  };
  char* error = nullptr;
  EXPECT_EQ(sqlite3_exec(connection, sql.c_str(), collect, &result, &error), SQLITE_OK) << error;
  sqlite3_free(error);
  EXPECT_EQ(sqlite3_close(connection), SQLITE_OK);
  return result;
}

inline c4_Bytes ToBytes(std::string_view text) { return {text.begin(), text.end()}; }
