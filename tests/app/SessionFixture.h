#pragma once

#include <filesystem>
#include <string>

#include "support/Sql.h"
#include "ui/HomeFixture.h"

/// Reads one number from a database file, as any other program would; -1 if it can't be read.
inline int ReadNumber(const std::string& path, const std::string& query) {
  sqlite3* database = nullptr;
  sqlite3_stmt* statement = nullptr;
  int number = -1;
  if (sqlite3_open_v2(path.c_str(), &database, SQLITE_OPEN_READWRITE, nullptr) == SQLITE_OK &&
      sqlite3_prepare_v2(database, query.c_str(), -1, &statement, nullptr) == SQLITE_OK &&
      sqlite3_step(statement) == SQLITE_ROW) {
    number = sqlite3_column_int(statement, 0);
  }
  sqlite3_finalize(statement);
  sqlite3_close(database);
  return number;
}

/// A user with a data folder in a home of its own.
class CSessionFixture : public CHomeFixture {
 protected:
  CSessionFixture() : Data("XDG_DATA_HOME", std::nullopt), Runtime("XDG_RUNTIME_DIR", InHome("run")) {
    std::filesystem::create_directory(InHome("run"));
    std::filesystem::permissions(InHome("run"), std::filesystem::perms::owner_all);
    CRegistrySettings().SetBool("DontShowAddFolderTip", true);
  }
  ~CSessionFixture() override { ForgetLastSession(); }

  /// Forgets what the process keeps to its end, as a new process would have it.
  static void ForgetLastSession() {
    CFolderSearch::GetInstance().Reset();
    ForgetMyPicturesFolder();
  }

  std::string PicturesFolder() const { return InHome("Pictures"); }
  std::string CatalogPath() const { return DataFolder() + "/vellumar.db"; }
  std::string CachePath() const { return DataFolder() + "/vellumar.thumbs"; }

  /// The data folder, made if it is missing.
  std::string DataFolder() const {
    const std::string folder = GetApplicationDataFolder();
    std::filesystem::create_directories(folder);
    return folder;
  }

  void AddPhotos(int count, const std::string& folder = "Pictures") const {
    for (int i = 0; i < count; ++i) {
      Scratch.Write(folder + "/photo" + std::to_string(i) + ".jpg", MakePhoto(160, 120, Qt::darkGreen));
    }
  }

  const CEnvironmentVariable Data, Runtime;
};
