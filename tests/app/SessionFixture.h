#pragma once

#include <filesystem>
#include <string>

#include "support/Sql.h"
#include "ui/HomeFixture.h"

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
